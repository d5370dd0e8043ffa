#pragma once

#include <cstdint>

#include "simulator/Pose.h"

namespace kiv::simulator {

// A slow turn: the sensor walks along an arc about the instrument, rises and sinks, turns about its
// own vertical and sways by at most mostTilt degrees about its other two axes. The same seed gives
// the same poses on every platform.
class SlowTurn {
public:
    SlowTurn(std::uint64_t seed, double mostTilt, bool inverted);

    // The pose at a part of the way, from 0 to 1.
    Pose at(double part) const;

private:
    double mostTilt; // degrees
    double roll0;    // degrees
    double phase[6]; // rad
};

} // namespace kiv::simulator
