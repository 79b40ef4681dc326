#include "support/SampleKit.h"

namespace {

using namespace samplekit;

const KtGeneralMotion kMotion({0.5, -1.5, 2.5}, {0.125, 1e-9, -3.0});
const KtGeneralForce kForce({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});

// Of two links; entry 1 and that of the base are no defaults.
KtManipulatorActiveState fullState() {
  KtManipulatorActiveState state;
  KtPositionState positions;
  positions.setJointPositions({2, 0.25});
  state.setPositionState(positions);
  KtVelocityState velocities;
  velocities.setJointVelocities(KtVelocityState::JointVector(2, 0.5));
  state.setVelocityState(velocities);
  KtAccelerationState accelerations;
  accelerations.setGeneralAcceleration(kMotion);
  state.setAccelerationState(accelerations);
  state.actuatorState().setOutputTorques(someReals());
  for (const KtU32 i : {KtU32{1}, ktBaseIndex}) {
    state.activePositionState().setLinkPositionState(i, kFrame, KtVector(1.0, 2.0, 3.0));
    state.activePositionState().setDhTransform(i, {});
    state.activeVelocityState().setLinkDhVelocityInLocal(i, kMotion);
    state.activeVelocityState().setLinkDhVelocityInSystem(i, 2.0 * kMotion);
    state.activeVelocityState().setLinkPrimaryVelocityInSystem(i, 3.0 * kMotion);
    state.activeAccelerationState().setLinkDhAccelerationInLocal(i, kMotion);
    state.activeAccelerationState().setLinkDhAccelerationInSystem(i, 2.0 * kMotion);
    state.activeAccelerationState().setLinkPrimaryAccelerationInSystem(i, 3.0 * kMotion);
    state.activeForceState().setLinkDhForceInLocal(i, kForce);
    const auto mass = KtRigidBodyMassProperties::defaultObject();
    state.activeMassState().setCrbi(i, mass);
    state.activeArticulationState().setArbd(i, {mass, kForce});
    state.activeArticulationState().setSupplementalDhAcceleration(i, kMotion);
    state.activeArticulationState().setSupplementalJointAcceleration(i, -0.75);
  }
  return state;
}

}  // namespace

void addActiveStateSamples(std::vector<Sample>& samples) {
  const KtManipulatorActiveState full = fullState();
  const auto add = [&samples]<class Cls>(const char* name, const Cls& part) {
    samples.push_back(sample<Cls>(name, part));
  };
  add("ManipulatorActiveState", full);
  add("ManipulatorActivePositionState", full.activePositionState());
  add("ManipulatorActiveVelocityState", full.activeVelocityState());
  add("ManipulatorActiveAccelerationState", full.activeAccelerationState());
  add("ManipulatorActiveForceState", full.activeForceState());
  add("ManipulatorActiveMassState", full.activeMassState());
  add("ManipulatorActiveArticulationState", full.activeArticulationState());
  add("LinkPositionState", full.activePositionState().basePositionState());
  add("LinkVelocityState", full.activeVelocityState().baseVelocityState());
  add("LinkAccelerationState", full.activeAccelerationState().baseAccelerationState());
  add("LinkForceState", full.activeForceState().baseForceState());
  add("LinkMassState", full.activeMassState().baseMassState());
  add("LinkArticulationState", full.activeArticulationState().baseArticulationState());
  add("ManipulatorActivePositionStateVector",
      KtXmlVectorType<KtManipulatorActivePositionState>(1, full.activePositionState()));
  KtSystemActiveState system;
  system.setNumManipulators(2);
  system.manipulatorActiveStateVector()[1] = full;
  add("SystemActiveState", system);
}
