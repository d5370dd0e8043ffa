#pragma once

#include <string>
#include <string_view>

namespace kiv::host {

// A number's text in ASCII: U+2212 becomes a hyphen, no-break spaces (U+00A0, U+202F) around it and
// in front of groups of three digits are left out. All else stays as it is.
std::string asciiNumber(std::string_view text);

// Without decimals that are all 0, and without the mark in front of them.
std::string_view withoutZeroDecimals(std::string_view number, char decimalMark);

// A number with a comma in place of its point.
bool isNumberWithComma(std::string_view text);

} // namespace kiv::host
