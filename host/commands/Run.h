#pragma once

#include <string>

#include "host/Cli.h"

namespace kiv::host {

struct RunOptions {
    std::string parameterFile;
    std::string readings;
    std::string results = "-";
    bool localFrame = false; // angles of the motion since the reference, not in machine coordinates
    bool stopOnBad = false;  // end behind the first row that is refused or has no orientation
    bool quiet = false;      // no progress, no summary
};

// Computes a result row for every row of readings. An exit code.
int runReadings(const RunOptions& options, const Streams& streams);

} // namespace kiv::host
