#pragma once

#include "ktManipulator/activestate/KtManipulatorActiveAccelerationState.h"
#include "ktManipulator/activestate/KtManipulatorActiveArticulationState.h"
#include "ktManipulator/activestate/KtManipulatorActiveForceState.h"
#include "ktManipulator/activestate/KtManipulatorActiveMassState.h"
#include "ktManipulator/activestate/KtManipulatorActivePositionState.h"
#include "ktManipulator/activestate/KtManipulatorActiveVelocityState.h"
#include "ktManipulator/actuation/KtActuatorState.h"
#include "ktManipulator/foundation/core/KtCacheFlag.h"

/// The positions and velocities of one manipulator, and a cache of the results computed from them.
///
/// Queries on links take an active state and store their results in it; each cached value has a
/// flag that tells whether it is valid. Setters compute nothing, but invalidate dependent values:
///
/// | Setter               | position | velocity | mass | acceleration | force | articulation |
/// |----------------------|----------|----------|------|--------------|-------|--------------|
/// | `setPositionState`   | yes      | yes      | yes  | yes          | yes   | yes          |
/// | `setVelocityState`   | no       | yes      | no   | yes          | yes   | yes          |
/// | `setAccelerationState` | no     | no       | no   | yes          | yes   | yes          |
///
/// The setters of whole parts (`setActivePositionState` and so on), and changes through a reference
/// to a part, invalidate nothing else. The cache doesn't know the mechanism, external forces,
/// torques and attached manipulators that its values belong to: call `invalidateAll` after changing
/// one of these.
///
/// Do not write through a reference obtained before the last setter call. The acceleration and
/// force states have a flag that says that no reference for writing was obtained since they were
/// invalidated; setters then skip them, which saves a loop over all links in each step.
///
/// Setters allocate no memory unless the number of joints changes. Only one thread at a time may
/// use an active state. Files of active states are for inspection only: some cached values are not
/// written, although their flags may be.
class KT_EXPORT KtManipulatorActiveState
    : public KtXmlPersistent<KtManipulatorActiveState, KtXmlCompoundType> {
 public:
  /// Reads the state, valid flags included; see `KtXmlObject::read`.
  bool read(KtXmlReader& reader) override;
  void registerComponents() override;

  /// The positions of the joints and the place of the base.
  virtual const KtPositionState& positionState() const {
    return activePositionState_.positionState();
  }
  /// Sets the positions, resizes all parts to the number of joints and makes every cached result
  /// invalid.
  ///
  /// @return false, with nothing done, if the value is exactly the same as before
  virtual bool setPositionState(const KtPositionState& state);
  /// The rates of the joints and the velocity of the base.
  virtual const KtVelocityState& velocityState() const {
    return activeVelocityState_.velocityState();
  }
  /// Sets what `velocityState()` answers and makes velocities, accelerations, forces and
  /// articulated dynamics invalid.
  ///
  /// @return false, with nothing done, if the value is exactly the same as before
  virtual bool setVelocityState(const KtVelocityState& state);
  /// The accelerations of the joints and of the base.
  virtual const KtAccelerationState& accelerationState() const {
    return activeAccelerationState_.accelerationState();
  }
  /// Sets the accelerations without a comparison, and makes the cached accelerations, forces and
  /// articulated dynamics invalid.
  virtual void setAccelerationState(const KtAccelerationState& state);

  /// Positions, and frames of links.
  virtual const KtManipulatorActivePositionState& activePositionState() const {
    return activePositionState_;
  }
  virtual KtManipulatorActivePositionState& activePositionState() { return activePositionState_; }
  virtual void setActivePositionState(const KtManipulatorActivePositionState& state) {
    activePositionState_ = state;
  }
  /// Velocities, and those of links.
  virtual const KtManipulatorActiveVelocityState& activeVelocityState() const {
    return activeVelocityState_;
  }
  virtual KtManipulatorActiveVelocityState& activeVelocityState() { return activeVelocityState_; }
  virtual void setActiveVelocityState(const KtManipulatorActiveVelocityState& state) {
    activeVelocityState_ = state;
  }
  /// Accelerations, and those of links.
  virtual const KtManipulatorActiveAccelerationState& activeAccelerationState() const {
    return activeAccelerationState_;
  }
  /// The same, to be filled. It doesn't count as clean from then on.
  virtual KtManipulatorActiveAccelerationState& activeAccelerationState() {
    return accelerationCache();
  }
  virtual void setActiveAccelerationState(const KtManipulatorActiveAccelerationState& state) {
    activeAccelerationState() = state;
  }
  /// Forces on links.
  virtual const KtManipulatorActiveForceState& activeForceState() const {
    return activeForceState_;
  }
  /// The same, to be filled. It doesn't count as clean from then on.
  virtual KtManipulatorActiveForceState& activeForceState() { return forceCache(); }
  virtual void setActiveForceState(const KtManipulatorActiveForceState& state) {
    activeForceState() = state;
  }
  /// Composite inertias of links.
  virtual const KtManipulatorActiveMassState& activeMassState() const { return activeMassState_; }
  virtual KtManipulatorActiveMassState& activeMassState() { return activeMassState_; }
  virtual void setActiveMassState(const KtManipulatorActiveMassState& state) {
    activeMassState_ = state;
  }
  /// Articulated dynamics of links.
  virtual const KtManipulatorActiveArticulationState& activeArticulationState() const {
    return activeArticulationState_;
  }
  virtual KtManipulatorActiveArticulationState& activeArticulationState() {
    return activeArticulationState_;
  }
  virtual void setActiveArticulationState(const KtManipulatorActiveArticulationState& state) {
    activeArticulationState_ = state;
  }
  /// The dynamic quantities of the actuators.
  virtual const KtActuatorState& actuatorState() const { return actuatorState_; }
  virtual KtActuatorState& actuatorState() { return actuatorState_; }
  virtual void setActuatorState(const KtActuatorState& state) { actuatorState_ = state; }
  /// Makes everything invalid but the dynamic quantities of the actuators, which stay.
  virtual void invalidateAll();

  // For passes over many links: the members, without virtual calls.

  /// What `activePositionState()` answers.
  KtManipulatorActivePositionState& positionCache() noexcept { return activePositionState_; }
  /// What `activeVelocityState()` answers.
  KtManipulatorActiveVelocityState& velocityCache() noexcept { return activeVelocityState_; }
  /// What `activeAccelerationState()` answers, which doesn't count as clean from then on.
  KtManipulatorActiveAccelerationState& accelerationCache() noexcept {
    accelerationClean_ = false;
    return activeAccelerationState_;
  }
  /// What `activeForceState()` answers, which doesn't count as clean from then on.
  KtManipulatorActiveForceState& forceCache() noexcept {
    forceClean_ = false;
    return activeForceState_;
  }
  /// What `activeMassState()` answers.
  KtManipulatorActiveMassState& massCache() noexcept { return activeMassState_; }
  /// What `activeArticulationState()` answers.
  KtManipulatorActiveArticulationState& articulationCache() noexcept {
    return activeArticulationState_;
  }

  /// Exact equality of what files hold.
  bool operator==(const KtManipulatorActiveState&) const = default;
  static const KtToken& classToken() { return KtManip::KtManipulatorActiveStateToken; }

 private:
  void invalidateAccelerationUnlessClean();
  void invalidateForceUnlessClean();

  KtManipulatorActivePositionState activePositionState_;
  KtManipulatorActiveVelocityState activeVelocityState_;
  KtManipulatorActiveAccelerationState activeAccelerationState_;
  KtManipulatorActiveForceState activeForceState_;
  KtManipulatorActiveMassState activeMassState_;
  KtManipulatorActiveArticulationState activeArticulationState_;
  KtActuatorState actuatorState_;
  // Not in files. True only while no entry of the state is valid.
  KtCacheFlag accelerationClean_;
  KtCacheFlag forceClean_;
};

extern template class KtXmlVectorType<KtManipulatorActiveState>;
