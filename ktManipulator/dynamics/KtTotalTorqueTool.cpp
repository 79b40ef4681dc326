#include "ktManipulator/dynamics/KtTotalTorqueTool.h"

#include "ktManipulator/model/KtIndividualManipulator.h"

void KtTotalTorqueTool::setManipulator(const KtIndividualManipulator* manipulator) {
  KtManipulatorTool::setManipulator(manipulator);
  resize();
}

double KtTotalTorqueTool::torque(KtU32 index, const KtManipulatorExternalForce& external,
                                 KtManipulatorActiveState& activeState,
                                 const KtStatedSystemStruct* asker) {
  if (manipulator_ == nullptr || index >= manipulator_->links().size()) return 0.0;
  const KtManipulatorLink* link = manipulator_->links()[index];
  if (link == nullptr) return 0.0;
  const double q = activeState.positionCache().jointPosition(index);
  const KtGeneralForce& force = link->dhFrameForceInLocal(external, activeState, asker);
  const KtJointActuator& actuator = link->actuator();
  const auto* motion = link->jointMotion();
  double torque =
      motion != nullptr
          ? motion->power(force.force(), force.moment())
          : link->askedUnitMotion(activeState.positionCache()).power(force.force(), force.moment());
  torque += link->totalLocalTorque(activeState);
  const double qDotDot = activeState.accelerationCache().jointAcceleration(link->mappedIndex());
  if (qDotDot != 0.0) torque += actuator.effectiveInertia(q) * qDotDot;
  switch (totalTorqueType_) {
    case kTotalTorqueWithFriction:
      torque -= actuator.mechanicalComponentContainer().outputTorque(0.0, torque, activeState);
      break;
    case kTotalTorqueWithLinear:
      torque += actuator.mechanicalComponentContainer().linearTorque(activeState);
      break;
    default:
      break;
  }
  return torque;
}

double KtTotalTorqueTool::torque(KtU32 index, const KtManipulatorExternalForce& external,
                                 KtManipulatorActiveState* activeState,
                                 const KtStatedSystemStruct* asker) {
  return torque(index, external, stateOrOwn(activeState), asker);
}

const KtManipulatorTorque& KtTotalTorqueTool::torques(const KtManipulatorExternalForce& external,
                                                      KtManipulatorActiveState& activeState,
                                                      const KtStatedSystemStruct* asker) {
  resize();
  auto& joints = result_.jointTorques().elements();
  for (KtU32 i = 0; i < joints.size(); ++i) joints[i] = torque(i, external, activeState, asker);
  result_.setGeneralForce(generalForce(external, activeState, asker));
  return result_;
}

const KtManipulatorTorque& KtTotalTorqueTool::torques(const KtManipulatorExternalForce& external,
                                                      KtManipulatorActiveState* activeState,
                                                      const KtStatedSystemStruct* asker) {
  KtManipulatorActiveState& state = stateOrOwn(activeState);
  if (manipulator_ != nullptr) manipulator_->initializeActuatorStatesIfShort(state);
  return torques(external, state, asker);
}

// The base's force is linear in its acceleration, so one correction is exact.
const KtManipulatorTorque& KtTotalTorqueTool::torquesNoBaseForce(
    const KtManipulatorExternalForce& external, KtManipulatorActiveState& activeState,
    const KtStatedSystemStruct* asker) {
  const KtManipulatorTorque& first = torques(external, activeState, asker);
  if (manipulator_ == nullptr) return first;
  first.generalForce().copyToArray(baseForce_);
  manipulator_->crbiSpatialCholeskyDecomposition(activeState, asker)
      .choleskyBackSubstitution(baseForce_, baseAcceleration_);
  KtGeneralMotion correction;
  correction.copyFromArray(baseAcceleration_);
  correction = -correction;
  correction.transformBy(manipulator_->dhFrameInSystem(activeState.positionCache()).orientation());
  acceleration_ = activeState.accelerationState();
  acceleration_.setGeneralAcceleration(acceleration_.generalAcceleration() + correction);
  activeState.setAccelerationState(acceleration_);
  return torques(external, activeState, asker);
}

const KtManipulatorTorque& KtTotalTorqueTool::torquesNoBaseForce(
    const KtManipulatorExternalForce& external, KtManipulatorActiveState* activeState,
    const KtStatedSystemStruct* asker) {
  return torquesNoBaseForce(external, stateOrOwn(activeState), asker);
}

KtGeneralForce KtTotalTorqueTool::generalForce(const KtManipulatorExternalForce& external,
                                               KtManipulatorActiveState& activeState,
                                               const KtStatedSystemStruct* asker) {
  if (manipulator_ == nullptr) return KtGeneralForce::nullObject();
  return manipulator_->dhFrameForceInLocal(external, activeState, asker);
}

KtGeneralForce KtTotalTorqueTool::generalForce(const KtManipulatorExternalForce& external,
                                               KtManipulatorActiveState* activeState,
                                               const KtStatedSystemStruct* asker) {
  return generalForce(external, stateOrOwn(activeState), asker);
}

void KtTotalTorqueTool::setBaseAccelerationFromGravityVector(const KtVector& g) {
  acceleration_ = own_.accelerationState();
  acceleration_.setGeneralAcceleration({g, KtVector()});
  own_.setAccelerationState(acceleration_);
}

void KtTotalTorqueTool::setVelocityState(const KtVelocityState& state) {
  own_.setVelocityState(state);
  if (own_.accelerationState().jointAccelerations().size() < state.jointVelocities().size()) {
    own_.setAccelerationState(KtAccelerationState::zeroCompatibleState(state));
  }
}

void KtTotalTorqueTool::setAccelerationState(const KtAccelerationState& state) {
  own_.setAccelerationState(state);
}

void KtTotalTorqueTool::resize() {
  result_.jointTorques().resize(manipulator_ != nullptr ? manipulator_->jointDof() : 0);
}
