#pragma once

namespace kiv {

// rx, ry, rz in radians of a row-major rotation matrix, in double precision and without the dead
// bands of the reported angles: rx and rz in (-pi, pi], ry in [-pi/2, pi/2]. r = Rx(rx) * Ry(ry) *
// Rz(rz), in the local frame Rz(rz) * Ry(ry) * Rx(rx).
void matrixAngles(const double* r, bool localFrame, double* angles);

// The turn from one angle to another, radians, in [-pi, pi].
double turnBetween(double from, double to);

} // namespace kiv
