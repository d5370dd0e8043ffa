#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/base/Cli.h"
#include "host/rows/RowWriter.h"
#include "host/run/ReadingsOptions.h"

namespace kiv::host {

struct CompareOptions {
    std::vector<std::string> tables;     // two of results, or with parameters the readings
    std::vector<std::string> parameters; // an old file and a new one
    std::string join = "line";           // line, time, or a column's name
    std::string output;                  // rows of differences, where they are wanted
    RowFormat rowFormat = RowFormat::csv;
    std::string summary;
    std::string report; // a page
    std::string commandLine;
    std::optional<double> tolerance; // of the angle of each rotation, degrees
    ReadingsOptions readings;        // how tables are read, and how readings are run
};

// Compares two tables of results, or a recording's results under two parameter files. An exit code.
int compareResults(const CompareOptions& options, const Streams& streams);

} // namespace kiv::host
