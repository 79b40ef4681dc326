/// @file
/// The text form of numbers, independent of the locale.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>

#include "ktManipulator/foundation/core/KtTypes.h"

namespace Kt::detail {

/// The text without white space at both ends.
inline std::string_view trimmed(std::string_view text) noexcept {
  constexpr std::string_view blanks = " \t\n\r";
  const auto first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// The text, cut to a length that fits into a message.
inline std::string excerpt(std::string_view text) {
  constexpr std::size_t most = 60;
  return text.size() <= most ? std::string(text) : std::string(text.substr(0, most)) + "...";
}

/// Reads a whole text as a real; false and the value unchanged if it is none. A value beyond the
/// range of a double gives the infinity or zero that it rounds to.
inline bool parseReal(std::string_view text, double& value) noexcept {
  std::string_view digits = text;
  if (!digits.empty() && digits[0] == '+') digits.remove_prefix(1);
  if (digits.empty() || digits[0] == '+') return false;
  const bool negative = digits[0] == '-';
  if (negative && text[0] == '+') return false;
  // The words of XML Schema, and no other spelling: std::from_chars would take several.
  const std::string_view word = digits.substr(negative ? 1 : 0);
  if (word == "INF") {
    value = negative ? -std::numeric_limits<double>::infinity()
                     : std::numeric_limits<double>::infinity();
    return true;
  }
  if (text == "NaN") {
    value = std::numeric_limits<double>::quiet_NaN();
    return true;
  }
  if (word.empty() || !((word[0] >= '0' && word[0] <= '9') || word[0] == '.')) return false;
  double parsed = 0.0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), parsed);
  if (end != digits.data() + digits.size() || error == std::errc::invalid_argument) return false;
  if (error == std::errc::result_out_of_range) {
    // Too large or too small: the place of the first digit that counts tells, with the exponent.
    const auto mark = std::min(word.find_first_of("eE"), word.size());
    const std::string_view mantissa = word.substr(0, mark);
    const auto point = std::min(mantissa.find('.'), mantissa.size());
    const auto first = mantissa.find_first_not_of("0.");
    long exponent = 0;
    if (mark < word.size())
      exponent = std::strtol(std::string(word.substr(mark + 1)).c_str(), nullptr, 10);
    const bool tiny =
        first == std::string_view::npos ||
        static_cast<double>(point) - static_cast<double>(first) + static_cast<double>(exponent) <
            0.0;
    parsed = tiny ? 0.0 : std::numeric_limits<double>::infinity();
    if (negative) parsed = -parsed;
  }
  value = parsed;
  return true;
}

/// Reads a whole text as an unsigned integer of 32 bits; false and the value unchanged if it is
/// none or too large.
inline bool parseUnsigned(std::string_view text, KtU32& value) noexcept {
  KtU32 parsed = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed);
  if (error != std::errc() || end != text.data() + text.size() || text.empty()) return false;
  value = parsed;
  return true;
}

}  // namespace Kt::detail
