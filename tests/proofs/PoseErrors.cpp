#include "tests/proofs/PoseErrors.h"

#include <algorithm>
#include <stdexcept>

#include "KIVInterface/CKiv.h"
#include "simulator/TypicalMounting.h"
#include "support/ZelUtil.h"
#include "tests/ModelCases.h"

namespace kiv::docs {

namespace {

using simulator::CorrectedReadings;
using simulator::Mounting;
using simulator::Pose;
using simulator::radians;
using simulator::RandomPoses;

constexpr std::size_t posesEach = 4000;
constexpr std::uint64_t seed = 20;

Errors errorsOf(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return {values.at(values.size() / 2), values.back()};
}

// Degrees.
double errorOf(CKivModel& model, const Mounting& mounting, const Pose& pose,
               const CorrectedReadings& readings) {
    test::Matrix m = test::measurementOf(pose, readings);
    if (!model.CalTranxMatrix(m.data(), mounting.encoderOffset[0], mounting.encoderOffset[1], 3,
                              false, false))
        throw std::runtime_error("no orientation in mode " + std::to_string(mounting.mode));
    return test::degreesApart(m.data(), pose.rotation);
}

} // namespace

Errors modelErrors(const Case& which, const Range& range) {
    std::vector<double> errors;
    for (const int mode : which.modes) {
        Mounting mounting = simulator::typicalMounting(mode);
        if (which.mount)
            which.mount(mounting);
        const auto model = test::modelOf(mounting);
        RandomPoses poses(
            seed, {range.mostTilt, -range.steepest, range.steepest, simulator::invertedIn(mode)});
        for (std::size_t left = posesEach / which.modes.size(); left > 0;) {
            Pose pose = poses.next();
            if (which.place)
                which.place(pose, poses);
            CorrectedReadings readings;
            if (!simulator::readingsOf(mounting, pose, readings))
                throw std::runtime_error("a pose out of the sensor's reach");
            if (which.admit && !which.admit(pose, readings))
                continue;
            if (which.disturb)
                which.disturb(readings);
            errors.push_back(errorOf(*model, mounting, pose, readings));
            --left;
        }
    }
    return errorsOf(std::move(errors));
}

HomeErrors homeErrors(const Range& range) {
    std::vector<double> horizontal;
    std::vector<double> vertical;
    RandomPoses random(seed, {});
    CKiv sensor;
    while (horizontal.size() < posesEach) {
        const double tiltX = random.uniform(-range.mostTilt, range.mostTilt);
        const double tiltY = random.uniform(-range.mostTilt, range.mostTilt);
        const double h = random.uniform(-180, 180);
        const double azimuth = random.uniform(-180, 180) * radians;
        const double elevation = random.uniform(-range.steepest, range.steepest) * radians;
        double direction[3] = {std::cos(elevation) * std::cos(azimuth),
                               std::cos(elevation) * std::sin(azimuth), std::sin(elevation)};

        // The vertical of Rz(azimuth) * Ry(tiltY) * Rx(tiltX), and the first axis h to the right of
        // the direction about it.
        double sensorFrame[9];
        simulator::rotationFromYawPitchRoll(azimuth / radians, tiltY, tiltX, sensorFrame);
        double up[3] = {sensorFrame[2], sensorFrame[5], sensorFrame[8]};
        double left[3];
        double forward[3];
        double frameX[3];
        CrossMultiply(up, direction, left);
        CrossMultiply(left, up, forward);
        mlaRotateAroundAxis(forward, -h, up, frameX);
        const double rise = direction[0] * up[0] + direction[1] * up[1] + direction[2] * up[2];
        const double v = std::atan2(rise, std::hypot(left[0], left[1], left[2])) / radians;

        double homeH = 0;
        double homeV = 0;
        if (!sensor.Calc_HV0({frameX[0], frameX[1], frameX[2]},
                             {direction[0], direction[1], direction[2]}, {30, 40},
                             {tiltX, tiltY, 0}, &homeH, &homeV))
            throw std::runtime_error("no home angles");
        horizontal.push_back(std::abs(std::remainder(homeH + h - 30, 360)));
        vertical.push_back(std::abs(homeV + v - 40));
    }
    return {errorsOf(std::move(horizontal)), errorsOf(std::move(vertical))};
}

} // namespace kiv::docs
