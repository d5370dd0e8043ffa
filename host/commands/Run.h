#pragma once

#include "host/base/Cli.h"
#include "host/rows/RowWriter.h"
#include "host/run/ReadingsOptions.h"

namespace kiv::host {

struct RunOptions : ReadingsOptions {
    bool stopOnBad = false; // end behind the first row that is refused or has no orientation
    std::string results;    // the names of those that are wanted; empty: all
    bool source = false;    // columns with the table and the line of each row
    RowFormat rowFormat = RowFormat::csv;
};

// Computes a result row for every row of readings. An exit code.
int runReadings(const RunOptions& options, const Streams& streams);

} // namespace kiv::host
