#pragma once

#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/dynamics/KtTotalTorqueTool.h"

class KtIndividualManipulator;
class KtStatedSystem;

/// Forward dynamics by the articulated-body method, in a time proportional to the number of links:
/// the accelerations of joints and base under given torques and forces.
///
/// Gravity is an acceleration of the base upwards, the system's `upGravityVector()`. It stands in
/// the acceleration state while the joints don't accelerate: from there come the forces of gravity,
/// Coriolis and the centripetal ones. What torques and forces add to it are the result, so that the
/// acceleration of a free base is its true one. A caller who makes the result the acceleration
/// state of the same active state overwrites gravity there, and has to put it back before the next
/// call of the second form.
///
/// A tool belongs to one thread at a time.
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
  /// @param torque         torques that the joints' actuators get, which are 0 beyond the last, and
  ///                       the load on a free base
  /// @param external       forces on the links from outside, in the axes of their DH frames
  /// @param acceleration   the result: one joint acceleration for each joint, and the acceleration
  ///                       of the base in the axes of the system, which is 0 for a fixed base. A
  ///                       joint without any inertia gets 0.
  /// @param activeState    if not null, the second form answers on it: then positions, velocities
  ///                       and gravity are taken from there as they are, and nothing is prepared.
  ///                       With null the tool's own state is used. In it, the acceleration state
  ///                       that an earlier call put there stays, with its gravity, as long as it
  ///                       has enough joints, and there are joints. Its actuators' motors are at
  ///                       rest: for the friction of moving motors, give an active state whose
  ///                       actuators are initialised.
  /// @param recompute      plays no part
  virtual void acceleration(const KtStatedSystem& system,
                            const KtIndividualManipulator& manipulator,
                            const KtPositionState& position, const KtVelocityState& velocity,
                            const KtManipulatorTorque& torque,
                            const KtManipulatorExternalForce& external,
                            KtAccelerationState& acceleration,
                            KtManipulatorActiveState* activeState, bool recompute);
  /// The accelerations in an active state that has positions and velocities, and gravity in its
  /// acceleration state. It doesn't see another torque or external force than those of the first
  /// call: a caller who changes them calls `invalidateAll` on it before.
  virtual void acceleration(const KtStatedSystem& system,
                            const KtIndividualManipulator& manipulator,
                            const KtManipulatorTorque& torque,
                            const KtManipulatorExternalForce& external,
                            KtAccelerationState& acceleration,
                            KtManipulatorActiveState& activeState, bool recompute);
  /// Does nothing: sizes are taken from each call.
  virtual void resize() {}

 private:
  KtManipulatorActiveState own_;
  KtManipulatorTorque netTorque_;
  KtTotalTorqueTool totalTorqueTool_;
};
