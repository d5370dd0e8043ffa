#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace kiv::host {

// A name that is missing, and one that is there and most likely meant as it.
struct ClosePair {
    std::size_t missing;
    std::size_t found;
};

// All such pairs, in the order of the missing names; each name is in one of them at most. Close are
// another spelling, another unit of length or temperature or none, one or two other letters, and
// the start of the name, where no other missing name is as close.
std::vector<ClosePair> closePairs(std::span<const std::string_view> missing,
                                  std::span<const std::string_view> found);

// The nearest of some names; none has to be near.
std::string_view nearestName(std::span<const std::string_view> names, std::string_view name);

} // namespace kiv::host
