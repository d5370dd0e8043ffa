#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/Cli.h"
#include "host/rows/TableFormat.h"

namespace kiv::host {

// The numbers of a row: first axis of the tilt frame, direction, two angles and two tilts in
// degrees.
inline constexpr std::array<std::string_view, 10> homeColumns{
    "frame_x",     "frame_y",     "frame_z",     "direction_x", "direction_y",
    "direction_z", "angle_h_deg", "angle_v_deg", "tilt_x_deg",  "tilt_y_deg"};

// Either a table or the values of one solution.
struct HomeOptions {
    std::string table; // a CSV file, - for standard input; empty: the values below
    std::string results = "-";
    TableFormat format;
    std::vector<double> frameX;    // x, y, z
    std::vector<double> direction; // x, y, z
    std::vector<double> angles;    // horizontal, vertical, degrees
    std::vector<double> tilt;      // about x, about y, degrees
};

// Solves for home angles. An exit code.
int solveHomeAngles(const HomeOptions& options, const Streams& streams);

} // namespace kiv::host
