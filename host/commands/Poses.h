#pragma once

#include "host/base/Cli.h"
#include "host/poses/PoseGathering.h"
#include "host/rows/RowWriter.h"
#include "host/run/ReadingsOptions.h"

namespace kiv::host {

struct PosesOptions : ReadingsOptions {
    Grouping grouping;
    RowFormat rowFormat = RowFormat::csv;
    std::string report;      // an HTML page; empty: none
    std::string commandLine; // as the user gave it
    std::string results;     // a table of results to take in place of readings
};

// Makes one row of all rows of a pose, of readings or of results. An exit code.
int findPoses(const PosesOptions& options, const Streams& streams);

} // namespace kiv::host
