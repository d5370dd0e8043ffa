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
    Range* range = &ranges[ranges.size() - 2 * width];
    for (std::size_t i = 0; i < width; ++i)
        if (std::isfinite(values[i]))
            include(range[2 * i + (values[i] >= 0 && values[i] <= 180 ? 1 : 0)],
                    {values[i], values[i], values[i], 1});
}

Envelope::Range Envelope::range(std::size_t bin, std::size_t ofSeries) const {
    Range both = half(bin, ofSeries, false);
    include(both, half(bin, ofSeries, true));
    return both;
}

bool Envelope::acrossSeam(std::size_t bin, std::size_t ofSeries) const {
    const Range both = range(bin, ofSeries);
    return both.largest - both.least > 180 && half(bin, ofSeries, false).count > 0
           && half(bin, ofSeries, true).count > 0;
}

void Envelope::mergeNeighbours() {
    const std::size_t pairs = all.size() / 2;
    for (std::size_t i = 0; i < pairs; ++i) {
        const Bin& first = all[2 * i];
        const Bin& second = all[2 * i + 1];
        all[i] = {first.firstX, second.lastX, first.noOrientation + second.noOrientation,
                  first.refused + second.refused};
        for (std::size_t s = 0; s < 2 * width; ++s) {
            Range merged = ranges[4 * i * width + s];
            include(merged, ranges[(4 * i + 2) * width + s]);
            ranges[2 * i * width + s] = merged;
        }
    }
    all.resize(pairs, Bin{0, 0});
    ranges.resize(pairs * width * 2);
    binRows *= 2;
}

} // namespace kiv::host
