#pragma once

#include <cmath>

#include "support/AngleConstants.h"

// Geometry that the models and the sensor object share. Frames: (instrument vector) = M * (sensor
// vector), M row-major, M[3 * row + column]. A positive rotation is right-handed about its axis.
// Angles are radians. None of these allocates; an input that is not a number gives a result that is
// not a number.
namespace kiv {

// The argument of an arc sine or arc cosine: what leaves [-1, 1] by rounding alone counts as +-1.
inline double arcArgument(double x) {
    constexpr double rounding = 1e-12;
    if (std::abs(x) > 1 && std::abs(x) <= 1 + rounding)
        return std::copysign(1.0, x);
    return x;
}

// The angle of the point (m, n) from the first axis towards the second. A component inside the
// closed dead band counts as 0: the origin gives 0, the positive first axis 0; otherwise general()
// decides.
template <typename General>
double axisAngle(double m, double n, double deadBand, double onNegativeFirst,
                 double onNegativeSecond, General general) {
    if (std::isnan(m) || std::isnan(n))
        return m + n;
    if (std::abs(m) <= deadBand) {
        if (std::abs(n) <= deadBand)
            return 0;
        return n > 0 ? halfPi : onNegativeSecond;
    }
    if (std::abs(n) <= deadBand)
        return m > 0 ? 0 : onNegativeFirst;
    return general();
}

// The angle lies in [0, 2 pi).
inline double fullTurnAngle(double m, double n, double deadBand) {
    return axisAngle(m, n, deadBand, pi, threeHalfPi, [=] {
        const double a = std::atan(n / m);
        if (m < 0)
            return a + pi;
        return n < 0 ? a + twoPi : a;
    });
}

// The angle lies in [-pi, pi].
inline double signedAngle(double m, double n, double deadBand) {
    return axisAngle(m, n, deadBand, pi, -halfPi, [=] {
        const double a = std::atan(n / m);
        return m < 0 ? a + std::copysign(pi, n) : a;
    });
}

// The angle lies in [-pi/2, pi/2]: the direction without regard to its sense along the first axis.
inline double halfPlaneAngle(double m, double n, double deadBand) {
    return axisAngle(m, n, deadBand, 0, -halfPi, [=] { return std::atan(n / m); });
}

// v divided by its length, which is not tested: the zero vector gives entries that are not numbers.
inline void normalize(double* v) {
    const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    v[0] /= length;
    v[1] /= length;
    v[2] /= length;
}

// m's columns are a, b, c.
inline void frameFromColumns(const double* a, const double* b, const double* c, double* m) {
    for (int row = 0; row < 3; ++row) {
        m[3 * row] = a[row];
        m[3 * row + 1] = b[row];
        m[3 * row + 2] = c[row];
    }
}

// Changes m in place: it becomes m * (Rz(alpha) * Ry(gamma))^-1. False when that product has no
// inverse (an angle that is not finite).
bool rotateBackByEncoders(double* m, double alpha, double gamma);

bool allFinite(const double* values, int count);

} // namespace kiv
