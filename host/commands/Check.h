#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/base/Cli.h"
#include "host/rows/TableFormat.h"
#include "uncertainty/Uncertainties.h"

namespace kiv::host {

struct CheckOptions {
    std::vector<std::string> files; // parameter files, each with tables behind it
    TableFormat format;             // of the tables
    // Standard uncertainties of the readings, where they are known: files, or numbers.
    std::vector<std::string> uncertaintyFiles;
    std::optional<Uncertainties> uncertainties;
    bool strict = false; // warnings count like errors
    bool json = false;   // one object instead of messages and totals
};

// Reports every finding of the files, with totals for each. An exit code.
int checkFiles(const CheckOptions& options, const Streams& streams);

} // namespace kiv::host
