#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/base/Sha256.h"

namespace kiv::host {

// What is known of a table once its rows have been read.
struct TableFacts {
    std::string name; // as messages show it
    Sha256 digest;
    bool readToEnd = false;
};

// What a run was made from.
struct InputFacts {
    std::string deviceOwner;
    Sha256 parameterFile;
    std::size_t parameterWarnings = 0;
    std::vector<TableFacts> readings;
    Sha256 reference; // of a table that has it alone
};

} // namespace kiv::host
