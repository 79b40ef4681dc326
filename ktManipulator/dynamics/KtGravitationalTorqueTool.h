#pragma once

#include "ktManipulator/dynamics/KtManipulatorTool.h"
#include "ktManipulator/foundation/matrix/KtReArray.h"

class KtManipulatorLink;

/// The torques that hold a manipulator against gravity, and how they change with its positions.
class KT_EXPORT KtGravitationalTorqueTool : public KtManipulatorTool {
 public:
  void setManipulator(const KtIndividualManipulator* manipulator) override;

  /// The upward acceleration of the base that represents gravity, in the axes of the system;
  /// (0, 0, 9.8) m/s^2 by default.
  virtual const KtVector& gravityVector() const { return gravityVector_; }
  virtual void setGravityVector(const KtVector& v) { gravityVector_ = v; }
  /// The torque (or force) that a joint needs to hold what it carries.
  ///
  /// @param index        link index; the result is 0 without a manipulator or such a link
  /// @param activeState  positions; filled with what was computed
  /// @param asker        the system whose attached manipulators count as well; may be null
  virtual double gravitationalTorque(KtU32 index, KtManipulatorActiveState& activeState,
                                     const KtStatedSystemStruct* asker);
  /// The same on the state pointed to or the tool's own.
  virtual double gravitationalTorque(KtU32 index, KtManipulatorActiveState* activeState,
                                     const KtStatedSystemStruct* asker);
  /// The torques of all joints, as a column.
  virtual const KtReArray& gravitationalTorques(KtManipulatorActiveState& activeState,
                                                const KtStatedSystemStruct* asker);
  /// The same on the state pointed to or the tool's own.
  virtual const KtReArray& gravitationalTorques(KtManipulatorActiveState* activeState,
                                                const KtStatedSystemStruct* asker);
  /// The derivatives of a joint's torque with respect to all joint positions, as a row, by one
  /// recursion inboard and one outboard. They are exact if the unit motions of the joints do not
  /// depend on the joint positions.
  ///
  /// @param index        link index; without a manipulator or such a link the result stays as it
  ///                     was
  /// @param activeState  positions; filled with what was computed
  /// @param asker        the system whose attached manipulators count as well; may be null
  virtual const KtReArray& gravitationalTorqueGradient(KtU32 index,
                                                       KtManipulatorActiveState& activeState,
                                                       const KtStatedSystemStruct* asker);
  /// The same on the state pointed to or the tool's own.
  virtual const KtReArray& gravitationalTorqueGradient(KtU32 index,
                                                       KtManipulatorActiveState* activeState,
                                                       const KtStatedSystemStruct* asker);
  /// Resizes the results for the manipulator and fills them with zeros.
  virtual void resize();

 private:
  const KtManipulatorLink* linkOrNull(KtU32 index) const;
  // Gravity in the link's DH axes.
  KtVector gravityAt(const KtManipulatorLink& link, KtManipulatorActiveState& activeState) const;
  void calculateInboardPartialDerivatives(KtGeneralForce force, const KtManipulatorLink* link,
                                          KtManipulatorActiveState& activeState);
  void calculateOutboardPartialDerivatives(const KtGeneralMotion& unit,
                                           const KtManipulatorLink& link,
                                           KtManipulatorActiveState& activeState,
                                           const KtStatedSystemStruct* asker);
  // Sets the derivative with respect to a link's position: the product of gravity and a force that
  // the link's motion turns, in the link's DH axes.
  void setDerivative(const KtManipulatorLink& link, const KtVector& turned,
                     KtManipulatorActiveState& activeState);

  KtVector gravityVector_{0.0, 0.0, 9.8};
  KtReArray torques_;
  KtReArray gradient_;
};
