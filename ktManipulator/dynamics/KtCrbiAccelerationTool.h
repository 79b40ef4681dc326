#pragma once

#include <vector>

#include "ktManipulator/dynamics/KtBranchFactor.h"
#include "ktManipulator/dynamics/KtMassMatrixTool.h"

class KtIndividualManipulator;
class KtStateEqualityConstraintVector;
class KtStatedSystem;

/// Forward dynamics by the mass matrix, which the tool computes by the composite-rigid-body method
/// and factors. Unlike `KtArbiAccelerationTool` it honours the manipulator's state equality
/// constraints and solves for a mix of unknown accelerations and torques.
///
/// Gravity enters as an upward acceleration of the base, the system's `upGravityVector()`. During
/// the computation the acceleration state contains it, with zero joint accelerations; that state
/// gives the gravitational, Coriolis and centripetal forces. The result contains true
/// accelerations. A caller who sets the result as the acceleration state of the same active state
/// overwrites gravity there and has to restore it before the next call of a second form.
///
/// The tool keeps matrices and factors between calls. If `recompute` is false, it uses those of the
/// last call and only computes what depends on velocities, torques and forces; it computes them if
/// it has none for this number of unknowns.
///
/// The tool does not detect an indefinite mass matrix. Only one thread may use it at a time.
///
/// @see R. Featherstone, Rigid Body Dynamics Algorithms, Springer 2008, ch. 6, 8 and 9
class KT_EXPORT KtCrbiAccelerationTool {
 public:
  virtual ~KtCrbiAccelerationTool() = default;

  /// The accelerations in a state of positions and velocities.
  ///
  /// @param system         the system of the manipulator, with its environment and attachments
  /// @param manipulator    one of that system
  /// @param position       positions
  /// @param velocity       velocities
  /// @param torque         torques of the joints' actuators, and the load on a free base. A joint
  ///                       beyond the last entry gets the torque that the motion itself needs.
  /// @param external       forces on the links from outside, in the axes of their DH frames
  /// @param acceleration   the result: one joint acceleration for each joint, and, for a free base,
  ///                       its acceleration in the axes of the system; that of a fixed base is left
  ///                       as it is
  /// @param activeState    if not null, the call is one of the second form on this state, which
  ///                       takes positions, velocities and gravity from it and prepares nothing.
  ///                       If null, the tool's own state is used. It keeps the acceleration state
  ///                       of an earlier call, unless that has too few joints, or no gravity while
  ///                       the system has. Its motors are at rest: pass an active state whose
  ///                       actuators are initialised to get the friction of moving motors.
  /// @param recompute      whether matrices and factors are computed anew
  virtual void acceleration(const KtStatedSystem& system,
                            const KtIndividualManipulator& manipulator,
                            const KtPositionState& position, const KtVelocityState& velocity,
                            const KtManipulatorTorque& torque,
                            const KtManipulatorExternalForce& external,
                            KtAccelerationState& acceleration,
                            KtManipulatorActiveState* activeState, bool recompute);
  /// The accelerations in an active state that has positions and velocities, and gravity in its
  /// acceleration state. The state does not notice a changed external force: call `invalidateAll`
  /// on it after changing one.
  virtual void acceleration(const KtStatedSystem& system,
                            const KtIndividualManipulator& manipulator,
                            const KtManipulatorTorque& torque,
                            const KtManipulatorExternalForce& external,
                            KtAccelerationState& acceleration,
                            KtManipulatorActiveState& activeState, bool recompute);
  /// Finds the accelerations of some unknowns and the torques of the others. Unknowns are the
  /// joints by link index and, for a free base, its linear x, y, z and angular x, y, z.
  ///
  /// @param system         see `acceleration`
  /// @param manipulator    see `acceleration`
  /// @param position       see `acceleration`
  /// @param velocity       see `acceleration`
  /// @param external       see `acceleration`
  /// @param selection      true if the torque is known and the acceleration is sought, false if the
  ///                       acceleration is known; true for unknowns beyond its end
  /// @param torque         in: the known torques; see `acceleration` for joints beyond the last.
  ///                       Out: the torques sought are added, as the commands that give these
  ///                       joint torques through the gears. A joint with gear ratio 0 keeps its
  ///                       value. The list is resized to one entry for each joint; missing ones
  ///                       start from 0.
  /// @param acceleration   in: the known accelerations. Out: also those sought, one entry for each
  ///                       joint. Unlike in `acceleration`, the acceleration of a free base is in
  ///                       the axes of its DH frame, in and out; that of a fixed base becomes zero
  /// @param activeState    see `acceleration`
  /// @param recompute      see `acceleration`; a different selection also recomputes the factors
  virtual void hybridTorqueAcceleration(
      const KtStatedSystem& system, const KtIndividualManipulator& manipulator,
      const KtPositionState& position, const KtVelocityState& velocity,
      const KtManipulatorExternalForce& external, const std::vector<bool>& selection,
      KtManipulatorTorque& torque, KtAccelerationState& acceleration,
      KtManipulatorActiveState* activeState, bool recompute);
  /// The same on an active state, as with `acceleration`.
  virtual void hybridTorqueAcceleration(const KtStatedSystem& system,
                                        const KtIndividualManipulator& manipulator,
                                        const KtManipulatorExternalForce& external,
                                        const std::vector<bool>& selection,
                                        KtManipulatorTorque& torque,
                                        KtAccelerationState& acceleration,
                                        KtManipulatorActiveState& activeState, bool recompute);
  /// Computes the right-hand side of the joints' equations: the torques that reach the joints
  /// through the actuators' mechanical components, minus the torques that the motion itself needs.
  /// Joints beyond the end of `torque` get 0.
  virtual void calculateJointTorqueArray(const KtIndividualManipulator& manipulator,
                                         const KtManipulatorTorque& torque,
                                         const KtManipulatorExternalForce& external,
                                         KtManipulatorActiveState& activeState,
                                         const KtStatedSystemStruct* asker);
  /// Computes the mass matrix with the actuators' inertias.
  ///
  /// @return true
  virtual bool calculateMassMatrix(const KtIndividualManipulator& manipulator,
                                   KtManipulatorActiveState& activeState,
                                   const KtStatedSystemStruct* asker);
  /// Computes the mass matrix with the base, in its DH frame, and with the actuators' inertias.
  ///
  /// @return true
  virtual bool calculateExtendedMassMatrixInBase(const KtIndividualManipulator& manipulator,
                                                 KtManipulatorActiveState& activeState,
                                                 const KtStatedSystemStruct* asker);

 private:
  void prepareOwn(const KtStatedSystem& system, const KtIndividualManipulator& manipulator,
                  const KtPositionState& position, const KtVelocityState& velocity);
  void addActuatorInertias(const KtIndividualManipulator& manipulator,
                           KtManipulatorActiveState& activeState);
  void factorMassMatrix(const KtIndividualManipulator& manipulator,
                        KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker);
  void solveFirstHalf(KtReArray& x) const;
  void solveSecondHalf(KtReArray& x) const;
  void solve(KtReArray& x);
  void partition(KtU32 selected);
  KtGeneralForce baseForce(const KtIndividualManipulator& manipulator,
                           const KtManipulatorTorque& torque,
                           const KtManipulatorExternalForce& external,
                           KtManipulatorActiveState& activeState,
                           const KtStatedSystemStruct* asker) const;
  void addConstraintForces(const KtIndividualManipulator& manipulator,
                           KtManipulatorActiveState& activeState);

  KtManipulatorActiveState own_;
  KtMassMatrixTool massMatrixTool_;
  KtTotalTorqueTool totalTorqueTool_;
  KtReArray massMatrix_;
  KtReArray jointTorques_;
  // Unknowns of the right side are ordered base first, those of the mass matrix joints first.
  KtReArray rightSide_;
  KtReArray solution_;
  // The factors: of the joints, for trees or for chains, and of the base with the joints free.
  KtU32 factoredJoints_ = ktUnmappedIndex;
  bool factoredBase_ = false;
  bool isBranched_ = false;
  Kt::detail::BranchFactor branchFactor_;
  KtReArray factor_;
  KtReArray baseCoupling_;   // G^-1 D
  KtReArray baseFactor_;     // of I - D^T H^-1 D
  KtReArray joints_, base_;  // parts of what is solved for
  KtReArray part_;
  // Of the constraints
  KtReArray unconstrained_;
  KtReArray violation_;
  KtReArray constraintResponse_;
  KtReArray constraintMatrix_;
  KtReArray constraintFactor_;
  KtReArray multipliers_;
  KtReArray constraintForces_;
  // Of the hybrid problem: 1 are the unknowns of known torque, 2 those of known acceleration.
  std::vector<bool> selection_;
  KtU32 partitionedJoints_ = 0;
  KtReArray h11_, h12_, h21_, h22_;
  KtReArray hybridFactor_;
  KtReArray b1_, a2_, x1_, t2_, product_;
};
