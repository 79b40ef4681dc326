#pragma once

#include "ktManipulator/activestate/KtLinkEntries.h"
#include "ktManipulator/activestate/KtLinkPositionState.h"
#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/state/KtPositionState.h"

/// The positions of one manipulator, and a cache of the frames of its links.
///
/// There is one entry for each link by `linkIndex`, and one for the base, which an operation that
/// takes an index reaches by `ktBaseIndex`. Other indices are not checked.
class KT_EXPORT KtManipulatorActivePositionState
    : public Kt::detail::LinkCache<KtManipulatorActivePositionState, KtLinkPositionState> {
 public:
  void registerComponents() override;

  /// The positions of the joints and the place of the base.
  virtual const KtPositionState& positionState() const { return positionState_; }
  /// Sets the positions, resizes the list of entries to the number of joints and makes all entries
  /// invalid.
  virtual void setPositionState(const KtPositionState& state);
  /// The entries of the links.
  virtual const LinkStates& linkPositionStates() const { return entries_.links(); }
  /// Sets both frames of a link in the system and marks them as valid.
  virtual void setLinkPositionState(KtU32 index, const KtCoordinateSystemTransformation& dhFrame,
                                    const KtCoordinateSystemTransformation& primaryFrame) {
    setFrames(entry(index), dhFrame, primaryFrame);
  }
  /// Sets the joint transform of a link and marks it as valid.
  virtual void setDhTransform(KtU32 index, const KtCoordinateSystemTransformation& transform) {
    KtLinkPositionState& state = entry(index);
    state.setDhTransform(transform);
    state.setDhTransformValid(true);
  }
  virtual void setLinkPositionStates(const LinkStates& states) { entries_.setLinks(states); }
  /// The entry of the base.
  virtual const KtLinkPositionState& basePositionState() const { return entries_.base(); }
  /// Sets both frames of the base in the system and marks them as valid.
  virtual void setBaseLinkPositionState(const KtCoordinateSystemTransformation& dhFrame,
                                        const KtCoordinateSystemTransformation& primaryFrame) {
    setFrames(entries_[ktBaseIndex], dhFrame, primaryFrame);
  }
  virtual void setBasePositionState(const KtLinkPositionState& state) {
    entries_[ktBaseIndex] = state;
  }
  /// Makes all entries invalid.
  virtual void invalidateAll();

  // For passes over many links: the members, without virtual calls.

  /// The position of a joint, rad or m; 0 beyond the last.
  double jointPosition(KtU32 index) const noexcept {
    return Kt::detail::valueOrZero(positionState_.jointPositions(), index);
  }

  /// Exact equality of what files hold.
  bool operator==(const KtManipulatorActivePositionState&) const = default;
  static const KtToken& classToken() { return KtManip::KtManipulatorActivePositionStateToken; }

 private:
  static void setFrames(KtLinkPositionState& state, const KtCoordinateSystemTransformation& dhFrame,
                        const KtCoordinateSystemTransformation& primaryFrame) noexcept {
    state.setDhFrame(dhFrame);
    state.setPrimaryFrame(primaryFrame);
    state.setLocationInSystemValid(true);
  }

  KtPositionState positionState_;
};

extern template class KtXmlVectorType<KtManipulatorActivePositionState>;
