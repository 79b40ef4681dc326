#include "Numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <system_error>

namespace {

bool readNumber(std::string_view word, double& value) {
  if (!word.empty() && word.front() == '+') word.remove_prefix(1);
  const char* end = word.data() + word.size();
  const auto [stop, code] = std::from_chars(word.data(), end, value);
  return code == std::errc() && stop == end && std::isfinite(value);
}

}  // namespace

bool readNumbers(std::string_view text, std::string_view separators, std::vector<double>& values,
                 std::string& wrong) {
  values.clear();
  const bool eachSeparates = separators.find(',') != std::string_view::npos;
  if (eachSeparates && text.empty()) return true;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find_first_of(separators, at), text.size());
    std::string_view word = text.substr(at, end - at);
    while (eachSeparates && !word.empty() && word.front() == ' ') word.remove_prefix(1);
    while (eachSeparates && !word.empty() && word.back() == ' ') word.remove_suffix(1);
    at = end + 1;
    if (word.empty() && !eachSeparates) continue;
    double value = 0.0;
    if (!readNumber(word, value)) {
      wrong = word;
      return false;
    }
    values.push_back(value);
  }
  return true;
}

void appendNumber(std::string& text, double value) {
  char digits[32];
  text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

std::string textOf(double value) {
  std::string text;
  appendNumber(text, value);
  return text;
}

std::string shortTextOf(double value) {
  char digits[32];
  return {digits,
          std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 6).ptr};
}

bool isWritable(const std::string& text) {
  const bool controls = std::any_of(text.begin(), text.end(), [](unsigned char c) {
    return c < 0x20 && c != '\t' && c != '\n' && c != '\r';
  });
  try {
    return !controls && !nlohmann::json(text).dump().empty();
  } catch (const nlohmann::json::exception&) {
    return false;  // the text is not UTF-8
  }
}

std::string counted(std::uint64_t count, const char* one, const char* many) {
  return std::to_string(count) + ' ' + (count == 1 ? one : many);
}
