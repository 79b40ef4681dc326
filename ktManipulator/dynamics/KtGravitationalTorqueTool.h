#pragma once

#include "ktManipulator/dynamics/KtManipulatorTool.h"
#include "ktManipulator/foundation/matrix/KtReArray.h"

class KtManipulatorLink;

/// The torques that hold a manipulator against gravity, and how they change with its positions.
class KT_EXPORT KtGravitationalTorqueTool : public KtManipulatorTool {
 public:
  void setManipulator(const KtIndividualManipulator* manipulator) override;

  /// The acceleration of the base that stands for gravity: upwards, in the axes of the system;
  /// (0, 0, 9.8) m/s^2 by default.
  virtual const KtVector& gravityVector() const { return gravityVector_; }
  virtual void setGravityVector(const KtVector& v) { gravityVector_ = v; }
  /// The torque (or force) that a joint needs to hold what it carries.
  ///
  /// @param index        link index; 0 is the answer without a manipulator or such a link
  /// @param activeState  positions; filled with what was computed
  /// @param asker        the system whose attached manipulators count as well; may be null
  virtual double gravitationalTorque(KtU32 index, KtManipulatorActiveState& activeState,
                                     const KtStatedSystemStruct* asker);
  /// The same on the state pointed to or the tool's own.
  virtual double gravitationalTorque(KtU32 index, KtManipulatorActiveState* activeState,
                                     const KtStatedSystemStruct* asker);
  /// Those of all joints, as a column.
  virtual const KtReArray& gravitationalTorques(KtManipulatorActiveState& activeState,
                                                const KtStatedSystemStruct* asker);
  /// The same on the state pointed to or the tool's own.
  virtual const KtReArray& gravitationalTorques(KtManipulatorActiveState* activeState,
                                                const KtStatedSystemStruct* asker);
  /// The derivatives of a joint's torque by all joint positions, as a row, by one recursion inboard
  /// and one outboard; exact where the unit motions of joints don't depend on their positions.
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
  /// Gives the results the manipulator's sizes, filled with zeros.
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
  // Sets the derivative by a link's position: the product of a force that its motion turns, in the
  // link's DH axes, and gravity.
  void setDerivative(const KtManipulatorLink& link, const KtVector& turned,
                     KtManipulatorActiveState& activeState);

  KtVector gravityVector_{0.0, 0.0, 9.8};
  KtReArray torques_;
  KtReArray gradient_;
};
