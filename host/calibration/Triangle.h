#pragma once

#include <cstddef>

#include <Eigen/Core>

namespace kiv::host {

// The linear equations of a least-squares fit, block after block, as the triangle of their QR
// decomposition with the right-hand sides as a last column: what is kept grows with the unknowns
// alone. Source: Å. Björck, Numerical Methods for Least Squares Problems, 6.3.
class Triangle {
public:
    explicit Triangle(Eigen::Index unknownCount)
        : r(Eigen::MatrixXd::Zero(unknownCount + 1, unknownCount + 1)) {}

    // Rows of coefficients and a right-hand side.
    void add(const Eigen::Ref<const Eigen::MatrixXd>& rows);

    Eigen::Index unknowns() const { return r.cols() - 1; }
    auto coefficients() const { return r.topLeftCorner(unknowns(), unknowns()); }
    auto rightSide() const { return r.topRightCorner(unknowns(), 1); }
    // The sum of squares that no choice of the unknowns takes away.
    double rest() const { return r(unknowns(), unknowns()) * r(unknowns(), unknowns()); }
    // The sum of squares with all unknowns 0.
    double sum() const { return r.col(unknowns()).squaredNorm(); }

    const Eigen::MatrixXd& whole() const { return r; }

private:
    Eigen::MatrixXd r; // upper triangle
};

} // namespace kiv::host
