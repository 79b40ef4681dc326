#pragma once

#include <cmath>

#include "ktManipulator/foundation/core/KtExport.h"

/// Elementary functions that stay finite where rounding pushes an argument just outside the domain.
class KT_EXPORT KtMath {
 public:
  /// Square root; 0 for a negative argument, NaN for NaN.
  static double sqrt(double x) noexcept { return x < 0.0 ? 0.0 : std::sqrt(x); }

  /// Arc cosine in radians; an argument beyond [-1, 1] counts as the nearer end, NaN gives NaN.
  static double acos(double x) noexcept {
    return x >= 1.0 ? 0.0 : x <= -1.0 ? 3.141592653589793 : std::acos(x);
  }

  /// A divisor that is never zero: the argument when it is at least 1e-300, otherwise 1e-300.
  /// Negative arguments and NaN give 1e-300 too.
  static constexpr double nonZeroPos(const double& x) noexcept { return x >= 1e-300 ? x : 1e-300; }

  /// Whether two reals differ by no more than the tolerance: with a the larger and b the smaller,
  /// they differ if a > b + tolerance. A NaN differs from everything.
  static constexpr bool approxEq(double x, double y, double tolerance) noexcept {
    return x > y ? x <= y + tolerance : y <= x + tolerance;
  }
};
