#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kiv::host {

// A quantile of magnitudes, in memory that does not grow: they are counted in bins that are 1/1024
// to 1/2048 of their size wide.
class Quantile {
public:
    void add(double magnitude); // at least 0

    // The least bin edge that this share of the magnitudes does not exceed, or the largest of them:
    // the quantile, or more by 0.1 % at most. 0 without any.
    double at(double share) const;

    // How many of the magnitudes are larger, but for those in the bin of this one.
    std::size_t above(double magnitude) const;

private:
    std::size_t count = 0;
    double largest = 0;
    std::vector<std::uint64_t> bins;
};

} // namespace kiv::host
