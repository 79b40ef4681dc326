/// @file
/// Clipping of a line segment to simple convex bodies; for sources of shapes.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include "ktManipulator/foundation/geometry/KtLineSegment.h"

namespace Kt::detail {

/// The part of a line segment inside of convex bodies: each operation cuts off what is outside of
/// one more body.
class LineClip {
 public:
  /// The whole segment.
  explicit LineClip(const KtLineSegment& segment) noexcept
      : point_(segment.endpoint0()), along_(segment.endpoint1() - segment.endpoint0()) {}

  /// Where the remaining part begins, as distance from the first end; false if nothing remains.
  bool enter(double& distance) const noexcept {
    const double length = along_.mag();
    if (!(from_ <= to_) || !std::isfinite(length)) return false;
    distance = from_ * length;
    return true;
  }
  /// Cuts off everything.
  void toNothing() noexcept { to_ = -1.0; }
  /// Keeps the share between two; nothing if one is NaN.
  void toShares(double from, double to) noexcept {
    from_ = std::max(from_, from);
    to_ = std::min(to_, to);
    if (!(from <= to)) toNothing();
  }
  /// Keeps what lies between two planes at right angles to a direction, at distances from a point.
  void toSlab(const KtVector& direction, const KtVector& origin, double least,
              double largest) noexcept {
    const double speed = along_.dot(direction);
    const double start = (point_ - origin).dot(direction);
    if (speed == 0.0) {
      if (start < least || start > largest) toNothing();
      return;
    }
    const double t0 = (least - start) / speed;
    const double t1 = (largest - start) / speed;
    toShares(std::min(t0, t1), std::max(t0, t1));
  }
  /// Keeps what lies behind a plane: where (x - origin) . normal <= 0.
  void toHalfSpace(const KtVector& normal, const KtVector& origin) noexcept {
    const double speed = along_.dot(normal);
    const double start = (point_ - origin).dot(normal);
    if (speed == 0.0) {
      if (!(start <= 0.0)) toNothing();
    } else if (speed > 0.0) {
      toShares(-kFar, -start / speed);
    } else {
      toShares(-start / speed, kFar);
    }
  }
  /// Keeps the shares t with |m + t d| <= length.
  void toLength(const KtVector& m, const KtVector& d, double length) noexcept {
    const double square = d.magSquared();
    if (square == 0.0) {
      if (!(m.mag() <= length)) toNothing();
      return;
    }
    // From the share at which it is shortest, so that far away little cancels. E. Haines, J.
    // Guenther, T. Akenine-Moeller, Precision improvements for ray/sphere intersection, in: Ray
    // Tracing Gems, Apress 2019, 87-94.
    const double middle = -m.dot(d) / square;
    const double room = length * length - (m + d * middle).magSquared();
    const double half = std::sqrt(room / square);  // NaN where there is no room
    toShares(middle - half, middle + half);
  }
  /// Keeps the shares t with a s^2 + 2 b s + c <= 0, where s = t - shift. Where a is negative they
  /// are two pieces; the earlier one that something remains of is kept.
  void toQuadratic(double a, double b, double c, double shift) noexcept {
    const double discriminant = b * b - a * c;
    if (a == 0.0) {
      if (b == 0.0) {
        if (!(c <= 0.0)) toNothing();
      } else if (b > 0.0) {
        toShares(-kFar, shift - 0.5 * c / b);
      } else {
        toShares(shift - 0.5 * c / b, kFar);
      }
      return;
    }
    if (!(discriminant >= 0.0)) {
      if (!(a < 0.0 && c <= 0.0)) toNothing();
      return;
    }
    // Without cancellation: the root of larger magnitude first, the other from the product.
    const double q = -(b + std::copysign(std::sqrt(discriminant), b));
    const double r0 = q / a;
    const double r1 = q != 0.0 ? c / q : r0;
    const double first = shift + std::min(r0, r1);
    const double second = shift + std::max(r0, r1);
    if (a > 0.0) {
      toShares(first, second);
    } else if (from_ <= first) {
      toShares(-kFar, first);
    } else {
      toShares(second, kFar);
    }
  }
  /// Keeps what lies in a ball.
  void toBall(const KtVector& center, double radius) noexcept {
    toLength(point_ - center, along_, radius);
  }
  /// Keeps what is no farther from a line than the radius.
  void toTube(const KtVector& origin, const KtVector& unitAxis, double radius) noexcept {
    toLength((point_ - origin).cross(unitAxis), along_.cross(unitAxis), radius);
  }
  /// Where the segment starts.
  const KtVector& point() const noexcept { return point_; }
  /// From its first to its second end.
  const KtVector& along() const noexcept { return along_; }

 private:
  static constexpr double kFar = std::numeric_limits<double>::infinity();

  KtVector point_;
  KtVector along_;
  double from_ = 0.0;
  double to_ = 1.0;
};

}  // namespace Kt::detail
