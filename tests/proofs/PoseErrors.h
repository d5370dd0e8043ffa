#pragma once

#include <functional>
#include <string>
#include <vector>

#include "simulator/Mounting.h"
#include "simulator/RandomPoses.h"

// How far what the library computes is from the pose that gave the readings.
namespace kiv::docs {

struct Errors {
    double median;  // degrees; of an even number of errors the upper one
    double largest; // degrees
};

// What is measured: poses for one or several mount modes in turn, as they come or changed, and the
// readings that they give.
struct Case {
    std::vector<int> modes;
    std::function<void(simulator::Mounting&)> mount = {};
    std::function<void(simulator::Pose&, simulator::RandomPoses&)> place = {};
    std::function<bool(const simulator::Pose&, const simulator::CorrectedReadings&)> admit = {};
    std::function<void(simulator::CorrectedReadings&)> disturb = {};
    float limit = 0; // of the levels, in place of the file's, degrees; 0: the file's
};

struct Range {
    double mostTilt; // degrees, about each horizontal axis
    double steepest; // degrees, of the measured direction above and below the horizon
};

// Double precision into the model, the rotation matrix out. Throws where the model has no
// orientation.
Errors modelErrors(const Case& which, const Range& range);

// Home angles of a sensor whose first axis is square to its vertical, against the angle h from that
// axis to the measured direction about the vertical, left positive, and the direction's elevation v
// above the sensor's horizon: homeH + h - angles.x and homeV + v - angles.y.
struct HomeErrors {
    Errors horizontal;
    Errors vertical;
};

HomeErrors homeErrors(const Range& range);

} // namespace kiv::docs
