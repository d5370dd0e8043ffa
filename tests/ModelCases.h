#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <string>

#include "models/ModelFactory.h"
#include "simulator/Mounting.h"

namespace kiv::test {

using Matrix = std::array<double, 9>;

// The model of a mount mode with a mounting's values, as the sensor object sets it up.
inline std::unique_ptr<CKivModel> modelOf(const simulator::Mounting& m) {
    auto model = createModel(m.mode);
    simulator::SingleValues singles(m);
    model->UpdateSFactors(singles.scaleFactors, 8);
    model->UpdateQVCParameters(singles.qvcParameters, 6);
    model->UpdateLevel1Parameters(singles.level1Parameters, 7);
    model->UpdateLevel2Parameters(singles.level2Parameters, 7);
    return model;
}

inline Matrix measurementOf(const simulator::Pose& pose,
                            const simulator::CorrectedReadings& readings) {
    return {pose.position[0],
            pose.position[1],
            pose.position[2],
            readings.levelX,
            readings.levelY,
            readings.azimuth,
            readings.elevation,
            0,
            0};
}

// The angle between two rotations, degrees.
inline double degreesApart(const double* a, const double* b) {
    double sum = 0;
    for (int i = 0; i < 9; ++i)
        sum += (a[i] - b[i]) * (a[i] - b[i]);
    return 2 * std::asin(std::min(1.0, std::sqrt(sum / 8))) / simulator::radians;
}

} // namespace kiv::test
