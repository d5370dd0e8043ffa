#include "host/summary/Quantile.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>

namespace kiv::host {

namespace {

// The bits of a single-precision magnitude rise with it; all but the last 13 number its bin.
// Magnitudes below 2^-40 share the first one.
constexpr int bitsWithinBin = 13;
constexpr std::uint32_t binOf(float magnitude) {
    return std::bit_cast<std::uint32_t>(magnitude) >> bitsWithinBin;
}
constexpr std::uint32_t firstBin = binOf(0x1p-40F);
constexpr std::uint32_t lastBin = binOf(0x1p10F);

// From 0.
std::size_t placeOf(double magnitude) {
    return std::clamp(binOf(static_cast<float>(magnitude)), firstBin, lastBin) - firstBin;
}

} // namespace

void Quantile::add(double magnitude) {
    if (bins.empty())
        bins.resize(lastBin - firstBin + 1);
    ++bins[placeOf(magnitude)];
    ++count;
    largest = std::max(largest, magnitude);
}

double Quantile::at(double share) const {
    const auto wanted = static_cast<std::uint64_t>(std::ceil(share * static_cast<double>(count)));
    std::uint64_t passed = 0;
    std::uint32_t bin = firstBin;
    for (const std::uint64_t n : bins) {
        passed += n;
        ++bin;
        if (passed >= wanted)
            break;
    }
    return std::min<double>(largest, std::bit_cast<float>(bin << bitsWithinBin));
}

std::size_t Quantile::above(double magnitude) const {
    if (bins.empty())
        return 0;
    const auto from = bins.begin() + static_cast<std::ptrdiff_t>(placeOf(magnitude)) + 1;
    return std::accumulate(from, bins.end(), std::size_t{0});
}

} // namespace kiv::host
