#include "support/SampleKit.h"

namespace {

using namespace samplekit;

const KtGeneralMotion kMotion({1.0, 2.0, 3.0}, {-0.1, 0.2, -0.3});
const KtGeneralForce kForce({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});

KtPositionState positions() {
  KtPositionState state;
  state.setJointPositions(someReals());
  state.setCoordSysXForm(kFrame);
  return state;
}

KtVelocityState velocities() {
  KtVelocityState state;
  state.setJointVelocities(someReals());
  state.setGeneralVelocity(kMotion);
  return state;
}

KtMultivariableJointStateConstraint limit() {
  KtLinearMultivariableConstraint linear;
  linear.setConstant(1.5);
  linear.setCoefficient(1, -1.0);
  KtMultivariableJointStateConstraint constraint;
  constraint.setConstraint(linear);
  return constraint;
}

KtLinearStateEqualityConstraint gear() {
  KtLinearStateEqualityConstraint constraint;
  constraint.setJointWeights({2, someReals()});
  constraint.setBaseWeights({1, {6, 0.5}});
  constraint.setWeightedSums({2, 0.25});
  return constraint;
}

}  // namespace

void addStateSamples(std::vector<Sample>& samples) {
  const auto add = [&samples](Sample one) { samples.push_back(std::move(one)); };
  add(sample<KtPositionState>("PositionState", positions()));
  add(sample<KtVelocityState>("VelocityState", velocities()));
  add(filled<KtAccelerationState>("AccelerationState", [](auto& state) {
    state.setJointAccelerations(someReals());
    state.setGeneralAcceleration(kMotion);
  }));
  add(filled<KtManipulatorTorque>("ManipulatorTorque", [](auto& torque) {
    torque.setJointTorques(someReals());
    torque.setGeneralForce(kForce);
  }));
  add(filled<KtManipulatorExternalForce>("ManipulatorExternalForce", [](auto& force) {
    force.setLinkForces({2, kForce});
    force.setBaseForce(kForce * 2.0);
  }));
  add(filled<KtManipulatorSystemState>("ManipulatorSystemState", [](auto& state) {
    state.setPositionStates({2, positions()});
    state.setVelocityStates({2, velocities()});
    state.setTime(0.1);
  }));
  add(filled<KtXmlVectorType<KtManipulatorTorque>>("TorqueVector",
                                                   [](auto& list) { list.resize(2); }));
}

void addConstraintSamples(std::vector<Sample>& samples) {
  const auto add = [&samples](Sample one) { samples.push_back(std::move(one)); };
  add(sample<KtMultivariableJointStateConstraint>("JointStateConstraint", limit()));
  add(sample<KtLinearStateEqualityConstraint>("LinearStateEqualityConstraint", gear()));
  add(filled<KtStateConstraintContainer>("StateConstraintContainer",
                                         [](auto& holder) { holder.setTopElement(limit()); }));
  add(filled<KtStateConstraintVector>("StateConstraintVector",
                                      [](auto& list) { list.pushBack(limit()); }));
  add(filled<KtStateEqualityConstraintVector>("StateEqualityConstraintVector", [](auto& list) {
    list.pushBack(gear());
    list.pushBack(KtLinearStateEqualityConstraint());
  }));
}
