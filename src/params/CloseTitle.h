#pragma once

#include <string_view>

#include "params/BlockTable.h"

namespace kiv {

// The words are not the block's title but most likely meant as it: of all titles theirs is the
// nearest, in a different case or with one or two characters too many, missing or wrong.
bool isCloseTo(const BlockLayout& layout, std::string_view words);

} // namespace kiv
