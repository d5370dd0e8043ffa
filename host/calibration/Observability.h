#pragma once

#include <optional>
#include <string>
#include <vector>

#include <Eigen/Core>

#include "host/calibration/Triangle.h"

namespace kiv::host {

// What the equations of a fit tell of its unknowns: by a singular value decomposition of the
// triangle, its columns scaled to length 1. Source: Å. Björck, Numerical Methods for Least Squares
// Problems, 2.7.
struct Observability {
    explicit Observability(const Triangle& triangle);

    std::vector<double> singularValues; // of the scaled triangle, the largest first
    // Of the unknowns: how much each has to change for no equation to see it; empty where there is
    // no such change.
    std::vector<double> unseen;
    // The rest is there where unseen is empty.
    Eigen::VectorXd u;           // standard uncertainties
    Eigen::MatrixXd correlation; // of all unknowns
};

// A change that no equation sees in words, as "1 a and -0.5 b"; the unknowns behind those with a
// name are turns of poses. Empty where it is one of these alone.
std::string combinationText(const std::vector<double>& unseen,
                            const std::vector<std::string>& names);

} // namespace kiv::host
