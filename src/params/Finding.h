#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "params/BlockTable.h"
#include "params/Scanner.h"

namespace kiv {

// Something in the text that is not what the format asks for; line and column count from 1, the
// column in bytes.
struct Finding {
    Block block{};
    std::size_t line = 0;
    std::size_t column = 0;
    std::string expected; // "expected " is not part of it
    std::string found;

    bool operator==(const Finding&) const = default;
};

// A word of the text as findings show it; an empty one is the text's end.
std::string shownWord(std::string_view word);

// The word that comes next stands where something else is expected.
Finding findingAtWord(Scanner& scanner, Block block, std::string expected);

inline constexpr const char* longWord = "a word of at most 255 characters";

} // namespace kiv
