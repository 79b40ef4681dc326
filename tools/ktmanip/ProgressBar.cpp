#include "ProgressBar.h"

#include <unistd.h>

#include <cstdio>
#include <string>

ProgressBar::ProgressBar(std::uint64_t total) : start_(Clock::now()) {
  if (isatty(STDERR_FILENO) == 1) total_ = total;
  next_ = start_ + std::chrono::seconds(1);
}

ProgressBar::~ProgressBar() {
  if (drawn_) std::fprintf(stderr, "\r\x1b[K");
}

void ProgressBar::draw(std::uint64_t done) {
  const Clock::time_point now = Clock::now();
  if (now < next_ || done == 0) return;
  next_ = now + std::chrono::milliseconds(100);
  drawn_ = true;
  constexpr double kWidth = 40.0;
  const double part = static_cast<double>(done) / static_cast<double>(total_);
  const double passed = std::chrono::duration<double>(now - start_).count();
  std::string bar(static_cast<std::size_t>(part * kWidth), '#');
  bar.resize(static_cast<std::size_t>(kWidth), '.');
  std::fprintf(stderr, "\r[%s] %3.0f %%, %.0f s left\x1b[K", bar.c_str(), 100.0 * part,
               passed * (1.0 / part - 1.0));
}
