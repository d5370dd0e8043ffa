#pragma once

#include <cstdint>

#include "simulator/Pose.h"
#include "simulator/Random.h"

namespace kiv::simulator {

// Seeded poses of a sensor anywhere about the instrument; the same seed gives the same poses on
// every platform.
class RandomPoses {
public:
    // Upright within mostTilt degrees about each horizontal axis, or inverted; measured at
    // elevations between the two limits, in degrees.
    struct Range {
        double mostTilt = 5;
        double lowest = -20;
        double highest = 20;
        bool inverted = false;
    };

    RandomPoses(std::uint64_t seed, const Range& poseRange) : random(seed), range(poseRange) {}

    Pose next();
    double uniform(double low, double high) { return random.uniform(low, high); }

private:
    Random random;
    Range range;
};

} // namespace kiv::simulator
