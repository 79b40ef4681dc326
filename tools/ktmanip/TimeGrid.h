#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

/// The times of a run in equal steps.
///
/// If the start is a multiple of the step, every time is a multiple of the step that is rounded
/// only once. Rounding errors don't accumulate, and a run that is stopped and continued has exactly
/// the same times as an uninterrupted run. Otherwise times are the start plus multiples of the
/// step. The last step is shorter if the duration is not a multiple of the step.
class TimeGrid {
 public:
  /// @param start     time of the first state, s
  /// @param duration  at least 0, s
  /// @param step      above 0, s
  TimeGrid(double start, double duration, double step)
      : start_(start), end_(start + duration), step_(step) {
    findFraction();
    const double count = duration / step;
    const double whole = std::round(count);
    endsOnGrid_ = std::abs(count - whole) <= kRounding * count;
    steps_ = static_cast<std::uint64_t>(endsOnGrid_ ? whole : std::ceil(count));
    first_ = std::round(start / step);
    startsOnGrid_ = std::abs(multiple(first_) - start) <= kRounding * std::abs(start);
  }

  /// The number of steps.
  std::uint64_t steps() const noexcept { return steps_; }
  /// The time after a number of steps, s.
  double time(std::uint64_t step) const noexcept {
    if (step == 0) return start_;
    if (step >= steps_ && !endsOnGrid_) return end_;
    const auto count = static_cast<double>(step);
    return startsOnGrid_ ? multiple(first_ + count) : start_ + count * step_;
  }

 private:
  static constexpr double kRounding = 4.0 * std::numeric_limits<double>::epsilon();

  // The double 0.1 is slightly more than 1/10, so three times that is not the double 0.3. Most
  // steps are the double nearest to 1/n or n/10^k; computed from this fraction, times are the
  // doubles nearest to the exact values.
  void findFraction() {
    const auto fits = [this](double denominator) {
      const double numerator = std::round(step_ * denominator);
      if (!(numerator >= 1.0 && numerator <= 1e9 && numerator / denominator == step_)) return false;
      numerator_ = numerator;
      denominator_ = denominator;
      return true;
    };
    if (step_ < 1.0 && step_ > 1e-9 && fits(std::round(1.0 / step_))) return;
    for (double power = 1.0; power <= 1e9; power *= 10.0) {
      if (fits(power)) return;
    }
  }
  double multiple(double count) const noexcept {
    return denominator_ > 0.0 ? count * numerator_ / denominator_ : count * step_;
  }

  double start_, end_, step_;
  double numerator_ = 0.0, denominator_ = 0.0;  // of the step; 0 if no fraction fits
  double first_ = 0.0;                          // the start divided by the step, rounded
  std::uint64_t steps_ = 0;
  bool startsOnGrid_ = false, endsOnGrid_ = false;
};
