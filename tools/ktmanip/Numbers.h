#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Reads numbers from a text, whatever the locale. All have to be finite.
///
/// @param separators  characters between numbers; with a comma among them, each separates, with
///                    blanks about it or not, else a run of them does
/// @param values      receives the numbers
/// @param wrong       receives the first word that is no number
/// @return            whether all words are numbers
bool readNumbers(std::string_view text, std::string_view separators, std::vector<double>& values,
                 std::string& wrong);

/// Appends a number in the shortest form that reads back to the same bits.
void appendNumber(std::string& text, double value);

/// A number in that form.
std::string textOf(double value);

/// A number in six significant digits, for people.
std::string shortTextOf(double value);

/// Whether a text may stand in a system's file: UTF-8, and no control characters.
bool isWritable(const std::string& text);

/// A number of things in words, such as "1 step" or "2 steps".
std::string counted(std::uint64_t count, const char* one, const char* many);
