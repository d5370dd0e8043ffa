#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "KIVInterface/CKiv.h"
#include "uncertainty/CalibratedParameter.h"

namespace kiv {

// Why a covariance cannot be taken; row and column say where, from 0.
struct CalibrationFault {
    enum Kind : unsigned char {
        none,
        name,         // no parameter of this name; row
        again,        // a name that stood in front of it; row
        notFinite,    // an element, or a variance below 0
        notSymmetric, // an element, beyond rounding
        notPossible,  // parameters cannot vary so together: the matrix is not positive semidefinite
    };
    Kind kind = none;
    std::size_t row = 0;
    std::size_t column = 0;
};

// Parameters of a sensor that a calibration found, and the covariance of what they are off by.
struct Calibration {
    std::vector<CalibratedParameter> parameters;
    std::vector<double> covariance; // row-major, in the parameters' units

    // The covariance has a row and a column for each name. What is not there is exactly known.
    static CalibrationFault make(const CKiv& sensor, std::span<const std::string_view> names,
                                 const double* covariance, Calibration& out);
};

} // namespace kiv
