#pragma once

#include <span>
#include <string>
#include <string_view>

namespace kiv::host {

// What the first row of a file looks like that has not the column names asked for: text to stand
// behind a comma, empty where nothing is to be said. The names are cells of that row; rest is
// what of the file stands behind it.
std::string lookOfHeader(std::string_view row, std::span<const std::string_view> names,
                         std::string_view rest, std::span<const std::string_view> missing);

} // namespace kiv::host
