#include "host/calibration/Prediction.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "params/CalibratedValues.h"
#include "support/Principles.h"
#include "support/ZelUtil.h"

namespace kiv::host {

namespace {

using Rotation = PoseFrame::Rotation;

Rotation product(const Rotation& a, const Rotation& b) {
    Rotation c;
    MatrixMultiply(a.data(), b.data(), 3, 3, 3, c.data());
    return c;
}

Rotation aboutZ(double degrees) {
    Rotation r;
    rotation_z(r.data(), degrees * degToRad);
    return r;
}

} // namespace

// By Rx Ry Rz of the three turns, degrees.
Rotation turned(const Rotation& rotation, const double* turns) {
    Rotation x, y;
    rotation_x(x.data(), turns[0] * degToRad);
    rotation_y(y.data(), turns[1] * degToRad);
    return product(product(product(x, y), aboutZ(turns[2])), rotation);
}

std::size_t equationsOf(int mountMode) {
    return traitsOf(principleOf(mountMode)).levelX ? 4 : 3;
}

double azimuthPeriodOf(int mountMode, const SensorValues& values) {
    const bool gained = traitsOf(principleOf(mountMode)).readingGains;
    return 360 / (gained ? std::abs(values.at(Block::scaleFactor, 4)) : 1);
}

void PoseFrame::listUnknowns(const Observation& row, std::vector<std::size_t>& list) const {
    list.clear();
    if (kind == Poses::relative)
        for (std::size_t i = 0; i < unknownCount; ++i)
            list.push_back(i);
    if (kind != Poses::stations)
        return;
    if (const auto found = placements.find(row.placement); found != placements.end())
        for (std::size_t i = 0; i < 3; ++i)
            list.push_back(found->second.unknown + i);
    if (const auto found = stations.find(row.station);
        found != stations.end() && !found->second.held)
        list.push_back(found->second.unknown);
}

Prediction::Prediction(const PoseFrame& poseFrame, const SensorValues& sensorValues,
                       std::vector<double> poseUnknowns)
    : frame(poseFrame), values(sensorValues), unknown(std::move(poseUnknowns)),
      mounting(values.mounting(poseFrame.mode)), left{1, 0, 0, 0, 1, 0, 0, 0, 1}, right(left) {
    if (frame.kind == Poses::relative) {
        left = turned(frame.frame, unknown.data());
        right = turned(frame.mounting, unknown.data() + 3);
    } else if (!reportsOwnMatrix(frame.mode)) {
        left =
            turned(frame.fileMatrix, &values.of[static_cast<std::size_t>(Block::machineMatrix)][0]);
    }
    azimuthPeriod = azimuthPeriodOf(frame.mode, values);
}

bool Prediction::poseOf(const Observation& row, simulator::Pose& pose) const {
    std::copy_n(row.vector, 3, pose.position);
    if (frame.kind != Poses::stations) {
        MatrixMultiply(left.data(), row.rotation, 3, 3, 3, pose.rotation);
        if (frame.kind == Poses::relative) {
            double turnedByFrame[9];
            std::copy_n(pose.rotation, 9, turnedByFrame);
            MatrixMultiply(turnedByFrame, right.data(), 3, 3, 3, pose.rotation);
        }
        return true;
    }
    const auto placement = frame.placements.find(row.placement);
    const auto station = frame.stations.find(row.station);
    if (placement == frame.placements.end() || station == frame.stations.end())
        return false;
    const double heading =
        station->second.heading + (station->second.held ? 0 : unknown[station->second.unknown]);
    const Rotation all =
        product(aboutZ(heading),
                turned(placement->second.rotation, unknown.data() + placement->second.unknown));
    std::copy_n(all.data(), 9, pose.rotation);
    return true;
}

double Prediction::gain(std::size_t level, const Observation& row) const {
    return values.at(Block::thermalFactor, 2 * level) * row.raw.temperature
           + values.at(Block::thermalFactor, 2 * level + 1);
}

double Prediction::changeOf(Block table, double at) const {
    double change = 0;
    for (std::size_t form = 0; form < calibratedNamesOf(table).size(); ++form)
        if (const double size = values.at(table, form); size != 0)
            change += size * tableForm(table, form, at);
    return change;
}

bool Prediction::residual(const Observation& row, const simulator::Pose& pose,
                          Residual& out) const {
    simulator::CorrectedReadings predicted;
    if (!simulator::readingsOf(mounting, pose, predicted))
        return false;
    const auto level = [&](std::size_t i, double curve) {
        const Block table = i == 0 ? Block::tiltXCalibration : Block::tiltYCalibration;
        return (curve + changeOf(table, curve) - values.at(Block::tiltOffset, i)) * gain(i, row);
    };
    const double azimuth = row.azimuth + changeOf(Block::azCalibration, row.raw.azimuthRaw);
    const double elevation = row.elevation + changeOf(Block::elCalibration, row.raw.elevationRaw);
    out = {std::remainder(azimuth - predicted.azimuth, azimuthPeriod),
           std::remainder(elevation - predicted.elevation, 360),
           level(1, row.curveY) - predicted.levelY, level(0, row.curveX) - predicted.levelX};
    return std::isfinite(out[0] + out[1] + out[2]);
}

Prediction::LevelSlopes Prediction::levelSlopes(const Observation& row) const {
    const auto byTemperature = [&](std::size_t i, double curve) {
        return (curve - values.at(Block::tiltOffset, i)) * values.at(Block::thermalFactor, 2 * i);
    };
    return {row.curveYSlope * gain(1, row), byTemperature(1, row.curveY),
            row.curveXSlope * gain(0, row), byTemperature(0, row.curveX)};
}

} // namespace kiv::host
