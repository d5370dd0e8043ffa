#pragma once

#include <cstddef>
#include <vector>

namespace kiv::host {

// The Allan deviation of values at equal steps, over windows of 1, 2, 4 and so on that do not
// overlap, in memory that grows with the number of windows alone. White noise has its own deviation
// at one value and half of that at four; a drift rises with the window.
// Source: D. W. Allan, Proceedings of the IEEE 54 (1966), 221.
class AllanDeviation {
public:
    void add(double value) { add(0, value); }

    struct Point {
        std::size_t values; // of a window
        double deviation;
    };
    std::vector<Point> points() const; // of windows of which there are three or more

private:
    struct Window {
        double open = 0; // half of the next larger one
        double last = 0;
        double squares = 0; // of differences of neighbours, their sum
        std::size_t count = 0;
    };

    void add(std::size_t window, double mean);

    std::vector<Window> windows;
};

} // namespace kiv::host
