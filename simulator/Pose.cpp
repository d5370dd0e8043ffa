#include "simulator/Pose.h"

#include <algorithm>
#include <cmath>

#include "support/ZelUtil.h"

namespace kiv::simulator {

void rotationFromYawPitchRoll(double yaw, double pitch, double roll, double* out) {
    double rz[9];
    double ry[9];
    double rx[9];
    double product[9];
    rotation_z(rz, yaw * radians);
    rotation_y(ry, pitch * radians);
    rotation_x(rx, roll * radians);
    MatrixMultiply(rz, ry, 3, 3, 3, product);
    MatrixMultiply(product, rx, 3, 3, 3, out);
}

Angles anglesOf(const double* r) {
    const double rx = std::atan2(-r[5], r[8]);
    const double ry = std::asin(std::clamp(r[2], -1.0, 1.0));
    const double rz = std::atan2(-r[1], r[0]);
    return {rx / radians, ry / radians, rz / radians};
}

void transposedTimes(const double* a, const double* v, double* out) {
    for (int i = 0; i < 3; ++i)
        out[i] = a[i] * v[0] + a[3 + i] * v[1] + a[6 + i] * v[2];
}

} // namespace kiv::simulator
