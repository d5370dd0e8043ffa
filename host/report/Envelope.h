#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace kiv::host {

// Several series over the rows of a run, thinned for a chart: bins of equally many rows, each with
// the least, the largest and the mean value of every series. When the bins are full, neighbours
// merge and a bin takes twice as many rows, so that memory is bounded and no extreme is lost.
class Envelope {
public:
    enum class Mark : unsigned char { none, noOrientation, refused, notGood };

    struct Bin {
        double firstX; // of its rows
        double lastX;
        std::size_t noOrientation = 0; // rows with this mark
        std::size_t refused = 0;
        std::size_t notGood = 0;
    };

    struct Range {
        double least = 0;
        double largest = 0;
        double sum = 0;
        std::size_t count = 0; // 0: the bin has no value of the series

        double mean() const { return sum / static_cast<double>(count); }
    };

    Envelope(std::size_t seriesCount, std::size_t mostBins); // at least 2 bins, an even number

    // One value for each series; one that is not finite counts as none.
    void addRow(double x, std::span<const double> values, Mark mark = Mark::none);

    std::size_t rows() const { return rowCount; }
    std::size_t rowsPerBin() const { return binRows; } // the last bin may have fewer
    std::span<const Bin> bins() const { return all; }
    Range range(std::size_t bin, std::size_t ofSeries) const;

    // The same of directions in degrees, wherever their seam is: in two sides where some values of
    // the bin are more than half a turn from the others, so that a bin across the seam is no range
    // from one end of the chart to the other. The first side has values where any has.
    const Range& side(std::size_t bin, std::size_t ofSeries, std::size_t second) const {
        return ranges[(bin * width + ofSeries) * 2 + second];
    }
    bool acrossSeam(std::size_t bin, std::size_t ofSeries) const {
        return side(bin, ofSeries, 1).count > 0;
    }

private:
    void mergeNeighbours();

    std::size_t width;
    std::size_t most;
    std::size_t binRows = 1;
    std::size_t rowCount = 0;
    std::vector<Bin> all;
    std::vector<Range> ranges; // bin by bin, two a series
};

} // namespace kiv::host
