#pragma once

#include <cstdint>
#include <string>

#include "host/Cli.h"

namespace kiv::host {

struct SimulateOptions {
    std::string parameterFile;
    std::string readings = "-";
    long rows = 2000;
    std::uint64_t seed = 1;
};

// Writes readings of the sensor along a slow turn, with the true angles beside them. An exit code.
int simulateReadings(const SimulateOptions& options, const Streams& streams);

} // namespace kiv::host
