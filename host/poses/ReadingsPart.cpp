#include "host/poses/ReadingsPart.h"

#include <algorithm>
#include <cmath>

#include "host/poses/PoseFigures.h"

namespace kiv::host {

namespace {

constexpr double square(double value) {
    return value * value;
}

} // namespace

void ReadingsPart::add(const AngleUncertainty& ofRow) {
    ++rows;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        independent[axis] += square(ofRow.rounding[axis]);
        for (std::size_t i = 0; i < sourceCount; ++i)
            if (i < at(Source::azimuthOffset))
                independent[axis] += square(ofRow.contribution[i][axis]);
            else
                common[i][axis] += ofRow.contribution[i][axis];
        reference[axis] += ofRow.reference[axis];
    }
}

void ReadingsPart::addCalibration(const AngleTriple& standard) {
    ++calibrated;
    for (std::size_t axis = 0; axis < 3; ++axis)
        calibration[axis] += standard[axis];
}

std::array<double, 3> ReadingsPart::ofMean() const {
    std::array<double, 3> standard{noNumber, noNumber, noNumber};
    if (rows + calibrated == 0)
        return standard;
    const auto count = static_cast<double>(std::max<std::size_t>(rows, 1));
    const auto ofCalibration = static_cast<double>(std::max<std::size_t>(calibrated, 1));
    for (std::size_t axis = 0; axis < 3; ++axis) {
        double variance = independent[axis] / square(count) + square(reference[axis] / count)
                          + square(calibration[axis] / ofCalibration);
        for (const AngleTriple& sum : common)
            variance += square(sum[axis] / count);
        standard[axis] = std::sqrt(variance);
    }
    return standard;
}

} // namespace kiv::host
