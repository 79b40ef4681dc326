#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>

/// Position of a virtual operation in its class's table, from the form that a pointer to a virtual
/// member has on this platform (Itanium C++ ABI, 2.3: one plus the offset in the table).
template <class Member>
std::size_t slotOf(Member member) {
  static_assert(sizeof(member) >= sizeof(std::ptrdiff_t));
  std::ptrdiff_t raw = 0;
  std::memcpy(&raw, &member, sizeof raw);
  EXPECT_EQ(raw & 1, 1) << "not a virtual operation";
  return static_cast<std::size_t>(raw - 1) / sizeof(void*);
}

/// Expects the operations, as pointers to virtual members, to stand one behind the other, the first
/// at a position.
template <class... Members>
void expectOrder(const std::string& cls, std::size_t first, Members... members) {
  std::size_t expected = first;
  for (const std::size_t slot : {slotOf(members)...}) {
    EXPECT_EQ(slot, expected) << cls << ", operation " << expected - first << " of its list";
    ++expected;
  }
}

/// Picks, of two overloads that differ in this alone, the one for constant objects.
template <class Result, class Cls, class... Parameters>
auto constant(Result (Cls::*member)(Parameters...) const) {
  return member;
}
/// Picks the one for objects that may change.
template <class Result, class Cls, class... Parameters>
auto variable(Result (Cls::*member)(Parameters...)) {
  return member;
}
/// Picks an overload by its parameters.
template <class... Parameters>
struct Taking {
  template <class Result, class Cls>
  auto operator()(Result (Cls::*member)(Parameters...)) const {
    return member;
  }
  template <class Result, class Cls>
  auto operator()(Result (Cls::*member)(Parameters...) const) const {
    return member;
  }
};
template <class... Parameters>
constexpr Taking<Parameters...> taking;

// Last slots of the classes that everything persistent derives from.

constexpr std::size_t kObject = 18;       // the destructor has two, then 17 operations
constexpr std::size_t kCompound = 44;     // 26 operations more
constexpr std::size_t kHolder = 26;       // 8 operations more than the root
constexpr std::size_t kMap = 29;          // 11 operations more than the root
constexpr std::size_t kTreeElement = 46;  // 2 operations more than a compound
