#pragma once

#include "ktManipulator/foundation/containers/KtXmlFlagMask.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"
#include "ktManipulator/inertia/KtRigidBodyMassProperties.h"

/// The composite inertia of one link: an entry of a `KtManipulatorActiveMassState`.
///
/// The inertia is undefined unless its flag is set; setting the inertia sets its flag, which is not
/// set by default. Entries are stored by
/// value in lists that the innermost loops read, so no operation is virtual.
class KT_EXPORT KtLinkMassState : public KtXmlPersistent<KtLinkMassState, KtXmlCompoundType> {
 public:
  void registerComponents() override;

  /// The inertia of the link and all links outboard of it, as one rigid body in the DH frame.
  const KtRigidBodyMassProperties& crbi() const noexcept { return crbi_; }
  void setCrbi(const KtRigidBodyMassProperties& properties) {
    crbi_ = properties;
    valid_.set(kCrbi);
  }
  /// Whether `crbi()` holds.
  bool crbiValid() const noexcept { return valid_.test(kCrbi); }
  void setCrbiValid(bool valid) noexcept { valid_.set(kCrbi, valid); }
  /// Makes the inertia invalid.
  void invalidateAll() noexcept { valid_.clear(); }

  bool operator==(const KtLinkMassState&) const = default;
  static const KtToken& classToken() { return KtManip::KtLinkMassStateToken; }

 private:
  enum Flag : unsigned { kCrbi };

  KtXmlFlagMask<1> valid_;
  KtRigidBodyMassProperties crbi_;
};

extern template class KtXmlVectorType<KtLinkMassState>;
