#pragma once

#include <string>
#include <vector>

#include "host/Cli.h"

namespace kiv::host {

// Either a table or the values of one solution.
struct HomeOptions {
    std::string table; // a CSV file, - for standard input; empty: the values below
    std::string results = "-";
    std::vector<double> frameX;    // x, y, z
    std::vector<double> direction; // x, y, z
    std::vector<double> angles;    // horizontal, vertical, degrees
    std::vector<double> tilt;      // about x, about y, degrees
};

// Solves for home angles. An exit code.
int solveHomeAngles(const HomeOptions& options, const Streams& streams);

} // namespace kiv::host
