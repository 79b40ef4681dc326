#pragma once

#include <cstddef>

/// How many times, and for how many bytes at the most at once, memory was asked for since the
/// construction.
class Allocations {
 public:
  Allocations();
  std::size_t count() const;
  std::size_t largest() const;

 private:
  std::size_t start_;
};
