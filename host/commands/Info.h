#pragma once

#include <string>

#include "host/base/Cli.h"

namespace kiv::host {

struct InfoOptions {
    std::string file;
    bool json = false;
};

// Shows a parameter file's values with names and units, in the file's own units. An exit code.
int showFile(const InfoOptions& options, const Streams& streams);

} // namespace kiv::host
