#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Reads finite numbers from a text, independently of the locale.
///
/// @param separators  characters that separate numbers. If a comma is among them, each character
///                    separates two numbers, and blanks around it are ignored; otherwise a
///                    sequence of separators counts as one.
/// @param values      receives the numbers
/// @param wrong       receives the first word that is not a number
/// @return            true if all words are numbers
bool readNumbers(std::string_view text, std::string_view separators, std::vector<double>& values,
                 std::string& wrong);

/// Appends a number in the shortest form that reads back to the same bits.
void appendNumber(std::string& text, double value);

/// The shortest text of a number that reads back to the same bits.
std::string textOf(double value);

/// A number with six significant digits.
std::string shortTextOf(double value);

/// Whether a text may stand in a system's file: UTF-8, and no control characters.
bool isWritable(const std::string& text);

/// A count with its noun, such as "1 step" or "2 steps".
std::string counted(std::uint64_t count, const char* one, const char* many);
