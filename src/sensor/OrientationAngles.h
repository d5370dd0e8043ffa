#pragma once

namespace kiv {

// Rotation angles of a row-major rotation matrix; single precision, because later angles are formed
// from the stored earlier ones.
struct OrientationAngles {
    float rx, rz, ry; // degrees
};

// R = Rx(rx) Ry(ry) Rz(rz); rx and rz in [-180, 180], ry in [-90, 90]. The columns are normalised
// first; a zero column gives angles that are not numbers.
OrientationAngles machineAngles(const double* r);

// R = Rz(rz) Ry(ry) Rx(rx); each in [-180, 180]. Columns as above.
OrientationAngles localAngles(const double* r);

// T = Rx(rx) Ry(ry) Rz(rz), for the three-vector models; each in [-180, 180].
OrientationAngles threeVectorAngles(const double* t);

} // namespace kiv
