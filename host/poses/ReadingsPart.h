#pragma once

#include <array>
#include <cstddef>

#include "uncertainty/Propagation.h"

namespace kiv::host {

// What the uncertainties of the readings make of the mean of rows: noise of a reading is another
// one in each row, an error of a parameter, and of the reference in the local frame, is the same in
// all of them.
class ReadingsPart {
public:
    void add(const AngleUncertainty& ofRow);
    void addCalibration(const AngleTriple& standard); // of a row, the same error in all of them

    // Standard uncertainties of the mean's angles, degrees; no numbers without a row.
    std::array<double, 3> ofMean() const;

private:
    std::size_t rows = 0, calibrated = 0;
    AngleTriple independent{};                     // sums of variances
    std::array<AngleTriple, sourceCount> common{}; // sums
    AngleTriple reference{}, calibration{};        // sums
};

} // namespace kiv::host
