#include "host/poses/Rotations.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "sensor/OrientationAngles.h"
#include "support/ZelUtil.h"
#include "uncertainty/MatrixAngles.h"

namespace kiv::host {

namespace {

constexpr double degree = std::numbers::pi / 180;
// Of single-precision angles in degrees, with room to spare.
constexpr double steps = 1e-4;

double determinant(const Matrix& m) {
    return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6])
           + m[2] * (m[3] * m[7] - m[4] * m[6]);
}

} // namespace

Matrix product(const Matrix& a, const Matrix& b) {
    Matrix c;
    MatrixMultiply(a.data(), b.data(), 3, 3, 3, c.data());
    return c;
}

Matrix transposed(const Matrix& m) {
    return {m[0], m[3], m[6], m[1], m[4], m[7], m[2], m[5], m[8]};
}

// Source: S. Shepperd, Journal of Guidance and Control 1 (1978), 223.
HalfTurn halfTurnOf(const Matrix& m) {
    const double trace = m[0] + m[4] + m[8];
    const double squares[] = {trace, m[0], m[4], m[8]}; // of the parts, from the scalar one on
    const auto largest = std::max_element(squares, squares + 4) - squares;
    double q[4]; // all times four times the largest part
    switch (largest) {
    case 0:
        q[0] = 1 + trace, q[1] = m[7] - m[5], q[2] = m[2] - m[6], q[3] = m[3] - m[1];
        break;
    case 1:
        q[0] = m[7] - m[5], q[1] = 1 - trace + 2 * m[0], q[2] = m[1] + m[3], q[3] = m[2] + m[6];
        break;
    case 2:
        q[0] = m[2] - m[6], q[1] = m[1] + m[3], q[2] = 1 - trace + 2 * m[4], q[3] = m[5] + m[7];
        break;
    default:
        q[0] = m[3] - m[1], q[1] = m[2] + m[6], q[2] = m[5] + m[7], q[3] = 1 - trace + 2 * m[8];
    }
    const double norm =
        std::copysign(std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]), q[0]);
    return {q[1] / norm, q[2] / norm, q[3] / norm};
}

Matrix matrixOf(const HalfTurn& turn) {
    const auto [x, y, z] = turn;
    const double w = std::sqrt(std::max(0.0, 1 - (x * x + y * y + z * z)));
    return {1 - 2 * (y * y + z * z), 2 * (x * y - w * z),     2 * (x * z + w * y),
            2 * (x * y + w * z),     1 - 2 * (x * x + z * z), 2 * (y * z - w * x),
            2 * (x * z - w * y),     2 * (y * z + w * x),     1 - 2 * (x * x + y * y)};
}

Matrix rotationFrom(const Matrix& from, const Matrix& to) {
    return product(to, transposed(from));
}

double angleOf(const Matrix& rotation) {
    const auto [x, y, z] = halfTurnOf(rotation);
    return 2 * std::asin(std::min(1.0, std::sqrt(x * x + y * y + z * z))) / degree;
}

std::optional<Matrix> orthogonalMean(const Matrix& sum) {
    const double size = std::cbrt(determinant(sum));
    const double largest = std::abs(*std::max_element(
        sum.begin(), sum.end(), [](double a, double b) { return std::abs(a) < std::abs(b); }));
    if (!(size > 1e-3 * largest)) // of a mean nothing but rounding
        return std::nullopt;
    Matrix mean = sum;
    for (double& element : mean)
        element /= size;
    constexpr int mostSteps = 50;
    for (int step = 0; step < mostSteps; ++step) {
        Matrix inverse = mean;
        if (!MatrixInverse(inverse.data(), 3))
            return std::nullopt;
        inverse = transposed(inverse);
        double change = 0;
        for (std::size_t i = 0; i < 9; ++i) {
            change = std::max(change, std::abs(inverse[i] - mean[i]));
            mean[i] = (mean[i] + inverse[i]) / 2;
        }
        if (change < 1e-9) // then its square is left
            return mean;
    }
    return std::nullopt;
}

std::array<double, 3> anglesOf(const Matrix& rotation, bool localFrame) {
    const OrientationAngles reported =
        localFrame ? localAngles(rotation.data()) : machineAngles(rotation.data());
    std::array<double, 3> angles{reported.rx, reported.ry, reported.rz};
    std::array<double, 3> exact;
    matrixAngles(rotation.data(), localFrame, exact.data());
    for (std::size_t i = 0; i < 3; ++i)
        if (std::abs(std::remainder(exact[i] / degree - angles[i], 360)) < steps)
            angles[i] = exact[i] / degree;
    return angles;
}

Matrix rotationBy(const std::array<double, 3>& degrees, bool localFrame) {
    Matrix x, y, z;
    rotation_x(x.data(), degrees[0] * degree);
    rotation_y(y.data(), degrees[1] * degree);
    rotation_z(z.data(), degrees[2] * degree);
    return localFrame ? product(z, product(y, x)) : product(x, product(y, z));
}

// The outer angle turns about its own axis, each other one about its axis as turned by those
// outside of it.
std::optional<Matrix> partsAlongAxes(const std::array<double, 3>& degrees, bool localFrame) {
    const auto [rx, ry, rz] = degrees;
    const Matrix outer = localFrame ? rotationBy({0, 0, rz}, true) : rotationBy({rx, 0, 0}, false);
    const Matrix two = localFrame ? rotationBy({0, ry, rz}, true) : rotationBy({rx, ry, 0}, false);
    const std::array<double, 3> y{outer[1], outer[4], outer[7]};
    const std::array<double, 3> x =
        localFrame ? std::array{two[0], two[3], two[6]} : std::array{1.0, 0.0, 0.0};
    const std::array<double, 3> z =
        localFrame ? std::array{0.0, 0.0, 1.0} : std::array{two[2], two[5], two[8]};
    Matrix axes{x[0], y[0], z[0], x[1], y[1], z[1], x[2], y[2], z[2]};
    if (!(std::abs(determinant(axes)) > 1e-6) || !MatrixInverse(axes.data(), 3))
        return std::nullopt;
    for (double& element : axes)
        element *= 2 / degree;
    return axes;
}

std::array<double, 3> times(const Matrix& m, const std::array<double, 3>& v) {
    return {m[0] * v[0] + m[1] * v[1] + m[2] * v[2], m[3] * v[0] + m[4] * v[1] + m[5] * v[2],
            m[6] * v[0] + m[7] * v[1] + m[8] * v[2]};
}

} // namespace kiv::host
