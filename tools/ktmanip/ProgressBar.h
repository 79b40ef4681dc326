#pragma once

#include <chrono>
#include <cstdint>

/// A progress bar on standard error. It appears only on a terminal, and only after one second; the
/// destructor removes it.
class ProgressBar {
 public:
  /// @param total  the amount of work, in units of the caller
  explicit ProgressBar(std::uint64_t total);
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  /// Reports the amount of work done. Only every 64th call can draw the bar.
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
