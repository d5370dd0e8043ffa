#include "sensor/OrientationAngles.h"

#include <array>
#include <cmath>

#include <gtest/gtest.h>

#include "support/AngleConstants.h"
#include "support/ZelUtil.h"

namespace {

using namespace kiv;

using Matrix = std::array<double, 9>;

Matrix times(const Matrix& a, const Matrix& b) {
    Matrix c;
    MatrixMultiply(a.data(), b.data(), 3, 3, 3, c.data());
    return c;
}

Matrix about(char axis, double degrees) {
    Matrix r;
    const double angle = degrees * degToRad;
    (axis == 'x' ? rotation_x : axis == 'y' ? rotation_y : rotation_z)(r.data(), angle);
    return r;
}

Matrix xyz(double rx, double ry, double rz) {
    return times(times(about('x', rx), about('y', ry)), about('z', rz));
}

Matrix zyx(double rx, double ry, double rz) {
    return times(times(about('z', rz), about('y', ry)), about('x', rx));
}

constexpr double tolerance = 4e-5; // degrees: single precision at 180, once for each angle before

struct Row {
    double rx, ry, rz; // degrees
};

void expectAngles(const OrientationAngles& angles, const Row& row, const char* rule) {
    const auto apart = [](double a, double b) { return std::abs(std::remainder(a - b, 360)); };
    EXPECT_LT(apart(angles.rx, row.rx), tolerance)
        << rule << ' ' << row.rx << ' ' << row.ry << ' ' << row.rz;
    EXPECT_LT(apart(angles.ry, row.ry), tolerance)
        << rule << ' ' << row.rx << ' ' << row.ry << ' ' << row.rz;
    EXPECT_LT(apart(angles.rz, row.rz), tolerance)
        << rule << ' ' << row.rx << ' ' << row.ry << ' ' << row.rz;
}

// Half a turn has one sign, also where rounding puts it on the other side, and the band around the
// axes is that of matrix entries.
TEST(OrientationAngles, HalfTurnsAndDeadBand) {
    for (const double turn : {180.0, -180.0}) {
        EXPECT_FLOAT_EQ(machineAngles(about('z', turn).data()).rz, 180);
        EXPECT_FLOAT_EQ(localAngles(about('z', turn).data()).rz, 180);
        EXPECT_FLOAT_EQ(machineAngles(about('x', turn).data()).rx, 180);
        EXPECT_FLOAT_EQ(localAngles(about('x', turn).data()).rx, 180);
    }
    const double small = 1e-9; // degrees: above the band
    EXPECT_FLOAT_EQ(machineAngles(about('z', small).data()).rz, 1e-9F);
    EXPECT_FLOAT_EQ(localAngles(about('y', small).data()).ry, 1e-9F);
    EXPECT_EQ(machineAngles(about('z', 1e-11).data()).rz, 0); // inside
}

TEST(OrientationAngles, ScaledColumnsGiveTheSameAngles) {
    Matrix scaled = xyz(10, 20, 30);
    Matrix local = zyx(10, 20, 30);
    for (std::size_t i = 0; i < 9; ++i) {
        const double factor = i % 3 == 0 ? 7 : i % 3 == 1 ? 0.125 : 1e6;
        scaled[i] *= factor;
        local[i] *= factor;
    }
    expectAngles(machineAngles(scaled.data()), {10, 20, 30}, "machine");
    expectAngles(localAngles(local.data()), {10, 20, 30}, "local");
}

// The later angles come from the single-precision sine and cosine of the rounded first angle.
// Computed a second way; with double sines at least one of many matrices would differ in its last
// bit.
TEST(OrientationAngles, LaterAnglesUseTheSineOfTheRoundedAngle) {
    int differences = 0;
    for (int i = 0; i < 200; ++i) {
        const Matrix t = xyz(0.7 * i - 70, 0.3 * i - 30, 1.7 * i - 170);
        const auto rx = static_cast<float>(std::atan2(-t[5], t[8]));
        const double single = std::atan2(t[2], static_cast<double>(std::cos(rx)) * t[8]
                                                   - static_cast<double>(std::sin(rx)) * t[5]);
        const double wide = std::atan2(t[2], std::cos(static_cast<double>(rx)) * t[8]
                                                 - std::sin(static_cast<double>(rx)) * t[5]);
        const auto degrees = [](double angle) {
            const volatile float rounded = static_cast<float>(angle);
            return static_cast<float>(rounded * radToDeg);
        };
        const OrientationAngles angles = threeVectorAngles(t.data());
        EXPECT_EQ(angles.rx, degrees(std::atan2(-t[5], t[8]))) << i;
        EXPECT_EQ(angles.rz, degrees(std::atan2(-t[1], t[0]))) << i;
        EXPECT_EQ(angles.ry, degrees(single)) << i;
        differences += degrees(single) != degrees(wide);
    }
    EXPECT_GT(differences, 0);
}

} // namespace
