#pragma once

#include "ktManipulator/activestate/KtLinkEntries.h"
#include "ktManipulator/activestate/KtLinkVelocityState.h"
#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/state/KtVelocityState.h"

/// The velocities of one manipulator, and a cache of the velocities of its links.
///
/// There is one entry for each link by `linkIndex`, and one for the base, which an operation that
/// takes an index reaches by `ktBaseIndex`. Other indices are not checked.
class KT_EXPORT KtManipulatorActiveVelocityState
    : public Kt::detail::LinkCache<KtManipulatorActiveVelocityState, KtLinkVelocityState> {
 public:
  void registerComponents() override;

  /// The rates of the joints and the velocity of the base.
  virtual const KtVelocityState& velocityState() const { return velocityState_; }
  /// Sets the rates, resizes the list of entries to the number of joints and makes all entries
  /// invalid.
  virtual void setVelocityState(const KtVelocityState& state);
  /// The entries of the links.
  virtual const LinkStates& linkVelocityStates() const { return entries_.links(); }
  virtual LinkStates& linkVelocityStates() { return entries_.links(); }
  /// `KtLinkVelocityState::dhFrameVelocityInLocal` of a link.
  virtual const KtGeneralMotion& linkDhVelocityInLocal(KtU32 index) const {
    return entry(index).dhFrameVelocityInLocal();
  }
  /// Sets it and marks it as valid.
  virtual void setLinkDhVelocityInLocal(KtU32 index, const KtGeneralMotion& motion) {
    entry(index).setDhFrameVelocityInLocal(motion);
  }
  /// `KtLinkVelocityState::dhFrameVelocityInSystem` of a link.
  virtual const KtGeneralMotion& linkDhVelocityInSystem(KtU32 index) const {
    return entry(index).dhFrameVelocityInSystem();
  }
  /// Sets it and marks it as valid.
  virtual void setLinkDhVelocityInSystem(KtU32 index, const KtGeneralMotion& motion) {
    entry(index).setDhFrameVelocityInSystem(motion);
  }
  /// `KtLinkVelocityState::primaryFrameVelocityInSystem` of a link.
  virtual const KtGeneralMotion& linkPrimaryVelocityInSystem(KtU32 index) const {
    return entry(index).primaryFrameVelocityInSystem();
  }
  /// Sets it and marks it as valid.
  virtual void setLinkPrimaryVelocityInSystem(KtU32 index, const KtGeneralMotion& motion) {
    entry(index).setPrimaryFrameVelocityInSystem(motion);
  }
  /// `KtLinkVelocityState::comVelocityInLocal` of a link.
  virtual const KtGeneralMotion& linkComVelocityInLocal(KtU32 index) const {
    return entry(index).comVelocityInLocal();
  }
  /// Sets it and marks it as valid.
  virtual void setLinkComVelocityInLocal(KtU32 index, const KtGeneralMotion& motion) {
    entry(index).setComVelocityInLocal(motion);
  }
  /// `KtLinkVelocityState::momentumInLocal` of a link.
  virtual const KtGeneralMotion& linkMomentumInLocal(KtU32 index) const {
    return entry(index).momentumInLocal();
  }
  /// Sets it and marks it as valid.
  virtual void setLinkMomentumInLocal(KtU32 index, const KtGeneralMotion& motion) {
    entry(index).setMomentumInLocal(motion);
  }
  /// `KtLinkVelocityState::compositeMomentumInLocal` of a link.
  virtual const KtGeneralMotion& linkCompositeMomentumInLocal(KtU32 index) const {
    return entry(index).compositeMomentumInLocal();
  }
  /// Sets it and marks it as valid.
  virtual void setLinkCompositeMomentumInLocal(KtU32 index, const KtGeneralMotion& motion) {
    entry(index).setCompositeMomentumInLocal(motion);
  }
  virtual void setLinkVelocityStates(const LinkStates& states) { entries_.setLinks(states); }
  /// The entry of the base.
  virtual const KtLinkVelocityState& baseVelocityState() const { return entries_.base(); }
  virtual KtLinkVelocityState& baseVelocityState() { return entries_.base(); }
  virtual void setBaseVelocityState(const KtLinkVelocityState& state) {
    entries_[ktBaseIndex] = state;
  }
  /// Makes all entries invalid.
  virtual void invalidateAll();
  /// Gives the list of entries a size if it has another one; new entries are invalid.
  virtual void resize(KtU32 count) { entries_.resize(count); }

  // For passes over many links: the members, without virtual calls.

  /// The velocity of a joint, rad/s or m/s; 0 beyond the last.
  double jointVelocity(KtU32 index) const noexcept {
    return Kt::detail::valueOrZero(velocityState_.jointVelocities(), index);
  }

  /// Exact equality of what files hold.
  bool operator==(const KtManipulatorActiveVelocityState&) const = default;
  static const KtToken& classToken() { return KtManip::KtManipulatorActiveVelocityStateToken; }

 private:
  KtVelocityState velocityState_;
};
