#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "KIVInterface/CKiv.h"
#include "params/BlockTable.h"

namespace kiv {

// A number of a parameter file that angles depend on, and that a calibration may find. Its name is
// block and value as kiv info --json prints them, joined by a point: angle_offset.azimuth_deg,
// scale_factor.0, counted from 0 as are a table's rows, whose correction or tilt it is. A small
// turn of the machine matrix about an axis of the instrument has the name of a value, turn_z_deg,
// and so has a form that changes all rows of a table, sine_1_deg.
class CalibratedParameter {
public:
    // Nothing for another name, or a row that the sensor's table does not have.
    static std::optional<CalibratedParameter> named(std::string_view name, const CKiv& sensor);

    // Moves it in a sensor and in its model, by the file's unit. Gives by how much: single
    // precision has steps.
    double move(CKiv& sensor, double by) const;

    // A move that is far above those of the readings, too.
    double leastMove() const;

    bool operator==(const CalibratedParameter&) const = default;

private:
    double moveIn(std::vector<float>& values, const std::vector<float>& at, double by) const;
    double moveEncoder(CKiv& sensor, int (CKiv::*set)(int, const float*), const float* table,
                       int count, double by) const;
    double moveTilt(CKiv& sensor, int (CKiv::*set)(int, const float*, const double*),
                    const float* table, const double* curve, int count, double by) const;

    Block block;
    std::size_t value; // which of the block's
    bool form = false; // of a table, not a row
};

} // namespace kiv
