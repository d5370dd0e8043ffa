#include "params/CloseTitle.h"

#include <algorithm>

#include "support/EditDistance.h"

namespace kiv {

namespace {

constexpr std::size_t mostWrong = 2;

} // namespace

bool isCloseTo(const BlockLayout& layout, std::string_view words) {
    const std::size_t wrong = editDistance(words, layout.title);
    return wrong <= mostWrong && 2 * wrong < layout.title.size()
           && std::all_of(blockTable.begin(), blockTable.end(), [&](const BlockLayout& other) {
                  return other.block == layout.block || wrong < editDistance(words, other.title);
              });
}

} // namespace kiv
