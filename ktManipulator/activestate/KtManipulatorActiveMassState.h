#pragma once

#include "ktManipulator/activestate/KtLinkEntries.h"
#include "ktManipulator/activestate/KtLinkMassState.h"
#include "ktManipulator/foundation/core/KtTypes.h"

/// A cache of the composite inertias of the links of one manipulator. They depend on the positions
/// alone.
///
/// There is one entry for each link by `linkIndex`, and one for the base, which an operation that
/// takes an index reaches by `ktBaseIndex`. Other indices are not checked.
class KT_EXPORT KtManipulatorActiveMassState
    : public Kt::detail::LinkCache<KtManipulatorActiveMassState, KtLinkMassState> {
 public:
  void registerComponents() override;

  /// The entries of the links.
  virtual const LinkStates& linkMassStates() const { return entries_.links(); }
  virtual void setLinkMassStates(const LinkStates& states) { entries_.setLinks(states); }
  /// The entry of the base.
  virtual const KtLinkMassState& baseMassState() const { return entries_.base(); }
  virtual void setBaseMassState(const KtLinkMassState& state) { entries_[ktBaseIndex] = state; }
  /// `KtLinkMassState::crbi` of a link.
  virtual const KtRigidBodyMassProperties& crbi(KtU32 index) const { return entry(index).crbi(); }
  /// Sets it and marks it as valid.
  virtual void setCrbi(KtU32 index, const KtRigidBodyMassProperties& properties) {
    entry(index).setCrbi(properties);
  }
  /// Makes all entries invalid.
  virtual void invalidateAll();
  /// Gives the list of entries a size if it has another one; new entries are invalid.
  virtual void resize(KtU32 count) { entries_.resize(count); }

  bool operator==(const KtManipulatorActiveMassState&) const = default;
  static const KtToken& classToken() { return KtManip::KtManipulatorActiveMassStateToken; }
};
