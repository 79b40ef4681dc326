#pragma once

#include "ktManipulator/foundation/shape/KtFramedExtent.h"

/// A framed extent that is round about the z axis of its frame and has a radius and a height.
class KT_EXPORT KtRoundExtent : public KtFramedExtent {
 public:
  /// A point at the origin.
  KtRoundExtent() = default;
  /// From radius, height and frame; negative lengths count as 0.
  KtRoundExtent(double radius, double height, const KtCoordinateSystemTransformation& frame = {})
      : radius_(KtNonNegReal(radius)), height_(KtNonNegReal(height)) {
    setFrame(frame);
  }

  void registerComponents() override;

  /// The greatest distance of its points from the z axis, m.
  double radius() const noexcept { return radius_.value(); }
  /// The length along the z axis, m.
  double height() const noexcept { return height_.value(); }
  /// A negative radius counts as 0.
  void setRadius(double radius) noexcept { radius_ = KtNonNegReal(radius); }
  /// A negative height counts as 0.
  void setHeight(double height) noexcept { height_ = KtNonNegReal(height); }

  bool operator==(const KtRoundExtent&) const = default;

 protected:
  void scaleSizes(double factor) override;
  void truncateSizes(double precision) override;

 private:
  KtXmlBasicType<KtNonNegReal> radius_;
  KtXmlBasicType<KtNonNegReal> height_;
};
