#include "support/ZelUtil.h"

#include <cmath>
#include <numbers>

void mlaRotateAroundAxis(double* const v, double angle, double* const axis, double* const out) {
    const double radians = angle * (std::numbers::pi / 180.0);
    const double c = std::cos(radians);
    const double s = std::sin(radians);
    const double along = (axis[0] * v[0] + axis[1] * v[1] + axis[2] * v[2]) * (1.0 - c);
    double across[3];
    CrossMultiply(axis, v, across);
    for (int i = 0; i < 3; ++i)
        out[i] = v[i] * c + across[i] * s + axis[i] * along;
}
