#pragma once

#include <chrono>
#include <cstdint>

/// A bar on standard error that tells how far work has come. It shows only on a terminal, and only
/// where the work takes longer than a second; it is gone when the work is done.
class ProgressBar {
 public:
  /// @param total  how much work there is
  explicit ProgressBar(std::uint64_t total);
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  /// Tells how much is done. Most calls cost next to nothing.
  void update(std::uint64_t done) {
    if (total_ > 0 && (++calls_ & 63U) == 0) draw(done);
  }

 private:
  using Clock = std::chrono::steady_clock;

  void draw(std::uint64_t done);

  std::uint64_t total_ = 0;  // 0 if nothing is to be shown
  unsigned calls_ = 0;
  bool drawn_ = false;
  Clock::time_point start_, next_;
};
