#include "support/ZelUtil.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace {

int fill(double* r, const std::array<double, 9>& entries) {
    std::copy(entries.begin(), entries.end(), r);
    return 0;
}

} // namespace

int rotation_x(double* r, double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return fill(r, {1.0, 0.0, 0.0, //
                    0.0, c, -s,    //
                    0.0, s, c});
}

int rotation_y(double* r, double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return fill(r, {c, 0.0, s,     //
                    0.0, 1.0, 0.0, //
                    -s, 0.0, c});
}

int rotation_z(double* r, double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return fill(r, {c, -s, 0.0, //
                    s, c, 0.0,  //
                    0.0, 0.0, 1.0});
}

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
