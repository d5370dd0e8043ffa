#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace kiv::host {

// The median of magnitudes above 0, in memory that does not grow: they are counted in bins of a
// quarter of an octave, and the median's bin is followed from one to the next.
class RunningMedian {
public:
    // True where the median has changed.
    bool add(float magnitude) {
        const std::uint32_t before = middle;
        const std::uint32_t bin = std::bit_cast<std::uint32_t>(magnitude) >> bitsWithinBin;
        if (all == 0)
            middle = bin;
        ++bins[bin];
        ++all;
        below += bin < middle ? 1U : 0U;
        while (below > all / 2)
            below -= bins[--middle];
        while (below + bins[middle] <= all / 2)
            below += bins[middle++];
        return middle != before;
    }

    std::size_t count() const { return all; }
    // The upper edge of its bin: the median, or more by 19 % at most.
    float value() const { return std::bit_cast<float>((middle + 1) << bitsWithinBin); }

private:
    static constexpr int bitsWithinBin = 21; // of single precision: two of the fraction are left
    std::array<std::uint64_t, 1024> bins{};
    std::uint64_t all = 0;
    std::uint64_t below = 0; // in the bins in front of the middle one
    std::uint32_t middle = 0;
};

} // namespace kiv::host
