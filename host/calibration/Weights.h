#pragma once

#include "host/calibration/Prediction.h"
#include "uncertainty/Uncertainties.h"

namespace kiv::host {

// Standard uncertainties of what a row holds.
struct RowUncertainties {
    Uncertainties readings;
    double pose = 0; // of the given rotation about each axis, degrees
};

// What makes a row's equations independent of each other and of the deviation 1: the inverse of the
// lower triangular root of their covariance, by the law of propagation (JCGM 102, 6.2) through the
// tables and the geometry.
class Whitening {
public:
    // False where the line of sight does not reach a pose close by. Without is what has no
    // uncertainty then, or null.
    bool set(const Prediction& prediction, const Observation& row, const RowUncertainties& given,
             std::size_t equations);
    const char* without() const { return bare; }

    void apply(Residual& residual) const;

private:
    std::size_t count = 0;
    double root[mostEquations][mostEquations]{}; // lower triangle
    const char* bare = nullptr;
};

} // namespace kiv::host
