#pragma once

#include <cmath>

#include "ktManipulator/foundation/core/KtExport.h"

/// A vector in a plane: a plain value.
class KT_EXPORT KtPlanarVector {
 public:
  /// The zero vector.
  constexpr KtPlanarVector() noexcept = default;
  /// From the two components.
  constexpr KtPlanarVector(double x, double y) noexcept : x_(x), y_(y) {}

  /// First component.
  constexpr double x() const noexcept { return x_; }
  /// Second component.
  constexpr double y() const noexcept { return y_; }
  /// Length.
  double mag() const noexcept { return std::sqrt(x_ * x_ + y_ * y_); }
  /// Component-wise difference.
  constexpr KtPlanarVector operator-(const KtPlanarVector& v) const noexcept {
    return {x_ - v.x_, y_ - v.y_};
  }
  /// Exact equality of the components.
  constexpr bool operator==(const KtPlanarVector&) const noexcept = default;

 private:
  double x_ = 0.0;
  double y_ = 0.0;
};
