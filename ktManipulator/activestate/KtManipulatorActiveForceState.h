#pragma once

#include "ktManipulator/activestate/KtLinkEntries.h"
#include "ktManipulator/activestate/KtLinkForceState.h"
#include "ktManipulator/foundation/core/KtTypes.h"

/// A cache of the forces on the links of one manipulator.
///
/// There is one entry for each link by `linkIndex`, and one for the base, which an operation that
/// takes an index reaches by `ktBaseIndex`. Other indices are not checked, but for those of
/// descriptions.
class KT_EXPORT KtManipulatorActiveForceState
    : public Kt::detail::LinkCache<KtManipulatorActiveForceState, KtLinkForceState> {
 public:
  void registerComponents() override;

  /// Gives the list of entries a size if it has another one, and makes all entries invalid.
  virtual void resize(KtU32 count);
  /// How many entries there are beside that of the base.
  virtual KtU32 size() const { return entries_.count(); }
  /// The entries of the links.
  virtual const LinkStates& linkForceStates() const { return entries_.links(); }
  /// `KtLinkForceState::dhFrameForceInLocal` of a link.
  virtual const KtGeneralForce& linkDhForceInLocal(KtU32 index) const {
    return entry(index).dhFrameForceInLocal();
  }
  /// Sets it and marks it as valid.
  virtual void setLinkDhForceInLocal(KtU32 index, const KtGeneralForce& force) {
    entry(index).setDhFrameForceInLocal(force);
  }
  virtual void setLinkForceStates(const LinkStates& states) { entries_.setLinks(states); }
  /// The entry of the base.
  virtual const KtLinkForceState& baseForceState() const { return entries_.base(); }
  virtual void setBaseForceState(const KtLinkForceState& state) { entries_[ktBaseIndex] = state; }
  /// The external force on a link, to be shown as an arrow. An index beyond the end is reported and
  /// gives `m_theZeroForceDescription`.
  virtual const KtExternalForceDescription& externalForceDescription(const KtU32& index) const;
  /// An index beyond the end is reported and changes nothing.
  virtual void setExternalForceDescription(const KtU32& index,
                                           const KtExternalForceDescription& description);
  /// Makes all entries and descriptions invalid.
  virtual void invalidateAll();

  /// Exact equality of what files hold.
  bool operator==(const KtManipulatorActiveForceState&) const = default;
  static const KtToken& classToken() { return KtManip::KtManipulatorActiveForceStateToken; }

  /// The shared description of no force. It is not valid.
  static const KtExternalForceDescription m_theZeroForceDescription;

 private:
  bool hasEntry(const char* operation, KtU32 index) const;
};
