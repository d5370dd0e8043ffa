#pragma once

#include "support/AngleConstants.h"

namespace kiv::simulator {

constexpr double radians = degToRad; // per degree, the library's own truncated value

// A sensor in space: rotation is row-major with (instrument vector) = rotation * (sensor vector);
// the instrument measures the sensor at position, in its own frame with z up and its length unit.
struct Pose {
    double rotation[9];
    double position[3];
};

// Degrees.
struct Angles {
    double rx, ry, rz;
};

// out = Rz(yaw) * Ry(pitch) * Rx(roll), degrees.
void rotationFromYawPitchRoll(double yaw, double pitch, double roll, double* out);

// r = Rx(rx) * Ry(ry) * Rz(rz), ry in [-90, 90].
Angles anglesOf(const double* r);

// out = transpose(a) * v.
void transposedTimes(const double* a, const double* v, double* out);

} // namespace kiv::simulator
