#include "ktManipulator/dynamics/KtMassMatrixTool.h"

#include <algorithm>

#include "ktManipulator/model/KtIndividualManipulator.h"

void KtMassMatrixTool::setManipulator(const KtIndividualManipulator* manipulator) {
  KtManipulatorTool::setManipulator(manipulator);
  resize();
}

const KtReArray& KtMassMatrixTool::massMatrix(KtManipulatorActiveState& activeState,
                                              const KtStatedSystemStruct* asker) {
  resize();
  if (manipulator_ == nullptr) return massMatrix_;
  columns_.compute(*manipulator_, activeState, asker);
  columns_.getMassMatrix(massMatrix_);
  return massMatrix_;
}

const KtReArray& KtMassMatrixTool::massMatrix(KtManipulatorActiveState* activeState,
                                              const KtStatedSystemStruct* asker) {
  return massMatrix(stateOrOwn(activeState), asker);
}

const KtReArray& KtMassMatrixTool::extendedMassMatrixInBase(KtManipulatorActiveState& activeState,
                                                            const KtStatedSystemStruct* asker) {
  return extend(activeState, asker, nullptr);
}

const KtReArray& KtMassMatrixTool::extendedMassMatrixInBase(KtManipulatorActiveState* activeState,
                                                            const KtStatedSystemStruct* asker) {
  return extend(stateOrOwn(activeState), asker, nullptr);
}

const KtReArray& KtMassMatrixTool::extendedMassMatrixInSystem(KtManipulatorActiveState& activeState,
                                                              const KtStatedSystemStruct* asker) {
  if (manipulator_ == nullptr) return extend(activeState, asker, nullptr);
  const KtOrientation axes =
      manipulator_->dhFrameInSystem(activeState.positionCache()).orientation();
  return extend(activeState, asker, &axes);
}

const KtReArray& KtMassMatrixTool::extendedMassMatrixInSystem(KtManipulatorActiveState* activeState,
                                                              const KtStatedSystemStruct* asker) {
  return extendedMassMatrixInSystem(stateOrOwn(activeState), asker);
}

const KtReArray& KtMassMatrixTool::extend(KtManipulatorActiveState& activeState,
                                          const KtStatedSystemStruct* asker,
                                          const KtOrientation* axes) {
  if (manipulator_ == nullptr) {
    extended_.resizeArray(0, 0);
    return extended_;
  }
  massMatrix(activeState, asker);
  const KtU32 n = massMatrix_.rows();
  Kt::detail::CompositeColumns::reportMissing(*manipulator_);
  columns_.getCoupling(coupling_);
  const KtRigidBodyMassProperties& whole = manipulator_->crbi(activeState, asker);
  if (axes != nullptr) {
    matrixDTool_.transformMatrixD(coupling_, *axes, coupling_);
    KtRigidBodyMassProperties turned(whole);
    turned.transformBy(*axes);
    turned.getArray(baseInertia_);
  } else {
    whole.getArray(baseInertia_);
  }
  extended_.resizeArray(n + 6, n + 6);
  for (KtU32 i = 0; i < n; ++i) {
    std::copy_n(massMatrix_[i], n, extended_[i]);
    for (KtU32 k = 0; k < 6; ++k) extended_[i][n + k] = extended_[n + k][i] = coupling_[i][k];
  }
  for (KtU32 k = 0; k < 6; ++k) std::copy_n(baseInertia_[k], 6, extended_[n + k] + n);
  return extended_;
}

const KtReArray& KtMassMatrixTool::nullSpaceTorque(KtManipulatorActiveState& activeState,
                                                   const KtReArray& nullSpace) {
  const KtU32 n = manipulator_ != nullptr ? manipulator_->jointDof() : 0;
  if (&nullSpace == &nullSpaceTorque_) {  // the result of an earlier call
    const KtReArray copy(nullSpace);
    return nullSpaceTorque(activeState, copy);
  }
  const KtReArray* columns = &nullSpace;
  if (nullSpace.columns() == 0 && degreesOfConstraint_ == 0) {
    identity_.setToIdentity(isFixedBase_ ? n : n + 6, isFixedBase_ ? n : n + 6);
    columns = &identity_;
  }
  const KtU32 joints = std::min(n, columns->rows());
  nullSpaceTorque_.setToZeros(columns->rows(), columns->columns());
  velocity_.setGeneralVelocity({});
  velocity_.jointVelocities().assign(n, 0.0);
  activeState.setVelocityState(velocity_);
  acceleration_ = activeState.accelerationState();
  acceleration_.setGeneralAcceleration({});
  acceleration_.jointAccelerations().assign(n, 0.0);
  noForce_.resize(n);
  totalTorqueTool_.setManipulator(manipulator_);
  totalTorqueTool_.setTotalTorqueType(kTotalTorqueOfLinks);
  for (KtU32 k = 0; k < columns->columns(); ++k) {
    for (KtU32 i = 0; i < joints; ++i) acceleration_.jointAccelerations()[i] = (*columns)[i][k];
    activeState.setAccelerationState(acceleration_);
    const auto& torques =
        totalTorqueTool_.torques(noForce_, activeState, nullptr).jointTorques().elements();
    for (KtU32 i = 0; i < joints; ++i) nullSpaceTorque_[i][k] = torques[i];
  }
  return nullSpaceTorque_;
}

const KtReArray& KtMassMatrixTool::nullSpaceTorque(KtManipulatorActiveState* activeState,
                                                   const KtReArray& nullSpace) {
  return nullSpaceTorque(stateOrOwn(activeState), nullSpace);
}

void KtMassMatrixTool::resize() {
  const KtU32 n = manipulator_ != nullptr ? manipulator_->jointDof() : 0;
  massMatrix_.setToZeros(n, n);
}
