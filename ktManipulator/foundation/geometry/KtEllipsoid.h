#pragma once

#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/geometry/KtVector.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"
#include "ktManipulator/foundation/xml/KtXmlRecord.h"

/// A solid ellipsoid: its semi-axes along the axes of a frame, centred at the frame's origin.
/// Lengths in m.
class KT_EXPORT KtEllipsoid : public KtXmlRecord<KtEllipsoid> {
 public:
  /// A point at the origin.
  KtEllipsoid() noexcept = default;
  /// From the semi-axes along x, y and z of the frame, and the frame.
  KtEllipsoid(double a, double b, double c, const KtCoordinateSystemTransformation& frame) noexcept
      : radii_(a, b, c), frame_(frame) {}

  /// Semi-axis along x.
  double a() const noexcept { return radii_.x; }
  /// Semi-axis along y.
  double b() const noexcept { return radii_.y; }
  /// Semi-axis along z.
  double c() const noexcept { return radii_.z; }
  /// The frame.
  const KtCoordinateSystemTransformation& transformation() const noexcept { return frame_; }
  /// Volume.
  double volume() const noexcept {
    constexpr double pi = 3.141592653589793;
    return 4.0 / 3.0 * pi * radii_.x * radii_.y * radii_.z;
  }

  bool operator==(const KtEllipsoid& other) const noexcept {
    return radii_ == other.radii_ && frame_ == other.frame_;
  }

  static const KtToken& classToken() { return KtGeom::KtEllipsoidToken; }

 private:
  friend class KtXmlRecord<KtEllipsoid>;
  template <class Self, class Visit>
  static void forEachField(Self& self, Visit&& visit) {
    visit(KtGeom::KtRadiiToken, self.radii_);
    visit(KtFoundCommon::KtCoordinateSystemTransformToken, self.frame_);
  }

  KtVector radii_;
  KtCoordinateSystemTransformation frame_;
};

extern template class KtXmlRecord<KtEllipsoid>;
