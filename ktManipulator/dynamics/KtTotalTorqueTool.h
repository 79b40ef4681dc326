#pragma once

#include "ktManipulator/dynamics/KtManipulatorTool.h"
#include "ktManipulator/foundation/matrix/KtReArray.h"
#include "ktManipulator/state/KtManipulatorExternalForce.h"
#include "ktManipulator/state/KtManipulatorTorque.h"

/// What a joint's torque has of the mechanical component of its actuator.
enum KtTotalTorqueType : KtU32 {
  kTotalTorqueWithFriction = 0,  ///< What the component needs for itself under that load.
  kTotalTorqueWithLinear = 1,    ///< The component's linear part alone: viscous friction, stoppers.
  kTotalTorqueOfLinks = 2        ///< Nothing.
};

/// Inverse dynamics: the torques that the motion of an active state takes, by the recursive method
/// of Newton and Euler.
///
/// Gravity is an acceleration of the base upwards, in the acceleration state that is given. A state
/// that came out of forward dynamics has none: to get the torques back, gravity is to be added to
/// its general acceleration.
///
/// Forces are kept in the active state. It doesn't see another external force, nor another asker:
/// what was computed for the first stays until a state is set or `invalidateAll` is called.
///
/// @see J. Y. S. Luh, M. W. Walker, R. P. C. Paul, On-line computational scheme for mechanical
///      manipulators, Journal of Dynamic Systems, Measurement, and Control 102 (1980), 69-76
class KT_EXPORT KtTotalTorqueTool : public KtManipulatorTool {
 public:
  void setManipulator(const KtIndividualManipulator* manipulator) override;

  /// The torque (or force) of one joint: what the links need, the springs and dampers at the joint,
  /// the actuator's inertia at the joint's acceleration, and what `totalTorqueType()` asks for.
  ///
  /// @param index        link index; 0 is the answer without a manipulator or such a link
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
  /// The same on the state pointed to or the tool's own. If its actuator state has fewer entries
  /// than there are joint positions, the actuators initialise it first.
  virtual const KtManipulatorTorque& torques(const KtManipulatorExternalForce& external,
                                             KtManipulatorActiveState* activeState,
                                             const KtStatedSystemStruct* asker);
  /// The torques with the base left to itself: its acceleration in the state is replaced, for good,
  /// by the one at which no force is needed at the base.
  virtual const KtManipulatorTorque& torquesNoBaseForce(const KtManipulatorExternalForce& external,
                                                        KtManipulatorActiveState& activeState,
                                                        const KtStatedSystemStruct* asker);
  /// The same on the state pointed to or the tool's own.
  virtual const KtManipulatorTorque& torquesNoBaseForce(const KtManipulatorExternalForce& external,
                                                        KtManipulatorActiveState* activeState,
                                                        const KtStatedSystemStruct* asker);
  /// The force and moment at the base's DH frame, in its axes, that the motion takes; zero without
  /// a manipulator.
  virtual KtGeneralForce generalForce(const KtManipulatorExternalForce& external,
                                      KtManipulatorActiveState& activeState,
                                      const KtStatedSystemStruct* asker);
  /// The same on the state pointed to or the tool's own.
  virtual KtGeneralForce generalForce(const KtManipulatorExternalForce& external,
                                      KtManipulatorActiveState* activeState,
                                      const KtStatedSystemStruct* asker);
  /// Makes the base of the tool's own state accelerate by g, without turning: gravity, pointing up.
  virtual void setBaseAccelerationFromGravityVector(const KtVector& g);
  /// Sets the velocities of the tool's own state. If it has fewer joint accelerations, they become
  /// as many zeros, and the base's acceleration zero.
  virtual void setVelocityState(const KtVelocityState& state);
  /// Sets the accelerations of the tool's own state.
  virtual void setAccelerationState(const KtAccelerationState& state);
  /// Sets what `totalTorqueType()` answers. Values beyond the three count as the last.
  virtual void setTotalTorqueType(KtTotalTorqueType type) { totalTorqueType_ = type; }
  /// What torques have of the actuators' mechanical components; the first by default.
  virtual KtTotalTorqueType totalTorqueType() const { return totalTorqueType_; }
  /// Gives the results the manipulator's sizes.
  virtual void resize();

 private:
  KtTotalTorqueType totalTorqueType_ = kTotalTorqueWithFriction;
  KtManipulatorTorque result_;
  KtAccelerationState acceleration_;  // work space, as are the next two
  KtReArray baseForce_;
  KtReArray baseAcceleration_;
};
