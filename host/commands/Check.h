#pragma once

#include <string>
#include <vector>

#include "host/base/Cli.h"

namespace kiv::host {

struct CheckOptions {
    std::vector<std::string> files;
    bool strict = false; // warnings count like errors
    bool json = false;   // one object instead of messages and totals
};

// Reports every finding of the files, and a line of totals for each. An exit code.
int checkFiles(const CheckOptions& options, const Streams& streams);

} // namespace kiv::host
