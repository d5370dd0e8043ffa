#pragma once

#include <cstdint>

#include "simulator/Pose.h"
#include "simulator/RandomPoses.h"

namespace kiv::simulator {

enum class Motion {
    still,  // one pose
    turn,   // walks along an arc about the instrument, rises and sinks, turns about its own
            // vertical, and sways
    swing,  // stays in place and swings about the measured point
    random, // a new pose anywhere about the instrument each time
};

// The same seed gives the same poses on every platform. Pitch and roll stay each within mostTilt
// degrees of the upright, or inverted, sensor; the line of sight rises by 3 to 9 degrees.
class Trajectory {
public:
    Trajectory(Motion motion, std::uint64_t seed, double mostTilt, bool inverted);

    // The pose at a part of the way, from 0 to 1; of a random one, the next.
    Pose at(double part);

private:
    Motion motion;
    double mostTilt; // degrees
    double roll0;    // degrees
    double phase[6]; // rad
    RandomPoses anywhere;
};

} // namespace kiv::simulator
