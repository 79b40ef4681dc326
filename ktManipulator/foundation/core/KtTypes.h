/// @file
/// Scalar names, the two reserved link indices and small text helpers.
#pragma once

#include <charconv>
#include <cstdint>
#include <string>

using KtReal = double;         ///< Every real number of the library.
using KtU32 = std::uint32_t;   ///< Counts and indices.
using KtBoolean = bool;        ///< Truth values.
using KtString = std::string;  ///< Text, UTF-8.

/// Stands for a manipulator's root wherever a link index is expected.
inline constexpr KtU32 ktBaseIndex = 0xFFFFFFFEU;
/// The index of a link that was never mapped, and the answer of a failed lookup.
inline constexpr KtU32 ktUnmappedIndex = 0xFFFFFFFFU;

/// An unsigned integer as text in the given base (2 to 36; any other base is read as 10).
inline std::string KtINT2STRING(std::uint64_t value, int base) {
  char text[64];
  const auto end =
      std::to_chars(text, text + sizeof text, value, base >= 2 && base <= 36 ? base : 10);
  return std::string(text, end.ptr);
}
