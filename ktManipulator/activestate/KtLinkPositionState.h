#pragma once

#include "ktManipulator/foundation/containers/KtXmlFlagMask.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/geometry/KtRotationMatrix.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// The frames of one link: an entry of a `KtManipulatorActivePositionState`.
///
/// A frame is undefined unless its flag is set. All flags are false and all frames the identity by
/// default. Entries are stored by value in lists that the innermost loops read, so no operation is
/// virtual. Equality compares what files hold, which excludes the joint transform.
class KT_EXPORT KtLinkPositionState
    : public KtXmlPersistent<KtLinkPositionState, KtXmlCompoundType> {
 public:
  void registerComponents() override;

  /// The DH frame in the system.
  const KtCoordinateSystemTransformation& dhFrame() const noexcept { return dhFrame_; }
  /// Sets the frame and leaves its validity flag as it is.
  void setDhFrame(const KtCoordinateSystemTransformation& frame) noexcept { dhFrame_ = frame; }
  /// The primary frame in the system.
  const KtCoordinateSystemTransformation& primaryFrame() const noexcept { return primaryFrame_; }
  /// Sets the frame and leaves its validity flag as it is.
  void setPrimaryFrame(const KtCoordinateSystemTransformation& frame) noexcept {
    primaryFrame_ = frame;
  }
  /// Sets both frames and marks them as valid.
  ///
  /// @param dhFrame  what `dhFrame()` answers from now on
  /// @param primary  the primary frame in the DH frame
  void place(const KtCoordinateSystemTransformation& dhFrame,
             const KtCoordinateSystemTransformation& primary) noexcept {
    dhFrame_ = dhFrame;
    primaryFrame_ =
        primary.mode() == KtCoordinateSystemTransformation::kIdentity ? dhFrame : dhFrame * primary;
    setLocationInSystemValid(true);
  }
  /// The joint transform: the DH frame in that of the inboard link.
  const KtCoordinateSystemTransformation& dhTransform() const noexcept { return dhTransform_; }
  /// Sets the transformation and leaves its validity flag as it is.
  void setDhTransform(const KtCoordinateSystemTransformation& transform) noexcept {
    dhTransform_ = transform;
    dhRotation_ = Kt::detail::RotationMatrix(transform.orientation());
  }
  /// The orientation of `dhTransform()` as a matrix.
  const Kt::detail::RotationMatrix& dhRotation() const noexcept { return dhRotation_; }
  /// Whether `dhFrame()` and `primaryFrame()` hold.
  bool locationInSystemValid() const noexcept { return valid_.test(kLocationInSystem); }
  void setLocationInSystemValid(bool valid) noexcept { valid_.set(kLocationInSystem, valid); }
  /// Whether `dhTransform()` holds. A file tells it though it doesn't hold the transform.
  bool dhTransformValid() const noexcept { return valid_.test(kDhTransform); }
  void setDhTransformValid(bool valid) noexcept { valid_.set(kDhTransform, valid); }
  /// Clears both flags.
  void invalidateAll() noexcept { valid_.clear(); }

  /// Exact equality of what files hold.
  bool operator==(const KtLinkPositionState& other) const {
    return valid_ == other.valid_ && dhFrame_ == other.dhFrame_ &&
           primaryFrame_ == other.primaryFrame_;
  }
  static const KtToken& classToken() { return KtManip::KtLinkPositionStateToken; }

 private:
  enum Flag : unsigned { kLocationInSystem, kDhTransform };

  KtXmlFlagMask<2> valid_;
  KtCoordinateSystemTransformation dhFrame_;
  KtCoordinateSystemTransformation primaryFrame_;
  // Not in files
  KtCoordinateSystemTransformation dhTransform_;
  Kt::detail::RotationMatrix dhRotation_;
};

extern template class KtXmlVectorType<KtLinkPositionState>;
