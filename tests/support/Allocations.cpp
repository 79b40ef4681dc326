#include "support/Allocations.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {
std::size_t theCount = 0;
std::size_t theLargest = 0;

void* allocate(std::size_t bytes) {
  ++theCount;
  theLargest = std::max(theLargest, bytes);
  if (void* memory = std::malloc(std::max<std::size_t>(bytes, 1))) return memory;
  throw std::bad_alloc();
}
}  // namespace

void* operator new(std::size_t bytes) {
  return allocate(bytes);
}
void* operator new[](std::size_t bytes) {
  return allocate(bytes);
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
  try {
    return allocate(bytes);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}

Allocations::Allocations() : start_(theCount) {
  theLargest = 0;
}
std::size_t Allocations::count() const {
  return theCount - start_;
}
std::size_t Allocations::largest() const {
  return theLargest;
}
