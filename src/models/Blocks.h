#pragma once

#include <algorithm>
#include <cstddef>

namespace kiv {

// The first count values into the front of a parameter block; nothing for a count of 0 or less, and
// never more than the block holds.
template <std::size_t size>
void copyIntoBlock(const float* values, int count, float (&block)[size]) {
    std::copy_n(values, std::min(count, static_cast<int>(size)), block);
}

} // namespace kiv
