#pragma once

#include <cstddef>
#include <string_view>

namespace kiv {

// The number of characters to insert, drop or replace that makes one text the other; case does not
// count.
std::size_t editDistance(std::string_view a, std::string_view b);

} // namespace kiv
