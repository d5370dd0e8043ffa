#pragma once

#include <optional>
#include <vector>

#include <Eigen/Core>

#include "host/calibration/Fit.h"
#include "host/rows/TimeStamp.h"

namespace kiv::host {

// A row for the charts of a report: where it was measured, and what is left of its readings.
struct ResidualSample {
    double line;
    std::optional<TimeStamp> time;
    double azimuth, elevation, levelY; // degrees
    double temperature;
    double tilt;       // of the sensor's z axis from the vertical, degrees
    Residual residual; // degrees
    Residual whitened; // independent of each other, of deviation 1
    bool heldOut;
};

// Of all rows that are not rejected, evenly chosen so that there are no more than a few hundred.
// Nothing after an interrupt or a message.
std::optional<std::vector<ResidualSample>>
sampleResiduals(CalibrationRows& rows, const FitModel& model, const Eigen::VectorXd& x);

} // namespace kiv::host
