#pragma once

#include <string>
#include <string_view>

namespace kiv {

// A text from outside as messages show it: in quotes, its first 40 bytes, all but printable ASCII
// as \xNN.
std::string quoted(std::string_view text);

} // namespace kiv
