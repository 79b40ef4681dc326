#include "ktManipulator/dynamics/KtArbiAccelerationTool.h"

#include <typeinfo>

#include "ktManipulator/model/KtAsker.h"
#include "ktManipulator/model/KtIndividualManipulator.h"

namespace {

bool loadMatters(const KtMechanicalActuatorComponentContainer& container) {
  const KtMechanicalActuatorComponent* component = container.element();
  // A class derived from the component may use the load otherwise.
  return component != nullptr &&
         (typeid(*component) != typeid(KtMechanicalActuatorComponent) || component->loadMatters());
}

}  // namespace

void KtArbiAccelerationTool::acceleration(
    const KtStatedSystem& system, const KtIndividualManipulator& manipulator,
    const KtPositionState& position, const KtVelocityState& velocity,
    const KtManipulatorTorque& torque, const KtManipulatorExternalForce& external,
    KtAccelerationState& acceleration, KtManipulatorActiveState* activeState, bool recompute) {
  if (activeState != nullptr) {
    this->acceleration(system, manipulator, torque, external, acceleration, *activeState,
                       recompute);
    return;
  }
  own_.setPositionState(position);
  own_.setVelocityState(velocity);
  const KtU32 joints = velocity.jointVelocities().size();
  if (own_.accelerationState().jointAccelerations().size() < joints || joints == 0) {
    KtAccelerationState gravity = KtAccelerationState::zeroCompatibleState(velocity);
    gravity.setGeneralAcceleration({system.environment().upGravityVector(), KtVector()});
    own_.setAccelerationState(gravity);
  }
  manipulator.initializeActuatorStatesIfShort(own_);
  own_.invalidateAll();
  this->acceleration(system, manipulator, torque, external, acceleration, own_, recompute);
}

void KtArbiAccelerationTool::acceleration(
    const KtStatedSystem& system, const KtIndividualManipulator& manipulator,
    const KtManipulatorTorque& torque, const KtManipulatorExternalForce& external,
    KtAccelerationState& acceleration, KtManipulatorActiveState& activeState, bool /*recompute*/) {
  const KtU32 n = manipulator.jointDof();
  const Kt::detail::Asker asker(system, manipulator.manipulatorIndex());
  const auto& given = torque.jointTorques().elements();
  const auto& links = manipulator.links();
  netTorque_.setGeneralForce(torque.generalForce());
  netTorque_.jointTorques().assign(n, 0.0);
  if (totalTorqueTool_.manipulator() != &manipulator) totalTorqueTool_.setManipulator(&manipulator);
  totalTorqueTool_.setTotalTorqueType(kTotalTorqueOfLinks);
  auto& net = netTorque_.jointTorques().elements();
  for (KtU32 i = 0; i < n; ++i) {
    const KtManipulatorLink* link = links[i];
    if (link == nullptr) continue;
    const double command = i < given.size() ? given[i].value() : 0.0;
    const KtMechanicalActuatorComponentContainer& component =
        link->actuator().mechanicalComponentContainer();
    // Inverse dynamics only where its result is used.
    const double load =
        loadMatters(component) ? totalTorqueTool_.torque(i, external, activeState, asker) : 0.0;
    net[i] =
        component.outputTorque(command, load, activeState) - link->totalLocalTorque(activeState);
  }
  acceleration.resize(n);
  auto& joints = acceleration.jointAccelerations().elements();
  for (KtU32 i = 0; i < n; ++i) {
    const KtManipulatorLink* link = links[i];
    if (link == nullptr) continue;
    joints[i] = link->arbiJointAcceleration(external, netTorque_, activeState, asker);
  }
  KtGeneralMotion base =
      manipulator.arbiBaseAccelerationInLocal(external, netTorque_, activeState, asker);
  base.transformBy(manipulator.dhFrameInSystem(activeState.positionCache()).orientation());
  acceleration.setGeneralAcceleration(base);
}
