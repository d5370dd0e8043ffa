#pragma once

#include <array>
#include <optional>

namespace kiv::host {

using Matrix = std::array<double, 9>; // a rotation matrix, row by row

// A rotation as the vector part of its unit quaternion, whose scalar part is not negative: half of
// a small rotation vector, in radians.
using HalfTurn = std::array<double, 3>;

HalfTurn halfTurnOf(const Matrix& rotation);
Matrix matrixOf(const HalfTurn& turn);

Matrix product(const Matrix& a, const Matrix& b);
Matrix transposed(const Matrix& matrix);

// The rotation that takes one to another: to = turn * from.
Matrix rotationFrom(const Matrix& from, const Matrix& to);
double angleOf(const Matrix& rotation); // degrees, 0 to 180

// The rotation nearest to a sum of rotation matrices, which is their mean; nothing where they lie
// too far apart to have one. Sources: M. Moakher, SIAM Journal on Matrix Analysis and Applications
// 24 (2002), 1; the polar decomposition by N. Higham, SIAM Journal on Scientific and Statistical
// Computing 7 (1986), 1160.
std::optional<Matrix> orthogonalMean(const Matrix& sum);

// rx, ry, rz in degrees, by the library's own rule, in double precision where its dead bands do not
// act.
std::array<double, 3> anglesOf(const Matrix& rotation, bool localFrame);

// The rotation with such angles.
Matrix rotationBy(const std::array<double, 3>& degrees, bool localFrame);

// Takes a small rotation of a rotated sensor, as its half, to the changes of rx, ry and rz,
// degrees: its parts along the three axes about which these turn. Nothing where ry is 90 degrees.
std::optional<Matrix> partsAlongAxes(const std::array<double, 3>& degrees, bool localFrame);

std::array<double, 3> times(const Matrix& matrix, const std::array<double, 3>& vector);

} // namespace kiv::host
