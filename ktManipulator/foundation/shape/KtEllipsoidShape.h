#pragma once

#include "ktManipulator/foundation/geometry/KtEllipsoid.h"
#include "ktManipulator/foundation/geometry/KtXmlVector.h"
#include "ktManipulator/foundation/shape/KtFramedExtent.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// A solid ellipsoid with its semi-axes along the axes of its frame, centred at the frame's origin.
class KT_EXPORT KtEllipsoidShape : public KtXmlPersistent<KtEllipsoidShape, KtFramedExtent> {
 public:
  /// A point at the origin.
  KtEllipsoidShape() = default;
  /// From an ellipsoid; negative semi-axes count as their magnitudes.
  explicit KtEllipsoidShape(const KtEllipsoid& ellipsoid)
      : radii_(ellipsoid.a(), ellipsoid.b(), ellipsoid.c()) {
    setFrame(ellipsoid.transformation());
  }

  void registerComponents() override;
  KtShapeValues shapeType() const override { return kEllipsoid; }

  /// The semi-axes along x, y and z of the frame.
  const KtVector& radii() const noexcept { return radii_; }
  /// Negative radii count as their magnitudes.
  void setRadii(const KtVector& radii) noexcept { radii_ = radii; }

  bool operator==(const KtEllipsoidShape&) const = default;
  static const KtToken& classToken();

 protected:
  KtVector ownSupport(const KtVector& direction) const override;
  void ownPoints(std::vector<KtVector>& points) const override;
  void clip(Kt::detail::LineClip& line) const override;
  KtVolumeMoments ownMoments() const override;
  bool ownContains(const KtVector& point) const override;
  void scaleSizes(double factor) override { radii_ *= factor; }
  void truncateSizes(double precision) override { radii_ = truncated(radii_, precision); }

 private:
  KtXmlVector radii_;
};
