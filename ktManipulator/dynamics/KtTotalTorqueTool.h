#pragma once

#include "ktManipulator/dynamics/KtManipulatorTool.h"
#include "ktManipulator/foundation/matrix/KtReArray.h"
#include "ktManipulator/state/KtManipulatorExternalForce.h"
#include "ktManipulator/state/KtManipulatorTorque.h"

/// Which part of its actuator's mechanical component a joint torque includes.
enum KtTotalTorqueType : KtU32 {
  kTotalTorqueWithFriction = 0,  ///< All that the component needs under that load, with friction.
  kTotalTorqueWithLinear = 1,    ///< Its linear part alone: viscous friction, stoppers.
  kTotalTorqueOfLinks = 2        ///< None of it.
};

/// Inverse dynamics: the torques that the motion in an active state needs, by the recursive method
/// of Newton and Euler.
///
/// Gravity enters as an upward acceleration of the base, which the caller puts into the
/// acceleration state. A state that forward dynamics returned does not contain it: add gravity to
/// its general acceleration to get the torques back.
///
/// The active state caches the forces. It does not notice a different external force or a different
/// asker: the results of the first ones remain until a state is set or `invalidateAll` is called.
///
/// @see J. Y. S. Luh, M. W. Walker, R. P. C. Paul, On-line computational scheme for mechanical
///      manipulators, Journal of Dynamic Systems, Measurement, and Control 102 (1980), 69-76
class KT_EXPORT KtTotalTorqueTool : public KtManipulatorTool {
 public:
  void setManipulator(const KtIndividualManipulator* manipulator) override;

  /// The torque (or force) of one joint. It is the sum of what the links need, the torques of
  /// spring and damper at the joint, the torque that accelerates the actuator's inertia, and the
  /// part of the mechanical component that `totalTorqueType()` selects.
  ///
  /// @param index        link index; the result is 0 without a manipulator or such a link
  /// @param external     forces on the links from outside, in the axes of their DH frames
  /// @param activeState  positions, velocities and accelerations; filled with what was computed
  /// @param asker        the system whose attached manipulators count as well; may be null
  virtual double torque(KtU32 index, const KtManipulatorExternalForce& external,
                        KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker);
  /// The same on the state pointed to or the tool's own.
  virtual double torque(KtU32 index, const KtManipulatorExternalForce& external,
                        KtManipulatorActiveState* activeState, const KtStatedSystemStruct* asker);
  /// The torques of all joints by `torque`, and the `generalForce` that the base needs.
  virtual const KtManipulatorTorque& torques(const KtManipulatorExternalForce& external,
                                             KtManipulatorActiveState& activeState,
                                             const KtStatedSystemStruct* asker);
  /// The same on the state pointed to or the tool's own. If the state's actuator state has fewer
  /// entries than joint positions, the actuators initialise it first.
  virtual const KtManipulatorTorque& torques(const KtManipulatorExternalForce& external,
                                             KtManipulatorActiveState* activeState,
                                             const KtStatedSystemStruct* asker);
  /// The torques of a base that moves freely. The acceleration of the base in the state is replaced
  /// by the one at which the base needs no force, and keeps that value afterwards.
  virtual const KtManipulatorTorque& torquesNoBaseForce(const KtManipulatorExternalForce& external,
                                                        KtManipulatorActiveState& activeState,
                                                        const KtStatedSystemStruct* asker);
  /// The same on the state pointed to or the tool's own.
  virtual const KtManipulatorTorque& torquesNoBaseForce(const KtManipulatorExternalForce& external,
                                                        KtManipulatorActiveState* activeState,
                                                        const KtStatedSystemStruct* asker);
  /// The force and moment that the motion needs at the base's DH frame, in that frame's axes; zero
  /// without a manipulator.
  virtual KtGeneralForce generalForce(const KtManipulatorExternalForce& external,
                                      KtManipulatorActiveState& activeState,
                                      const KtStatedSystemStruct* asker);
  /// The same on the state pointed to or the tool's own.
  virtual KtGeneralForce generalForce(const KtManipulatorExternalForce& external,
                                      KtManipulatorActiveState* activeState,
                                      const KtStatedSystemStruct* asker);
  /// Sets the acceleration of the base in the tool's own state to g, without angular acceleration.
  /// The vector g points up, against gravity.
  virtual void setBaseAccelerationFromGravityVector(const KtVector& g);
  /// Sets the velocities of the tool's own state. If the state has fewer joint accelerations than
  /// that, all its accelerations become zero, with one entry for each joint.
  virtual void setVelocityState(const KtVelocityState& state);
  /// Sets the accelerations of the tool's own state.
  virtual void setAccelerationState(const KtAccelerationState& state);
  /// Values beyond the three count as the last.
  virtual void setTotalTorqueType(KtTotalTorqueType type) { totalTorqueType_ = type; }
  /// Which part of the mechanical components torques include; `kTotalTorqueWithFriction` by
  /// default.
  virtual KtTotalTorqueType totalTorqueType() const { return totalTorqueType_; }
  /// Resizes the results for the manipulator.
  virtual void resize();

 private:
  KtTotalTorqueType totalTorqueType_ = kTotalTorqueWithFriction;
  KtManipulatorTorque result_;
  KtAccelerationState acceleration_;  // work space, as are the next two
  KtReArray baseForce_;
  KtReArray baseAcceleration_;
};
