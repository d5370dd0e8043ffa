#pragma once

#include "host/Cli.h"
#include "host/tables/ReadingsOptions.h"

namespace kiv::host {

// Runs readings and shows what came of them on one HTML page. An exit code.
int reportReadings(const ReadingsOptions& options, const Streams& streams);

} // namespace kiv::host
