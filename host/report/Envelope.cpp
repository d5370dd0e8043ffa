#include "host/report/Envelope.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kiv::host {

namespace {

void include(Envelope::Range& range, const Envelope::Range& other) {
    if (other.count == 0)
        return;
    range.least = range.count == 0 ? other.least : std::min(range.least, other.least);
    range.largest = range.count == 0 ? other.largest : std::max(range.largest, other.largest);
    range.sum += other.sum;
    range.count += other.count;
}

// On the side where it is within half a turn.
void includeOnSide(Envelope::Range* sides, const Envelope::Range& other) {
    const bool near =
        other.count == 0 || sides[0].count == 0 || std::abs(other.mean() - sides[0].mean()) <= 180;
    include(sides[near ? 0 : 1], other);
}

} // namespace

Envelope::Envelope(std::size_t seriesCount, std::size_t mostBins)
    : width(seriesCount), most(mostBins) {
    all.reserve(most);
    ranges.reserve(most * width * 2);
}

void Envelope::addRow(double x, std::span<const double> values, Mark mark) {
    if (rowCount == most * binRows)
        mergeNeighbours();
    if (rowCount % binRows == 0) {
        all.push_back({x, x});
        ranges.resize(ranges.size() + 2 * width);
    }
    ++rowCount;

    Bin& bin = all.back();
    bin.lastX = x;
    bin.noOrientation += mark == Mark::noOrientation ? 1 : 0;
    bin.refused += mark == Mark::refused ? 1 : 0;
    bin.notGood += mark == Mark::notGood ? 1 : 0;
    Range* sides = &ranges[ranges.size() - 2 * width];
    for (std::size_t i = 0; i < width; ++i)
        if (std::isfinite(values[i]))
            includeOnSide(sides + 2 * i, {values[i], values[i], values[i], 1});
}

Envelope::Range Envelope::range(std::size_t bin, std::size_t ofSeries) const {
    Range both = side(bin, ofSeries, 0);
    include(both, side(bin, ofSeries, 1));
    return both;
}

void Envelope::mergeNeighbours() {
    const std::size_t pairs = all.size() / 2;
    for (std::size_t i = 0; i < pairs; ++i) {
        const Bin& first = all[2 * i];
        const Bin& second = all[2 * i + 1];
        all[i] = {first.firstX, second.lastX, first.noOrientation + second.noOrientation,
                  first.refused + second.refused, first.notGood + second.notGood};
        for (std::size_t s = 0; s < width; ++s) {
            std::array<Range, 2> merged{side(2 * i, s, 0), side(2 * i, s, 1)};
            includeOnSide(merged.data(), side(2 * i + 1, s, 0));
            includeOnSide(merged.data(), side(2 * i + 1, s, 1));
            std::copy(merged.begin(), merged.end(), &ranges[(i * width + s) * 2]);
        }
    }
    all.resize(pairs, Bin{0, 0});
    ranges.resize(pairs * width * 2);
    binRows *= 2;
}

} // namespace kiv::host
