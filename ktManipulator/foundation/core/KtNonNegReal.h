#pragma once

#include <concepts>

#include "ktManipulator/foundation/core/KtExport.h"

/// A real that is never negative: a negative value becomes 0, also as the result of an operation.
/// NaN is kept, so that a failed computation stays visible.
class KT_EXPORT KtNonNegReal {
 public:
  /// Zero.
  constexpr KtNonNegReal() noexcept = default;
  /// From a real; a negative one gives 0.
  constexpr KtNonNegReal(double value) noexcept  // NOLINT(google-explicit-constructor)
      : value_(value < 0.0 ? 0.0 : value) {}

  /// The value.
  constexpr operator double() const noexcept { return value_; }  // NOLINT

  /// Product; a negative factor gives 0.
  constexpr KtNonNegReal& operator*=(double factor) noexcept {
    return *this = KtNonNegReal(value_ * factor);
  }

  // Only for two values of this very type: with a plain real on either side the built-in
  // operation on doubles applies, whose result may be negative.

  /// Sum.
  template <std::same_as<KtNonNegReal> T>
  constexpr KtNonNegReal operator+(const T& other) const noexcept {
    return KtNonNegReal(value_ + other.value_);
  }
  /// Difference; 0 where the other is larger.
  template <std::same_as<KtNonNegReal> T>
  constexpr KtNonNegReal operator-(const T& other) const noexcept {
    return KtNonNegReal(value_ - other.value_);
  }

 private:
  double value_ = 0.0;
};
