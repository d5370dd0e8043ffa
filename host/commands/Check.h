#pragma once

#include <string>
#include <vector>

#include "host/Cli.h"

namespace kiv::host {

struct CheckOptions {
    std::vector<std::string> files;
    bool strict = false; // warnings count like errors
};

// Reports every finding of the files, and a line of totals for each. An exit code.
int checkFiles(const CheckOptions& options, const Streams& streams);

} // namespace kiv::host
