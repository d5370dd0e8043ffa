#pragma once

#include <string>

#include "host/Cli.h"

namespace kiv::host {

struct ReportOptions {
    std::string parameterFile;
    std::string readings;
    std::string page = "-";
    bool localFrame = false; // as of a run
    bool quiet = false;
};

// Runs readings and shows what came of them on one HTML page. An exit code.
int reportReadings(const ReportOptions& options, const Streams& streams);

} // namespace kiv::host
