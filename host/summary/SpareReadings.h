#pragma once

#include <optional>
#include <string>

#include "host/summary/Statistics.h"
#include "uncertainty/Trust.h"

namespace kiv::host {

// The spare readings of a run's rows (uncertainty/SpareReading.h), one by one as they come: what no
// row alone can show they show together.
class SpareReadings {
public:
    void add(const RowTrust& row, std::size_t line);

    std::size_t rows() const { return values.count; }
    // Degrees, where there are rows.
    double mean() const { return values.mean; }
    double rootMeanSquare() const;
    double largest() const { return most; } // magnitude
    std::size_t largestLine() const { return lineOfMost; }
    // The root mean square that the readings' uncertainties allow for; nothing without these.
    std::optional<double> expected() const;

    // What speaks against the sensor's parameters, a sentence without an end; empty for nothing.
    std::string objection() const;

private:
    bool meanIsOff() const;
    bool largerThanExpected() const;

    Moments values;
    double variances = 0; // sum
    double most = 0;
    std::size_t lineOfMost = 0;
};

} // namespace kiv::host
