#pragma once

#include <cmath>

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtMath.h"

/// A 3-vector: a plain value with components that are read and written directly.
class KT_EXPORT KtVector {
 public:
  /// First component.
  double x = 0.0;
  /// Second component.
  double y = 0.0;
  /// Third component.
  double z = 0.0;

  /// The zero vector.
  constexpr KtVector() noexcept = default;
  /// From the three components.
  constexpr KtVector(double xValue, double yValue, double zValue) noexcept
      : x(xValue), y(yValue), z(zValue) {}
  // Component by component: compilers copy a trivial struct of this size through 16-byte registers,
  // which then wait for the components that were just stored one by one.
  constexpr KtVector(const KtVector& v) noexcept : x(v.x), y(v.y), z(v.z) {}
  constexpr KtVector& operator=(const KtVector& v) noexcept {
    x = v.x, y = v.y, z = v.z;
    return *this;
  }

  /// Sum.
  constexpr KtVector operator+(const KtVector& v) const noexcept {
    return {x + v.x, y + v.y, z + v.z};
  }
  /// Difference.
  constexpr KtVector operator-(const KtVector& v) const noexcept {
    return {x - v.x, y - v.y, z - v.z};
  }
  /// The opposite.
  constexpr KtVector operator-() const noexcept { return {-x, -y, -z}; }
  /// Product.
  constexpr KtVector operator*(double s) const noexcept { return {x * s, y * s, z * s}; }
  /// Divides each component; a zero divisor gives infinities as the hardware does.
  constexpr KtVector operator/(double s) const noexcept { return {x / s, y / s, z / s}; }
  /// Product.
  friend constexpr KtVector operator*(double s, const KtVector& v) noexcept { return v * s; }

  /// In-place sum.
  constexpr KtVector& operator+=(const KtVector& v) noexcept {
    x += v.x, y += v.y, z += v.z;
    return *this;
  }
  /// In-place difference.
  constexpr KtVector& operator-=(const KtVector& v) noexcept {
    x -= v.x, y -= v.y, z -= v.z;
    return *this;
  }
  /// In-place product.
  constexpr KtVector& operator*=(double s) noexcept {
    x *= s, y *= s, z *= s;
    return *this;
  }
  /// In-place quotient.
  constexpr KtVector& operator/=(double s) noexcept {
    x /= s, y /= s, z /= s;
    return *this;
  }

  /// Scalar product.
  constexpr double dot(const KtVector& v) const noexcept { return x * v.x + y * v.y + z * v.z; }
  /// Vector product this x v.
  constexpr KtVector cross(const KtVector& v) const noexcept {
    return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
  }
  /// Length.
  double mag() const noexcept { return std::sqrt(magSquared()); }
  /// Squared length.
  constexpr double magSquared() const noexcept { return dot(*this); }
  /// This divided by its length, also where the square of the length is beyond the range of a
  /// double. The zero vector gives the zero vector.
  KtVector unitVector() const noexcept {
    const double squared = magSquared();
    if (squared > 1e-280 && squared < 1e300) return *this / std::sqrt(squared);
    const KtVector scaled = *this / KtMath::nonZeroPos(largestComponent());
    return scaled / KtMath::nonZeroPos(scaled.mag());
  }

  /// The largest absolute value of a component.
  double largestComponent() const noexcept {
    return std::fmax(std::fmax(std::abs(x), std::abs(y)), std::abs(z));
  }

  /// Whether no component differs by more than the tolerance.
  constexpr bool approxEq(const KtVector& v, double tolerance) const noexcept {
    return KtMath::approxEq(x, v.x, tolerance) && KtMath::approxEq(y, v.y, tolerance) &&
           KtMath::approxEq(z, v.z, tolerance);
  }
  /// Exact equality of the components.
  constexpr bool operator==(const KtVector& v) const noexcept = default;

  /// (s, 0, 0).
  static constexpr KtVector xVector(double s) noexcept { return {s, 0.0, 0.0}; }
  /// (0, s, 0).
  static constexpr KtVector yVector(double s) noexcept { return {0.0, s, 0.0}; }
  /// (0, 0, s).
  static constexpr KtVector zVector(double s) noexcept { return {0.0, 0.0, s}; }
  /// The shared zero vector.
  static constexpr const KtVector& zeroVector() noexcept;
};

namespace Kt::detail {
inline constexpr KtVector zeroVector{};
}

constexpr const KtVector& KtVector::zeroVector() noexcept {
  return Kt::detail::zeroVector;
}
