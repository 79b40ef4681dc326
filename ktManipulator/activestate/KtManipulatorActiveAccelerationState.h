#pragma once

#include "ktManipulator/activestate/KtLinkAccelerationState.h"
#include "ktManipulator/activestate/KtLinkEntries.h"
#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/state/KtAccelerationState.h"

/// The accelerations of one manipulator, and a cache of the accelerations of its links.
///
/// There is one entry for each link by `linkIndex`, and one for the base, which an operation that
/// takes an index reaches by `ktBaseIndex`. Other indices are not checked. The joints'
/// accelerations may be fewer than the links: those that miss count as 0.
class KT_EXPORT KtManipulatorActiveAccelerationState
    : public Kt::detail::LinkCache<KtManipulatorActiveAccelerationState, KtLinkAccelerationState> {
 public:
  void registerComponents() override;

  /// The accelerations of the joints and of the base.
  virtual const KtAccelerationState& accelerationState() const { return accelerationState_; }
  /// Sets what `accelerationState()` answers and makes all entries invalid; their number stays.
  virtual void setAccelerationState(const KtAccelerationState& state);
  /// The entries of the links.
  virtual const LinkStates& linkAccelerationStates() const { return entries_.links(); }
  virtual LinkStates& linkAccelerationStates() { return entries_.links(); }
  /// `KtLinkAccelerationState::dhFrameAccelerationInLocal` of a link.
  virtual const KtGeneralMotion& linkDhAccelerationInLocal(KtU32 index) const {
    return entry(index).dhFrameAccelerationInLocal();
  }
  /// Sets it and marks it as valid.
  virtual void setLinkDhAccelerationInLocal(KtU32 index, const KtGeneralMotion& motion) {
    entry(index).setDhFrameAccelerationInLocal(motion);
  }
  /// `KtLinkAccelerationState::dhFrameAccelerationInSystem` of a link.
  virtual const KtGeneralMotion& linkDhAccelerationInSystem(KtU32 index) const {
    return entry(index).dhFrameAccelerationInSystem();
  }
  /// Sets it and marks it as valid.
  virtual void setLinkDhAccelerationInSystem(KtU32 index, const KtGeneralMotion& motion) {
    entry(index).setDhFrameAccelerationInSystem(motion);
  }
  /// `KtLinkAccelerationState::primaryFrameAccelerationInSystem` of a link.
  virtual const KtGeneralMotion& linkPrimaryAccelerationInSystem(KtU32 index) const {
    return entry(index).primaryFrameAccelerationInSystem();
  }
  /// Sets it and marks it as valid.
  virtual void setLinkPrimaryAccelerationInSystem(KtU32 index, const KtGeneralMotion& motion) {
    entry(index).setPrimaryFrameAccelerationInSystem(motion);
  }
  /// `KtLinkAccelerationState::comAccelerationInLocal` of a link.
  virtual const KtGeneralMotion& linkComAccelerationInLocal(KtU32 index) const {
    return entry(index).comAccelerationInLocal();
  }
  /// Sets it and marks it as valid.
  virtual void setLinkComAccelerationInLocal(KtU32 index, const KtGeneralMotion& motion) {
    entry(index).setComAccelerationInLocal(motion);
  }
  /// `KtLinkAccelerationState::momentumRateInLocal` of a link.
  virtual const KtGeneralMotion& linkMomentumRateInLocal(KtU32 index) const {
    return entry(index).momentumRateInLocal();
  }
  /// Sets it and marks it as valid.
  virtual void setLinkMomentumRateInLocal(KtU32 index, const KtGeneralMotion& motion) {
    entry(index).setMomentumRateInLocal(motion);
  }
  /// `KtLinkAccelerationState::compositeMomentumRateInLocal` of a link.
  virtual const KtGeneralMotion& linkCompositeMomentumRateInLocal(KtU32 index) const {
    return entry(index).compositeMomentumRateInLocal();
  }
  /// Sets it and marks it as valid.
  virtual void setLinkCompositeMomentumRateInLocal(KtU32 index, const KtGeneralMotion& motion) {
    entry(index).setCompositeMomentumRateInLocal(motion);
  }
  virtual void setLinkAccelerationStates(const LinkStates& states) { entries_.setLinks(states); }
  /// The entry of the base.
  virtual const KtLinkAccelerationState& baseAccelerationState() const { return entries_.base(); }
  virtual KtLinkAccelerationState& baseAccelerationState() { return entries_.base(); }
  virtual void setBaseAccelerationState(const KtLinkAccelerationState& state) {
    entries_[ktBaseIndex] = state;
  }
  /// Makes all entries invalid.
  virtual void invalidateAll();
  /// Gives the list of entries a size if it has another one, and makes all entries invalid.
  virtual void resize(KtU32 count);
  /// How many entries there are beside that of the base.
  virtual KtU32 size() const { return entries_.count(); }

  // For passes over many links: the members, without virtual calls.

  /// The acceleration of a joint, rad/s^2 or m/s^2; 0 beyond the last.
  double jointAcceleration(KtU32 index) const noexcept {
    return Kt::detail::valueOrZero(accelerationState_.jointAccelerations(), index);
  }

  /// Exact equality of what files hold.
  bool operator==(const KtManipulatorActiveAccelerationState&) const = default;
  static const KtToken& classToken() { return KtManip::KtManipulatorActiveAccelerationStateToken; }

 private:
  KtAccelerationState accelerationState_;
};
