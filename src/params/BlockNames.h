#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "params/BlockTable.h"

// The blocks and their values as programs name them.
namespace kiv {

// The title in lower case, with underscores.
const char* keyOf(Block block);
std::optional<Block> blockOf(std::string_view key);

// The names of a block's numbers, or of those behind a tilt table's rows; a name ends with the
// unit. None where the values have no names.
std::span<const char* const> valueNamesOf(Block block);

constexpr bool isMatrix(Block block) {
    return block == Block::localMatrix || block == Block::machineMatrix;
}

} // namespace kiv
