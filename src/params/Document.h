#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "params/BlockTable.h"

namespace kiv {

// The values of one block, in the file's own units. Only the members that the block's kind has are
// used.
struct BlockValues {
    std::int32_t integer = 0;        // tables: the row count that the text claims
    std::string word;                // also the word that closes a tilt table
    std::vector<float> numbers;      // fixed groups; tables: two per row, as many as could be read
    std::array<float, 3> trailing{}; // tilt tables
    bool defaulted = false;          // the file ended before the block; these are its defaults

    std::size_t rows() const { return numbers.size() / 2; }
    bool operator==(const BlockValues&) const = default;
};

// What was read of a block behind its title before its values broke off.
struct BrokenBlock {
    Block block{};
    BlockValues values;
    std::size_t groups = 0; // so many of its lines in print, or parts of a line, were complete

    bool operator==(const BrokenBlock&) const = default;
};

// The blocks that were read completely, in file order; none behind a failing one.
struct Document {
    std::array<std::optional<BlockValues>, blockTable.size()> blocks;
    std::optional<BrokenBlock> broken; // for a rewrite, the failing one with its title read

    const BlockValues* find(Block block) const {
        const auto& values = blocks[static_cast<std::size_t>(block)];
        return values ? &*values : nullptr;
    }
    bool operator==(const Document&) const = default;
};

} // namespace kiv
