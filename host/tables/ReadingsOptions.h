#pragma once

#include <optional>
#include <string>

#include "host/tables/TableFormat.h"

namespace kiv::host {

struct ReadingsOptions {
    std::string parameterFile;
    std::string readings; // a table, - for standard input
    std::string output = "-";
    bool localFrame = false; // angles of the motion since the reference, not in machine coordinates
    TableFormat format;
    std::string summary;             // a file for the summary, where one is wanted
    std::optional<double> tolerance; // of every angle against its true one, degrees
    bool quiet = false;              // no progress, of the summary the counts alone
};

} // namespace kiv::host
