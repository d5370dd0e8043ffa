#include "host/report/Envelope.h"

#include <algorithm>
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

} // namespace

Envelope::Envelope(std::size_t seriesCount, std::size_t mostBins)
    : width(seriesCount), most(mostBins) {
    all.reserve(most);
    ranges.reserve(most * width);
}

void Envelope::addRow(double x, std::span<const double> values, Mark mark) {
    if (rowCount == most * binRows)
        mergeNeighbours();
    if (rowCount % binRows == 0) {
        all.push_back({x, x});
        ranges.resize(ranges.size() + width);
    }
    ++rowCount;

    Bin& bin = all.back();
    bin.lastX = x;
    bin.noOrientation += mark == Mark::noOrientation ? 1 : 0;
    bin.refused += mark == Mark::refused ? 1 : 0;
    Range* range = &ranges[ranges.size() - width];
    for (std::size_t i = 0; i < width; ++i)
        if (std::isfinite(values[i]))
            include(range[i], {values[i], values[i], values[i], 1});
}

void Envelope::mergeNeighbours() {
    const std::size_t half = all.size() / 2;
    for (std::size_t i = 0; i < half; ++i) {
        const Bin& first = all[2 * i];
        const Bin& second = all[2 * i + 1];
        all[i] = {first.firstX, second.lastX, first.noOrientation + second.noOrientation,
                  first.refused + second.refused};
        for (std::size_t s = 0; s < width; ++s) {
            Range merged = range(2 * i, s);
            include(merged, range(2 * i + 1, s));
            ranges[i * width + s] = merged;
        }
    }
    all.resize(half, Bin{0, 0});
    ranges.resize(half * width);
    binRows *= 2;
}

} // namespace kiv::host
