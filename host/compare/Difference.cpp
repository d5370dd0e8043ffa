#include "host/compare/Difference.h"

#include <cmath>

#include "host/base/Distributions.h"
#include "host/summary/Statistics.h"
#include "support/AngleConstants.h"

namespace kiv::host {

namespace {

using Quaternion = std::array<double, 4>; // w, x, y, z

Quaternion product(const Quaternion& p, const Quaternion& q) {
    return {p[0] * q[0] - p[1] * q[1] - p[2] * q[2] - p[3] * q[3],
            p[0] * q[1] + p[1] * q[0] + p[2] * q[3] - p[3] * q[2],
            p[0] * q[2] - p[1] * q[3] + p[2] * q[0] + p[3] * q[1],
            p[0] * q[3] + p[1] * q[2] - p[2] * q[1] + p[3] * q[0]};
}

Quaternion turnAbout(std::size_t axis, double degrees) {
    const double half = degrees / 360 * pi;
    Quaternion turn{std::cos(half), 0, 0, 0};
    turn[1 + axis] = std::sin(half);
    return turn;
}

Quaternion quaternionOf(const std::array<double, 3>& angles, bool localFrame) {
    const Quaternion x = turnAbout(0, angles[0]), y = turnAbout(1, angles[1]),
                     z = turnAbout(2, angles[2]);
    return localFrame ? product(product(z, y), x) : product(product(x, y), z);
}

std::optional<std::array<double, 3>> combined(const std::optional<std::array<double, 3>>& first,
                                              const std::optional<std::array<double, 3>>& second) {
    if (!first)
        return second;
    std::array<double, 3> both = *first;
    for (std::size_t i = 0; second && i < 3; ++i)
        both[i] = std::hypot(both[i], (*second)[i]);
    return both;
}

} // namespace

OrientationDifference differenceOf(const Orientation& first, const Orientation& second,
                                   bool localFrame) {
    OrientationDifference difference;
    for (std::size_t i = 0; i < 3; ++i)
        difference.angles[i] = withinHalfTurn(second.angles[i] - first.angles[i]);
    difference.uncertainty = combined(first.uncertainty, second.uncertainty);
    if (first.angles == second.angles) // no turn, not even by rounding
        return difference;
    Quaternion back = quaternionOf(first.angles, localFrame);
    for (std::size_t i = 1; i < 4; ++i)
        back[i] = -back[i];
    const Quaternion turn = product(back, quaternionOf(second.angles, localFrame));
    const double sine = std::hypot(turn[1], turn[2], turn[3]);
    difference.angle = 360 / pi * std::atan2(sine, std::abs(turn[0]));
    for (std::size_t i = 0; sine > 0 && i < 3; ++i)
        difference.axis[i] = std::copysign(1.0, turn[0]) * turn[1 + i] / sine;
    return difference;
}

bool OrientationDifference::isBeyond(std::size_t i) const {
    return uncertainty && std::abs(angles[i]) > 2 * (*uncertainty)[i];
}

// The square of a small turn is the sum of those of its three parts; that of normal ones which do
// not depend on each other is about a multiple of chi-squared with fewer degrees of freedom, the
// more their uncertainties differ. Source: F. E. Satterthwaite, Biometrics Bulletin 2 (1946), 110.
bool OrientationDifference::isBeyondTurn() const {
    static const double withinTwo = chiSquaredProbability(4, 1);
    if (!uncertainty)
        return false;
    double squares = 0, fourths = 0;
    for (const double each : *uncertainty) {
        squares += each * each;
        fourths += each * each * each * each;
    }
    if (!(fourths > 0))
        return angle > 0;
    const double freedom = squares * squares / fourths;
    return chiSquaredProbability(freedom * angle * angle / squares, freedom) > withinTwo;
}

} // namespace kiv::host
