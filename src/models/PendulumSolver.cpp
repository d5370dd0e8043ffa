#include "models/PendulumSolver.h"

#include <cmath>

#include "models/Geometry.h"
#include "support/ZelUtil.h"

namespace kiv {

namespace {

constexpr double armLength = 1000; // of the transverse axis in the level case, any length does
constexpr double relaxation = 2.7;
constexpr int mostPasses = 500;

struct MeasuredPoint {
    double x, y, z;
    double r, rho, rho2; // distance, horizontal distance, its square
    double phi;          // planar azimuth
};

// The arc cosine of the law of cosines at the origin of a triangle with sides a, b and opposite^2.
double angleBetweenSides(double a2PlusB2, double opposite2, double a, double b) {
    return std::acos(arcArgument((a2PlusB2 - opposite2) / (2 * a * b)));
}

// The cosines of the angle between the measured vector and the transverse vector, and between the
// measured vector and its opposite.
struct AngleBetween {
    double cosine, opposite;
};

// The transverse vector t, not normalised, that rises at beta and stands at the given angle to the
// measured vector.
void transverseVector(const MeasuredPoint& p, double beta, const AngleBetween& c0, double* t) {
    if (std::abs(beta) < inclinationDeadBand) {
        const double d =
            std::sqrt(p.r * p.r + armLength * armLength - c0.cosine * (2 * armLength) * p.r);
        const double e = std::sqrt(d * d - p.z * p.z);
        const double psi =
            p.phi - angleBetweenSides(e * e + p.rho2, armLength * armLength, p.rho, e);
        t[0] = p.x - e * std::cos(psi);
        t[1] = p.y - e * std::sin(psi);
        t[2] = 0;
        return;
    }
    // The line along t from the measured point meets the horizontal plane of the origin at the
    // length l, the horizontal distance m from the point; d is that intersection's distance from
    // the origin. Where z and beta agree in sign it lies behind the point, else ahead of it.
    // At z = 0 both lengths vanish, and t with them. Close to it rounding decides:
    // docs/geometry.md.
    if (p.z == 0) {
        t[0] = t[1] = t[2] = 0;
        return;
    }
    const bool behind = !((p.z > 0 && beta < 0) || (p.z < 0 && beta > 0));
    const double height = p.z > 0 ? p.z : -p.z;
    const double rise = std::abs(beta);
    const double l = height / std::sin(rise);
    const double m = height / std::tan(rise);
    const double cosine = behind ? c0.cosine : c0.opposite;
    const double d = std::sqrt(l * l + p.r * p.r - cosine * 2 * l * p.r);
    const double turn = angleBetweenSides(p.rho2 + d * d, m * m, p.rho, d);
    const double psi = behind ? p.phi - turn : p.phi + turn;
    if (behind) {
        t[0] = p.x - d * std::cos(psi);
        t[1] = p.y - d * std::sin(psi);
        t[2] = p.z;
    } else {
        t[0] = d * std::cos(psi) - p.x;
        t[1] = d * std::sin(psi) - p.y;
        t[2] = -p.z;
    }
}

} // namespace

PendulumSolution solvePendulum(const PendulumProblem& problem) {
    const double x = problem.vector[0];
    const double y = problem.vector[1];
    const double z = problem.vector[2];
    const double rho2 = x * x + y * y;
    const MeasuredPoint point{x,
                              y,
                              z,
                              std::sqrt(z * z + rho2),
                              std::sqrt(rho2),
                              rho2,
                              fullTurnAngle(x, y, lengthDeadBand)};

    double u[3];
    if (point.r > 0) {
        u[0] = x / point.r;
        u[1] = y / point.r;
        u[2] = z / point.r;
    } else {
        u[0] = u[1] = u[2] = std::sqrt(1.0 / 3.0);
    }

    double headToYoke[9];
    rotation_y(headToYoke, problem.gamma);
    MatrixInverse(headToYoke, 3);

    const AngleBetween c0{std::cos(problem.c0), std::cos(pi - problem.c0)};
    PendulumSolution solution;
    solution.beta = problem.beta0;
    while (true) {
        double t[3];
        double c1[3];
        double c2[3];
        transverseVector(point, solution.beta, c0, t);
        normalize(t);
        CrossMultiply(u, t, c1);
        normalize(c1);
        CrossMultiply(t, c1, c2);
        normalize(c2);
        frameFromColumns(c2, t, c1, solution.frame);
        ++solution.passes;

        double yoke[9];
        double q[3];
        MatrixMultiply(solution.frame, headToYoke, 3, 3, 3, yoke);
        MatrixMultiply(yoke, problem.axis, 3, 3, 1, q);
        const double error = std::asin(arcArgument(q[2])) - problem.beta0;
        const bool goOn =
            std::abs(error) >= inclinationDeadBand; // false for an error that is no number
        if (!goOn || solution.passes == mostPasses)
            return solution;
        solution.beta -= error / relaxation;
    }
}

} // namespace kiv
