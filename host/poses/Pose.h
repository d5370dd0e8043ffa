#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "host/poses/PoseFigures.h"
#include "host/poses/ReadingsPart.h"

namespace kiv::host {

inline constexpr std::size_t poseReadingCount = 5; // corrected encoders and tilts, temperature

// The rows of a sensor that stood still.
struct Pose {
    std::size_t number = 0;
    std::string group, id; // the first row's cells of the columns that were asked for
    std::size_t table = 0; // of the first row
    std::size_t firstLine = 0, lastLine = 0;
    std::optional<double> firstTime, lastTime; // seconds
    std::size_t moved = 0; // rows that turn too far, where they are too many for a still sensor
    std::size_t withoutAngles = 0, notGood = 0, outliers = 0;
    const char* trust = "";
    std::size_t used = 0;
    std::size_t leftOut() const { return withoutAngles + notGood + outliers; }

    PoseFigures figures;
    std::array<double, poseReadingCount> readings{}; // means
    std::array<double, 3> fromReadings{noNumber, noNumber, noNumber};
    // Mean rotation against the mean of the true ones: the changes of rx, ry and rz, degrees.
    std::optional<std::array<double, 3>> residual;
};

} // namespace kiv::host
