#pragma once

#include "ktManipulator/activestate/KtLinkArticulationState.h"
#include "ktManipulator/activestate/KtLinkEntries.h"
#include "ktManipulator/foundation/core/KtTypes.h"

/// A cache of the articulated dynamics of the links of one manipulator.
///
/// There is one entry for each link by `linkIndex`, and one for the base, which an operation that
/// takes an index reaches by `ktBaseIndex`. Other indices are not checked.
class KT_EXPORT KtManipulatorActiveArticulationState
    : public Kt::detail::LinkCache<KtManipulatorActiveArticulationState, KtLinkArticulationState> {
 public:
  void registerComponents() override;

  /// The entries of the links.
  virtual const LinkStates& linkArticulationStates() const { return entries_.links(); }
  virtual void setLinkArticulationStates(const LinkStates& states) { entries_.setLinks(states); }
  /// The entry of the base.
  virtual const KtLinkArticulationState& baseArticulationState() const { return entries_.base(); }
  virtual void setBaseArticulationState(const KtLinkArticulationState& state) {
    entries_[ktBaseIndex] = state;
  }
  /// `KtLinkArticulationState::arbd` of a link.
  virtual const KtArticulatedBodyDynamics& arbd(KtU32 index) const { return entry(index).arbd(); }
  /// Sets it and marks it as valid.
  virtual void setArbd(KtU32 index, const KtArticulatedBodyDynamics& dynamics) {
    entry(index).setArbd(dynamics);
  }
  /// Sets that of the base and marks it as valid.
  virtual void setBaseArbd(const KtArticulatedBodyDynamics& dynamics) {
    entries_[ktBaseIndex].setArbd(dynamics);
  }
  /// `KtLinkArticulationState::supplementalDhAcceleration` of a link.
  virtual const KtGeneralMotion& supplementalDhAcceleration(KtU32 index) const {
    return entry(index).supplementalDhAcceleration();
  }
  /// Sets it and marks it as valid.
  virtual void setSupplementalDhAcceleration(KtU32 index, const KtGeneralMotion& acceleration) {
    entry(index).setSupplementalDhAcceleration(acceleration);
  }
  /// That of the base.
  virtual const KtGeneralMotion& baseSupplementalDhAcceleration() const {
    return entries_.base().supplementalDhAcceleration();
  }
  /// Sets it and marks it as valid.
  virtual void setBaseSupplementalDhAcceleration(const KtGeneralMotion& acceleration) {
    entries_[ktBaseIndex].setSupplementalDhAcceleration(acceleration);
  }
  /// `KtLinkArticulationState::supplementalJointAcceleration` of a link.
  virtual double supplementalJointAcceleration(KtU32 index) const {
    return entry(index).supplementalJointAcceleration();
  }
  /// Sets it and marks it as valid.
  virtual void setSupplementalJointAcceleration(KtU32 index, double acceleration) {
    entry(index).setSupplementalJointAcceleration(acceleration);
  }
  /// Makes all entries invalid.
  virtual void invalidateAll();
  /// Gives the list of entries a size if it has another one; new entries are invalid.
  virtual void resize(KtU32 count) { entries_.resize(count); }

  bool operator==(const KtManipulatorActiveArticulationState&) const = default;
  static const KtToken& classToken() { return KtManip::KtManipulatorActiveArticulationStateToken; }
};
