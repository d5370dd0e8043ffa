#pragma once

#include <array>
#include <cstddef>
#include <limits>

#include "host/poses/PoseRows.h"

namespace kiv::host {

inline constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

// What the rows of a pose say of one of its angles, in degrees; of small rotations about the axis
// of that angle. What cannot be told is no number.
struct AxisFigures {
    double angle = noNumber;            // of the mean rotation
    double deviation = noNumber;        // standard deviation of a single row
    double uncertainty = noNumber;      // standard uncertainty of the mean, from the scatter
    double effectiveRows = noNumber;    // so many independent ones give the same uncertainty
    double degreesOfFreedom = noNumber; // effective ones, of the uncertainty
    double drift = noNumber;            // per hour
    double driftUncertainty = noNumber; // standard uncertainty
    bool drifts = false;                // at all, with 99.9 % confidence
};

struct PoseFigures {
    bool hasMean = false; // else there are rows, but so far apart that they have none
    Matrix mean{};
    std::array<AxisFigures, 3> axes;
    // Fewer than 10 rows, or than about 40 correlation lengths where rows are correlated: the
    // uncertainties may be too small.
    bool lowerBound = true;
};

PoseFigures figuresOf(const PoseRows& rows, bool localFrame);

} // namespace kiv::host
