#pragma once

#include <cmath>

#include "ktManipulator/foundation/core/KtExport.h"

/// An angle in radians that keeps its sine and cosine beside its value, for code that reads them
/// many times per change.
class KT_EXPORT KtAngle {
 public:
  /// The zero angle.
  KtAngle() noexcept = default;
  /// From radians.
  KtAngle(double radians) noexcept  // NOLINT(google-explicit-constructor): angles are numbers
      : value_(radians), sine_(std::sin(radians)), cosine_(std::cos(radians)) {}
  KtAngle(const KtAngle&) noexcept = default;
  KtAngle& operator=(const KtAngle&) noexcept = default;

  /// Sine of the angle.
  virtual const double& sine() const { return sine_; }
  /// Cosine of the angle.
  virtual const double& cosine() const { return cosine_; }
  virtual ~KtAngle() = default;

  /// The angle in radians.
  operator double() const noexcept { return value_; }  // NOLINT(google-explicit-constructor)

 private:
  double value_ = 0.0;
  double sine_ = 0.0;
  double cosine_ = 1.0;
};
