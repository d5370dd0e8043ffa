#pragma once

#include <cmath>
#include <cstddef>

#include "host/rows/TimeStamp.h"
#include "host/summary/Quantile.h"

namespace kiv::host {

// The steps of a table's time stamps, taken in one by one, in memory that does not grow. Stamps
// with a zone and those without are not compared; the first one decides which count.
class TimeSteps {
public:
    void add(TimeStamp time, std::size_t line);

    std::size_t count() const { return stamps; } // of rows with a time
    TimeStamp first() const { return begin; }
    TimeStamp last() const { return end; }

    double step() const { return steps.at(0.5); } // the median of those that are not 0, seconds
    // Steps of more than one and a half times the median.
    std::size_t gaps() const { return steps.above(gapSteps * step()); }
    double longest() const { return most; }                // seconds
    std::size_t longestLine() const { return lineOfMost; } // behind it
    std::size_t repeated() const { return same; }          // rows with the stamp before once more
    std::size_t backwards() const { return back; }

private:
    static constexpr double gapSteps = 1.5;

    std::size_t stamps = 0;
    TimeStamp begin{}, end{};
    Quantile steps;
    double most = 0;
    std::size_t lineOfMost = 0;
    std::size_t same = 0;
    std::size_t back = 0;
};

} // namespace kiv::host
