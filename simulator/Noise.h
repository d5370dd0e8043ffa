#pragma once

#include "KIVInterface/Records.h"
#include "simulator/Random.h"

namespace kiv::simulator {

// Standard deviations of independent Gaussian noise.
struct Noise {
    double vector = 0;  // of each component, length unit
    double encoder = 0; // of each raw encoder angle, degrees
    double level = 0;   // of each raw tilt reading, degrees

    void addTo(KIV_RAWINFO& raw, Random& random) const;
};

} // namespace kiv::simulator
