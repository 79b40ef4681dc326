#include "ktManipulator/dynamics/KtGravitationalTorqueTool.h"

#include "ktManipulator/model/KtIndividualManipulator.h"

namespace {

KtGeneralMotion unitMotion(const KtManipulatorLink& link, KtManipulatorActiveState& activeState) {
  return link.linkKinematicsContainer().calculateAcceleration(
      activeState.positionCache().jointPosition(link.linkIndex()), 0.0, 1.0);
}

const KtCoordinateSystemTransformation& transform(const KtManipulatorLink& link,
                                                  KtManipulatorActiveState& activeState) {
  return link.linkKinematicsContainer().calculateTransform(
      activeState.positionCache().jointPosition(link.linkIndex()));
}

}  // namespace

void KtGravitationalTorqueTool::setManipulator(const KtIndividualManipulator* manipulator) {
  KtManipulatorTool::setManipulator(manipulator);
  resize();
}

double KtGravitationalTorqueTool::gravitationalTorque(KtU32 index,
                                                      KtManipulatorActiveState& activeState,
                                                      const KtStatedSystemStruct* asker) {
  const KtManipulatorLink* link = linkOrNull(index);
  if (link == nullptr) return 0.0;
  const KtGeneralForce force =
      link->crbi(activeState, asker).calculateForce({gravityAt(*link, activeState), KtVector()});
  const KtGeneralMotion unit = unitMotion(*link, activeState);
  return unit.linear().dot(force.force()) + unit.angular().dot(force.moment());
}

double KtGravitationalTorqueTool::gravitationalTorque(KtU32 index,
                                                      KtManipulatorActiveState* activeState,
                                                      const KtStatedSystemStruct* asker) {
  return gravitationalTorque(index, stateOrOwn(activeState), asker);
}

const KtReArray& KtGravitationalTorqueTool::gravitationalTorques(
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) {
  torques_.resizeArray(manipulator_ != nullptr ? manipulator_->jointDof() : 0, 1);
  for (KtU32 i = 0; i < torques_.rows(); ++i) {
    torques_[i][0] = gravitationalTorque(i, activeState, asker);
  }
  return torques_;
}

const KtReArray& KtGravitationalTorqueTool::gravitationalTorques(
    KtManipulatorActiveState* activeState, const KtStatedSystemStruct* asker) {
  return gravitationalTorques(stateOrOwn(activeState), asker);
}

const KtReArray& KtGravitationalTorqueTool::gravitationalTorqueGradient(
    KtU32 index, KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) {
  const KtManipulatorLink* link = linkOrNull(index);
  if (link == nullptr) return gradient_;
  gradient_.setToZeros(1, manipulator_->jointDof());
  const KtGeneralMotion unit = unitMotion(*link, activeState);
  const KtGeneralForce force = link->crbi(activeState, asker).calculateForce(unit);
  calculateInboardPartialDerivatives(transform(*link, activeState) * force, link->parentLink(),
                                     activeState);
  calculateOutboardPartialDerivatives(unit, *link, activeState, asker);
  return gradient_;
}

const KtReArray& KtGravitationalTorqueTool::gravitationalTorqueGradient(
    KtU32 index, KtManipulatorActiveState* activeState, const KtStatedSystemStruct* asker) {
  return gravitationalTorqueGradient(index, stateOrOwn(activeState), asker);
}

// Rotating a joint inboard of the torque's joint rotates gravity relative to all that this joint
// carries.
void KtGravitationalTorqueTool::calculateInboardPartialDerivatives(
    KtGeneralForce force, const KtManipulatorLink* link, KtManipulatorActiveState& activeState) {
  for (; link != nullptr && link->linkIndex() != ktBaseIndex; link = link->parentLink()) {
    const KtGeneralMotion unit = unitMotion(*link, activeState);
    setDerivative(*link, unit.angular().cross(force.force()), activeState);
    force.transformBy(transform(*link, activeState));
  }
}

// Moving a joint outboard of it moves what that outboard joint carries.
void KtGravitationalTorqueTool::calculateOutboardPartialDerivatives(
    const KtGeneralMotion& unit, const KtManipulatorLink& link,
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) {
  const KtGeneralForce force =
      link.crbi(activeState, asker).calculateForce(unitMotion(link, activeState));
  setDerivative(link, unit.angular().cross(force.force()), activeState);
  for (const KtManipulatorLink& child : link.childLinks().elements()) {
    calculateOutboardPartialDerivatives(transform(child, activeState).inverse() * unit, child,
                                        activeState, asker);
  }
}

// A child that was added after the links were mapped has no entry in the result.
void KtGravitationalTorqueTool::setDerivative(const KtManipulatorLink& link, const KtVector& turned,
                                              KtManipulatorActiveState& activeState) {
  const KtU32 i = link.linkIndex();
  if (i < gradient_.columns()) gradient_[0][i] = turned.dot(gravityAt(link, activeState));
}

void KtGravitationalTorqueTool::resize() {
  const KtU32 n = manipulator_ != nullptr ? manipulator_->jointDof() : 0;
  torques_.setToZeros(n, 1);
  gradient_.setToZeros(1, n);
}

const KtManipulatorLink* KtGravitationalTorqueTool::linkOrNull(KtU32 index) const {
  if (manipulator_ == nullptr || index == ktBaseIndex) return nullptr;
  return manipulator_->linkByIndex(index);
}

KtVector KtGravitationalTorqueTool::gravityAt(const KtManipulatorLink& link,
                                              KtManipulatorActiveState& activeState) const {
  return link.dhFrameInSystem(activeState.positionCache()).orientation().inverse() * gravityVector_;
}
