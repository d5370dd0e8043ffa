#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kiv::host {

// A number's text in ASCII: U+2212 becomes a hyphen, no-break spaces (U+00A0, U+202F) around it and
// in front of groups of three digits are left out. All else stays as it is.
std::string asciiNumber(std::string_view text);

// Without decimals that are all 0, and without the mark in front of them.
std::string_view withoutZeroDecimals(std::string_view number, char decimalMark);

// A number with this decimal mark in it.
bool isNumberWithMark(std::string_view text, char mark);

// What to expect in place of a text that is none of the numbers up to the largest; found is what
// number it is else.
std::string expectedNumber(std::optional<long double> found, double largest);

// What keeps a text from being a number, behind a comma: a unit or marks between thousands; else
// nothing.
std::string markOfNumber(std::string_view text);

} // namespace kiv::host
