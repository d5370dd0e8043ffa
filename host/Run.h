#pragma once

#include <string>

#include "host/Cli.h"

namespace kiv::host {

struct RunOptions {
    std::string parameterFile;
    std::string readings;
    std::string results = "-";
};

// Computes a result row for every row of readings. An exit code.
int runReadings(const RunOptions& options, const Streams& streams);

} // namespace kiv::host
