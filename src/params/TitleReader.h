#pragma once

#include <optional>
#include <string>

#include "params/Finding.h"

namespace kiv {

struct TitleReading {
    std::string words;               // those taken, a space between them
    std::optional<Block> other;      // the later block whose title they are
    std::optional<Finding> mismatch; // they are not the title
    bool isClose = false;            // but most likely meant as it
};

// Takes the words of a block's title, fewer where the text ends or a later block's title has come.
// Where the block is one that the text may end before and has ended before, firstPassed is the
// first such.
TitleReading readTitle(Scanner& scanner, const BlockLayout& layout, const BlockLayout* firstPassed);

} // namespace kiv
