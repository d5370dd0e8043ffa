#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace kiv::host {

// A column that is written for each row of readings, behind those that are carried over.
struct ResultColumn {
    std::string_view name;
    std::string_view unit;     // empty: none
    bool mayBeEmpty;           // a cell, where nothing was computed
    std::string_view sentence; // of docs/tables.md, or its start; empty: that of the column before
};

// The columns in the order in which they are written. m<row><column> is the result matrix. The last
// nine are there where they are asked for: uncertainties, in the local frame those of the
// reference, and those of a calibration.
inline constexpr std::array<ResultColumn, 33> resultColumns{{
    {"state", "", false, "what became of the row;"},
    {"reason", "", true, "why the row has no angles;"},
    {"azimuth_corrected_deg", "degrees", true, "corrected encoder angles, degrees"},
    {"elevation_corrected_deg", "degrees", true, ""},
    {"level_x_corrected_deg", "degrees", true, "corrected tilts, degrees"},
    {"level_y_corrected_deg", "degrees", true, ""},
    {"rx_deg", "degrees", true, "rotations about x, y and z, degrees."},
    {"ry_deg", "degrees", true, ""},
    {"rz_deg", "degrees", true, ""},
    {"qvc_x", "length unit", true, "the QVC vector of modes 7 and above, length unit"},
    {"qvc_y", "length unit", true, ""},
    {"qvc_z", "length unit", true, ""},
    {"m00", "", true, "the rotation matrix, row by row, no unit; modes 1 to 6 only"},
    {"m01", "", true, ""},
    {"m02", "", true, ""},
    {"m10", "", true, ""},
    {"m11", "", true, ""},
    {"m12", "", true, ""},
    {"m20", "", true, ""},
    {"m21", "", true, ""},
    {"m22", "", true, ""},
    {"code", "", true, "status code of the library for the matrix, no unit"},
    {"trust", "", true, "how far to trust the row;"},
    {"model_error_deg", "degrees", true, "bound of what the model itself adds"},
    {"u_rx_deg", "degrees", true, "standard uncertainties of the angles"},
    {"u_ry_deg", "degrees", true, ""},
    {"u_rz_deg", "degrees", true, ""},
    {"u_reference_rx_deg", "degrees", true,
     "local frame: part of the reference's readings, degrees"},
    {"u_reference_ry_deg", "degrees", true, ""},
    {"u_reference_rz_deg", "degrees", true, ""},
    {"u_calibration_rx_deg", "degrees", true, "part of the calibrated parameters, degrees"},
    {"u_calibration_ry_deg", "degrees", true, ""},
    {"u_calibration_rz_deg", "degrees", true, ""},
}};

// The place of a column; behind the last one where there is none of this name.
constexpr std::size_t resultColumnAt(std::string_view name) {
    std::size_t place = 0;
    while (place < resultColumns.size() && resultColumns[place].name != name)
        ++place;
    return place;
}

// The columns in front of them that tell where a row of readings stands, where they are asked for.
inline constexpr std::array<std::string_view, 2> sourceColumns{"table", "line"};

} // namespace kiv::host
