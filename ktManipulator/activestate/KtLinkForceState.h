#pragma once

#include "ktManipulator/foundation/containers/KtXmlFlagMask.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/geometry/KtGeneralForce.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"
#include "ktManipulator/state/KtExternalForceDescription.h"

/// The forces on one link: an entry of a `KtManipulatorActiveForceState`.
///
/// The force is undefined unless its flag is set; setting the force sets its flag. By default it is
/// zero and invalid. Entries are stored by value in lists that the innermost loops read, so no
/// operation is virtual. Equality compares what files hold, which excludes the description of the
/// external force.
class KT_EXPORT KtLinkForceState : public KtXmlPersistent<KtLinkForceState, KtXmlCompoundType> {
 public:
  /// Reads the force and its valid flag; the description gets invalid. See `KtXmlObject::read`.
  bool read(KtXmlReader& reader) override;
  void registerComponents() override;

  /// The force that the inboard side exerts on the link and all links outboard of it, N, and its
  /// moment about the DH frame's origin, N m, in DH axes.
  const KtGeneralForce& dhFrameForceInLocal() const noexcept { return dhFrameForceInLocal_; }
  void setDhFrameForceInLocal(const KtGeneralForce& force) noexcept {
    dhFrameForceInLocal_ = force;
    valid_.set(kLocalDh);
  }
  void setDhFrameForceInLocal(const KtVector& force, const KtVector& moment) noexcept {
    dhFrameForceInLocal_.setForce(force);
    dhFrameForceInLocal_.setMoment(moment);
    valid_.set(kLocalDh);
  }
  /// Whether `dhFrameForceInLocal()` holds.
  bool localDhValid() const noexcept { return valid_.test(kLocalDh); }
  void setLocalDhValid(bool valid) noexcept { valid_.set(kLocalDh, valid); }
  /// The external force on the link, to be shown as an arrow. It tells itself whether it holds.
  const KtExternalForceDescription& externalForceDescription() const noexcept {
    return externalForceDescription_;
  }
  void setExternalForceDescription(const KtExternalForceDescription& description) {
    externalForceDescription_ = description;
  }
  /// Makes the force and the description invalid.
  void invalidateAll() {
    valid_.clear();
    externalForceDescription_.setValid(false);
  }

  /// Exact equality of what files hold.
  bool operator==(const KtLinkForceState&) const = default;
  static const KtToken& classToken() { return KtManip::KtLinkForceStateToken; }

 private:
  enum Flag : unsigned { kLocalDh };

  KtXmlFlagMask<1> valid_;
  KtGeneralForce dhFrameForceInLocal_;
  // Not in files; any two descriptions are equal
  KtExternalForceDescription externalForceDescription_;
};

extern template class KtXmlVectorType<KtLinkForceState>;
