#pragma once

#include "ktManipulator/foundation/shape/KtFramedExtent.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// A solid circular cylinder about the z axis of its frame, centred at the frame's origin.
class KT_EXPORT KtCylinderShape : public KtXmlPersistent<KtCylinderShape, KtFramedExtent> {
 public:
  /// A point at the origin.
  KtCylinderShape() = default;
  /// From radius, height and frame; negative lengths count as 0.
  KtCylinderShape(double radius, double height, const KtCoordinateSystemTransformation& frame = {})
      : radius_(KtNonNegReal(radius)), height_(KtNonNegReal(height)) {
    setFrame(frame);
  }

  void registerComponents() override;
  KtShapeValues shapeType() const override { return kCylinder; }

  /// The radius.
  double radius() const noexcept { return radius_.value(); }
  /// The height.
  double height() const noexcept { return height_.value(); }
  /// A negative radius counts as 0.
  void setRadius(double radius) noexcept { radius_ = KtNonNegReal(radius); }
  /// A negative height counts as 0.
  void setHeight(double height) noexcept { height_ = KtNonNegReal(height); }

  bool operator==(const KtCylinderShape&) const = default;
  static const KtToken& classToken();

 protected:
  KtVector ownSupport(const KtVector& direction) const override;
  void ownPoints(std::vector<KtVector>& points) const override;
  void clip(Kt::detail::LineClip& line) const override;
  KtVolumeMoments ownMoments() const override;
  bool ownContains(const KtVector& point) const override;
  void scaleSizes(double factor) override;
  void truncateSizes(double precision) override;

 private:
  KtXmlBasicType<KtNonNegReal> radius_;
  KtXmlBasicType<KtNonNegReal> height_;
};
