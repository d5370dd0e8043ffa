#pragma once

#include <string>
#include <vector>

#include "host/base/Cli.h"
#include "host/rows/TableFormat.h"

namespace kiv::host {

struct CheckOptions {
    std::vector<std::string> files; // parameter files, each with tables behind it
    TableFormat format;             // of the tables
    bool strict = false;            // warnings count like errors
    bool json = false;              // one object instead of messages and totals
};

// Reports every finding of the files, with totals for each. An exit code.
int checkFiles(const CheckOptions& options, const Streams& streams);

} // namespace kiv::host
