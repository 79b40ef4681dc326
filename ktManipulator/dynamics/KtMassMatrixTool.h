#pragma once

#include "ktManipulator/dynamics/KtMatrixDTool.h"
#include "ktManipulator/dynamics/KtTotalTorqueTool.h"

/// Joint-space mass matrices of a manipulator, by the composite-rigid-body method. They do not
/// include the inertias of actuators.
///
/// With n joints, the extended matrices have the rows and columns of the n joints first, by link
/// index, and then six of the base: linear x, y, z, angular x, y, z.
///
/// @see M. W. Walker, D. E. Orin, Efficient dynamic computer simulation of robotic mechanisms,
///      Journal of Dynamic Systems, Measurement, and Control 104 (1982), 205-211
class KT_EXPORT KtMassMatrixTool : public KtManipulatorTool {
 public:
  void setManipulator(const KtIndividualManipulator* manipulator) override;

  /// The n by n mass matrix, which is exactly symmetric. The entry of two joints of which neither
  /// carries the other is exactly 0. The matrix is empty without a manipulator.
  ///
  /// @param activeState  positions; filled with what was computed
  /// @param asker        the system whose attached manipulators count as well; may be null
  virtual const KtReArray& massMatrix(KtManipulatorActiveState& activeState,
                                      const KtStatedSystemStruct* asker);
  /// The same on the state pointed to or the tool's own.
  virtual const KtReArray& massMatrix(KtManipulatorActiveState* activeState,
                                      const KtStatedSystemStruct* asker);
  /// The mass matrix with the base, n + 6 by n + 6, the base's part in its DH frame.
  virtual const KtReArray& extendedMassMatrixInBase(KtManipulatorActiveState& activeState,
                                                    const KtStatedSystemStruct* asker);
  /// The same on the state pointed to or the tool's own.
  virtual const KtReArray& extendedMassMatrixInBase(KtManipulatorActiveState* activeState,
                                                    const KtStatedSystemStruct* asker);
  /// The same with the base's part in the axes of the system; its reference point stays the origin
  /// of the base's DH frame.
  virtual const KtReArray& extendedMassMatrixInSystem(KtManipulatorActiveState& activeState,
                                                      const KtStatedSystemStruct* asker);
  /// The same on the state pointed to or the tool's own.
  virtual const KtReArray& extendedMassMatrixInSystem(KtManipulatorActiveState* activeState,
                                                      const KtStatedSystemStruct* asker);
  /// The product of the mass matrix and an array, by inverse dynamics instead of the matrix: the
  /// joint torques that each column needs as joint accelerations, without gravity, at rest and with
  /// the base held. Unlike the mass matrix, it includes springs and the inertias of actuators.
  ///
  /// The call overwrites the velocities and accelerations of the state.
  ///
  /// @param activeState  positions
  /// @param nullSpace    one column for each result; rows beyond the joints are ignored. If
  ///                     `degreesOfConstraint()` is 0, an array without columns stands for the
  ///                     identity of size n with a fixed base, and of size n + 6 otherwise
  /// @return             an array of the same shape
  virtual const KtReArray& nullSpaceTorque(KtManipulatorActiveState& activeState,
                                           const KtReArray& nullSpace);
  /// The same on the state pointed to or the tool's own.
  virtual const KtReArray& nullSpaceTorque(KtManipulatorActiveState* activeState,
                                           const KtReArray& nullSpace);
  /// Whether the base is held; true by default. `setManipulator` does not change this.
  virtual bool isFixedBase() const { return isFixedBase_; }
  virtual void setIsFixedBase(bool value) { isFixedBase_ = value; }
  /// The number of constraints whose null space the caller passes; 0 by default.
  virtual KtU32 degreesOfConstraint() const { return degreesOfConstraint_; }
  virtual void setDegreesOfConstraint(unsigned int count) { degreesOfConstraint_ = count; }
  /// Resizes the mass matrix for the manipulator and fills it with zeros.
  virtual void resize();
  /// The matrix D of `KtMatrixDTool` that belongs to the last `massMatrix`.
  void getCoupling(KtReArray& d) const { columns_.getCoupling(d); }
  /// For each joint of the last `massMatrix`, the joint that carries it, or the number of joints
  /// for a joint on the base.
  const std::vector<KtU32>& parents() const noexcept { return columns_.parents(); }

 private:
  const KtReArray& extend(KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker,
                          const KtOrientation* axes);

  bool isFixedBase_ = true;
  KtU32 degreesOfConstraint_ = 0;
  KtReArray massMatrix_;
  KtReArray extended_;
  KtReArray nullSpaceTorque_;
  // Work space
  KtTotalTorqueTool totalTorqueTool_;
  KtMatrixDTool matrixDTool_;
  Kt::detail::CompositeColumns columns_;
  KtVelocityState velocity_;
  KtAccelerationState acceleration_;
  KtManipulatorExternalForce noForce_;
  KtReArray identity_;
  KtReArray coupling_;
  KtReArray baseInertia_;
};
