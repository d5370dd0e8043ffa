#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "host/calibration/Observation.h"
#include "host/calibration/Parameters.h"
#include "simulator/Pose.h"

namespace kiv::host {

// What readings are taken for besides the parameters: how poses are given, and what of them is
// unknown. Every unknown is a turn in degrees.
struct PoseFrame {
    using Rotation = std::array<double, 9>;

    Poses kind = Poses::known;
    int mode = 4;
    Rotation fileMatrix{1, 0, 0, 0, 1, 0, 0, 0, 1}; // of the file, from machine to instrument

    // Relative poses: sensor in the instrument's frame = frame * given * mounting, to begin with.
    Rotation frame = fileMatrix;
    Rotation mounting = fileMatrix;

    // Stations: where the sensor stands in a placement, and the heading of a station, to begin
    // with.
    struct Placement {
        Rotation rotation{};
        std::size_t unknown = 0; // three turns from here on
    };
    struct Station {
        double heading = 0; // degrees
        bool held = false;  // one of those that placements tie together
        std::size_t unknown = 0;
    };
    std::map<double, Placement> placements;
    std::map<double, Station> stations;

    std::size_t unknowns() const { return unknownCount; }
    // The unknowns on which a row's pose depends.
    void listUnknowns(const Observation& row, std::vector<std::size_t>& list) const;

    std::size_t unknownCount = 0;
};

constexpr std::size_t mostEquations = 4; // of a row: azimuth, elevation, level Y, level X
using Residual = std::array<double, mostEquations>;

// A sensor with certain values, in certain poses, as its readings should show them: the geometry of
// kiv simulate.
class Prediction {
public:
    // The values and unknowns are copied; the frame stays.
    Prediction(const PoseFrame& poseFrame, const SensorValues& sensorValues,
               std::vector<double> poseUnknowns);

    // From the row's given pose and the unknowns. False where a station or a placement is not
    // known.
    bool poseOf(const Observation& row, simulator::Pose& pose) const;

    // The corrected readings less those of the geometry, degrees. False where the line of sight
    // does not reach the pose.
    bool residual(const Observation& row, const simulator::Pose& pose, Residual& out) const;

    // Of the corrected levels by the raw reading and by the temperature.
    struct LevelSlopes {
        double y, yTemperature, x, xTemperature;
    };
    LevelSlopes levelSlopes(const Observation& row) const;

private:
    double gain(std::size_t level, const Observation& row) const;
    double changeOf(Block table, double at) const; // degrees

    const PoseFrame& frame;
    SensorValues values;
    std::vector<double> unknown;
    simulator::Mounting mounting;
    PoseFrame::Rotation left;  // of the given rotation
    PoseFrame::Rotation right; // of the given rotation, with relative poses
    double azimuthPeriod;      // degrees
};

// How many equations a row gives in a mount mode.
std::size_t equationsOf(int mountMode);

// By how much an azimuth reading may differ at the same pose, degrees.
double azimuthPeriodOf(int mountMode, const SensorValues& values);

PoseFrame::Rotation turned(const PoseFrame::Rotation& rotation, const double* turns);

} // namespace kiv::host
