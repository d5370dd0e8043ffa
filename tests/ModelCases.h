#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <string>

#include "KIVInterface/CKivDualLevel.h"
#include "KIVInterface/CKivPendulum.h"
#include "KIVInterface/CKivPolarizer.h"
#include "KIVInterface/CKivThreeVec.h"
#include "KIVInterface/CKivThreeVec2Level.h"
#include "simulator/Mounting.h"

namespace kiv::test {

using Matrix = std::array<double, 9>;

// The model of a mount mode with a mounting's values, as the sensor object sets it up.
template <typename Model>
std::unique_ptr<CKivModel> withValues(simulator::Mounting m) {
    auto model = std::make_unique<Model>();
    model->set_iMMode(m.mode % 2);
    model->UpdateSFactors(m.scaleFactors, 8);
    model->UpdateQVCParameters(m.qvcParameters, 6);
    model->UpdateLevel1Parameters(m.level1Parameters, 7);
    model->UpdateLevel2Parameters(m.level2Parameters, 7);
    return model;
}

inline std::unique_ptr<CKivModel> modelOf(const simulator::Mounting& m) {
    switch (m.mode) {
    case 1:
    case 2:
        return withValues<CKivDualLevel>(m);
    case 5:
    case 6:
        return withValues<CKivPolarizer>(m);
    case 7:
    case 8:
        return withValues<CKivThreeVec>(m);
    case 9:
    case 10:
        return withValues<CKivThreeVec2Level>(m);
    default:
        return withValues<CKivPendulum>(m);
    }
}

inline Matrix measurementOf(const simulator::Pose& pose, const simulator::Readings& readings) {
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
