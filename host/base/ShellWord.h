#pragma once

#include <string>

namespace kiv::host {

// A text as shells take it for one word.
std::string shellWord(const std::string& text);

} // namespace kiv::host
