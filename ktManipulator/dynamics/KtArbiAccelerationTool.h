#pragma once

#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/dynamics/KtTotalTorqueTool.h"

class KtIndividualManipulator;
class KtStatedSystem;

/// Forward dynamics by the articulated-body method: the accelerations of joints and base under
/// given torques and forces, in a time proportional to the number of links.
///
/// Gravity enters as an upward acceleration of the base, the system's `upGravityVector()`. During
/// the computation the acceleration state contains it, with zero joint accelerations; that state
/// gives the gravitational, Coriolis and centripetal forces. The result is what torques and forces
/// add to it, so the acceleration of a free base is its true one. A caller who sets the result as
/// the acceleration state of the same active state overwrites gravity there and has to restore it
/// before the next call of the second form.
///
/// Only one thread may use a tool at a time.
///
/// @see R. Featherstone, The calculation of robot dynamics using articulated-body inertias,
///      International Journal of Robotics Research 2 (1983) 1, 13-30
class KT_EXPORT KtArbiAccelerationTool {
 public:
  virtual ~KtArbiAccelerationTool() = default;

  /// The accelerations in a state of positions and velocities.
  ///
  /// @param system         the system of the manipulator, with its environment and attachments
  /// @param manipulator    one of that system
  /// @param position       positions
  /// @param velocity       velocities
  /// @param torque         torques of the joints' actuators, 0 for joints beyond the last entry,
  /// and
  ///                       the load on a free base
  /// @param external       forces on the links from outside, in the axes of their DH frames
  /// @param acceleration   the result: one joint acceleration for each joint, and the acceleration
  ///                       of the base in the axes of the system, which is 0 for a fixed base. A
  ///                       joint without any inertia gets 0.
  /// @param activeState    if not null, the call is one of the second form on this state, which
  ///                       takes positions, velocities and gravity from it and prepares nothing.
  ///                       If null, the tool's own state is used. It keeps the acceleration state
  ///                       of an earlier call, with its gravity, as long as that has enough joints
  ///                       and there are joints. Its motors are at rest: pass an active state whose
  ///                       actuators are initialised to get the friction of moving motors.
  /// @param recompute      has no effect
  virtual void acceleration(const KtStatedSystem& system,
                            const KtIndividualManipulator& manipulator,
                            const KtPositionState& position, const KtVelocityState& velocity,
                            const KtManipulatorTorque& torque,
                            const KtManipulatorExternalForce& external,
                            KtAccelerationState& acceleration,
                            KtManipulatorActiveState* activeState, bool recompute);
  /// The accelerations in an active state that has positions and velocities, and gravity in its
  /// acceleration state. The state does not notice a changed torque or external force: call
  /// `invalidateAll` on it after changing one.
  virtual void acceleration(const KtStatedSystem& system,
                            const KtIndividualManipulator& manipulator,
                            const KtManipulatorTorque& torque,
                            const KtManipulatorExternalForce& external,
                            KtAccelerationState& acceleration,
                            KtManipulatorActiveState& activeState, bool recompute);
  /// Does nothing, since each call brings its sizes.
  virtual void resize() {}

 private:
  KtManipulatorActiveState own_;
  KtManipulatorTorque netTorque_;
  KtTotalTorqueTool totalTorqueTool_;
};
