#pragma once

#include "host/base/Cli.h"
#include "host/run/ReadingsOptions.h"

namespace kiv::host {

struct ReportOptions : ReadingsOptions {
    std::string title;       // of the page; empty: one of the sensor's
    std::string lengthUnit;  // of the readings, where it is known
    std::string commandLine; // as the user gave it
};

// Runs readings and shows what came of them on one HTML page. An exit code.
int reportReadings(const ReportOptions& options, const Streams& streams);

} // namespace kiv::host
