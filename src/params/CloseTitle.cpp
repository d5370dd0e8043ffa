#include "params/CloseTitle.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace kiv {

namespace {

constexpr std::size_t mostWrong = 2;

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The number of characters to insert, drop or replace that makes one text the other; case does not
// count.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1); // from the part of a so far to each part of b
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (lower(a[i]) != lower(b[j]));
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

} // namespace

bool isCloseTo(const BlockLayout& layout, std::string_view words) {
    const std::size_t wrong = distance(words, layout.title);
    return wrong <= mostWrong && 2 * wrong < layout.title.size()
           && std::all_of(blockTable.begin(), blockTable.end(), [&](const BlockLayout& other) {
                  return other.block == layout.block || wrong < distance(words, other.title);
              });
}

} // namespace kiv
