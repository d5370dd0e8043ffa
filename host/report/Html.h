#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

namespace kiv::host {

// Text from outside, safe in an element and in a quoted attribute; bytes that are no UTF-8 become
// U+FFFD, as control characters do.
void appendEscaped(std::string& html, std::string_view text);
std::string escaped(std::string_view text);
std::string code(std::string_view text);

// The digits stand in groups of three from five digits on.
std::string countText(std::size_t count);
std::string rowsText(std::size_t count);
std::string percentText(double share); // of 1, with one decimal

// A table up to its first row; columns of numbers behind the first.
void appendTableHead(std::string& html, std::string_view first,
                     std::initializer_list<std::string_view> headings);

// Cells of HTML.
void appendTableRow(std::string& html, std::string_view heading,
                    std::initializer_list<std::string> cells, const char* cellClass = "number");

} // namespace kiv::host
