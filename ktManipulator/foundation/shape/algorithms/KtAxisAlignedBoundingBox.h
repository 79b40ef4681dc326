#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/geometry/KtCapsule.h"
#include "ktManipulator/foundation/geometry/KtVector.h"

/// A box with its edges along the axes of a frame: a plain value. Lengths in m.
///
/// A box without a point, such as the default one, has its least corner at plus and its largest at
/// minus infinity; it intersects nothing and stays as it is when enlarged.
class KT_EXPORT KtAxisAlignedBoundingBox {
 public:
  /// No point at all: what an inclusion starts from.
  constexpr KtAxisAlignedBoundingBox() noexcept = default;
  /// From its least and its largest corner.
  constexpr KtAxisAlignedBoundingBox(const KtVector& least, const KtVector& largest) noexcept
      : min_(least), max_(largest) {}

  /// The corner with the least coordinates.
  constexpr const KtVector& minimum() const noexcept { return min_; }
  /// The corner with the largest coordinates.
  constexpr const KtVector& maximum() const noexcept { return max_; }
  /// The point in the middle; NaN for a box without a point.
  constexpr KtVector center() const noexcept { return (min_ + max_) * 0.5; }
  /// The lengths of the edges; negative for a box without a point.
  constexpr KtVector size() const noexcept { return max_ - min_; }
  /// Whether it has no point.
  constexpr bool isEmpty() const noexcept {
    return !(min_.x <= max_.x && min_.y <= max_.y && min_.z <= max_.z);
  }

  /// Moves every face outwards by a distance; a negative one moves them inwards.
  constexpr void enlarge(const double& distance) noexcept {
    const KtVector by(distance, distance, distance);
    min_ -= by;
    max_ += by;
  }
  /// Makes this the smallest box around a point and what it has already.
  void include(const KtVector& point) noexcept {
    min_ = {std::min(min_.x, point.x), std::min(min_.y, point.y), std::min(min_.z, point.z)};
    max_ = {std::max(max_.x, point.x), std::max(max_.y, point.y), std::max(max_.z, point.z)};
  }
  /// Makes this the smallest box around another box and what it has already.
  void include(const KtAxisAlignedBoundingBox& box) noexcept {
    if (box.isEmpty()) return;
    include(box.min_);
    include(box.max_);
  }
  /// Makes this the smallest box around a capsule.
  void resize(const KtCapsule& capsule) noexcept {
    *this = KtAxisAlignedBoundingBox();
    include(capsule.lineSegment().endpoint0());
    include(capsule.lineSegment().endpoint1());
    enlarge(capsule.radius());
  }

  /// Whether the two have a point in common; touching counts.
  constexpr bool intersects(const KtAxisAlignedBoundingBox& box) const noexcept {
    return min_.x <= box.max_.x && box.min_.x <= max_.x && min_.y <= box.max_.y &&
           box.min_.y <= max_.y && min_.z <= box.max_.z && box.min_.z <= max_.z;
  }
  /// Whether the point lies inside or on a face.
  constexpr bool contains(const KtVector& point) const noexcept {
    return min_.x <= point.x && point.x <= max_.x && min_.y <= point.y && point.y <= max_.y &&
           min_.z <= point.z && point.z <= max_.z;
  }
  /// Distance of a point from the box; 0 inside.
  double distance(const KtVector& point) const noexcept {
    return KtVector(std::max({min_.x - point.x, 0.0, point.x - max_.x}),
                    std::max({min_.y - point.y, 0.0, point.y - max_.y}),
                    std::max({min_.z - point.z, 0.0, point.z - max_.z}))
        .mag();
  }
  /// Whether the line segment from a point along a vector, up to a share of it, meets the box; one
  /// that misses it by rounding alone may count as meeting it.
  bool meets(const KtVector& point, const KtVector& along, double share) const noexcept;

  /// Exact equality of the corners.
  constexpr bool operator==(const KtAxisAlignedBoundingBox&) const noexcept = default;

 private:
  static constexpr double kFar = std::numeric_limits<double>::infinity();

  KtVector min_{kFar, kFar, kFar};
  KtVector max_{-kFar, -kFar, -kFar};
};

inline bool KtAxisAlignedBoundingBox::meets(const KtVector& point, const KtVector& along,
                                            double share) const noexcept {
  if (isEmpty()) return false;
  double from = 0.0;
  double to = share;
  const auto clip = [&](double least, double largest, double p, double d) {
    if (d == 0.0) {
      if (p < least || p > largest) to = -1.0;
      return;
    }
    const double t0 = (least - p) / d;
    const double t1 = (largest - p) / d;
    from = std::max(from, std::min(t0, t1));
    to = std::min(to, std::max(t0, t1));
  };
  clip(min_.x, max_.x, point.x, along.x);
  clip(min_.y, max_.y, point.y, along.y);
  clip(min_.z, max_.z, point.z, along.z);
  // T. Ize, Robust BVH ray traversal, Journal of Computer Graphics Techniques 2 (2013), 12-27.
  return from <= to * (1.0 + 1e-15);
}
