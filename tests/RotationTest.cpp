#include <array>
#include <cmath>

#include <gtest/gtest.h>

#include "support/ZelUtil.h"

namespace {

using Vector = std::array<double, 3>;

const double pi = std::acos(-1.0);
const double half3 = std::sqrt(0.75);
const double third = std::sqrt(1.0 / 3);

double dot(const Vector& a, const Vector& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

void expectNear(const Vector& got, const Vector& expected, double tolerance = 4e-16) {
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(got[i], expected[i], tolerance) << "component " << i;
}

TEST(Rotation, TurnsRightHanded) {
    const struct {
        const char* name;
        int (*rotation)(double*, double); // of the same axis, if there is one
        Vector axis;
        double angle; // degrees
        Vector from, to;
    } cases[] = {
        {"x", rotation_x, {1, 0, 0}, 30, {1, 1, 1}, {1, half3 - 0.5, half3 + 0.5}},
        {"y", rotation_y, {0, 1, 0}, 30, {1, 1, 1}, {half3 + 0.5, 1, half3 - 0.5}},
        {"z", rotation_z, {0, 0, 1}, 30, {1, 1, 1}, {half3 - 0.5, half3 + 0.5, 1}},
        {"a third of a turn", nullptr, {third, third, third}, 120, {1, 0, 0}, {0, 1, 0}},
        {"oblique, half a turn", nullptr, {0.6, 0.8, 0}, 180, {1, 0, 0}, {-0.28, 0.96, 0}},
    };
    for (auto row : cases) {
        SCOPED_TRACE(row.name);
        Vector to;
        mlaRotateAroundAxis(row.from.data(), row.angle, row.axis.data(), to.data());
        expectNear(to, row.to);
        if (!row.rotation)
            continue;
        double r[9];
        EXPECT_EQ(row.rotation(r, row.angle * pi / 180), 0);
        MatrixMultiply(r, row.from.data(), 3, 3, 1, to.data());
        expectNear(to, row.to);
    }
}

TEST(RelativeAngles, WithoutSolution) {
    Vector a{0, 0, 1}, b{1, 0, 0}, c{0, 1, 0}, parallel{-1, 0, 0}, out;
    solveVectorsRelAng(a.data(), b.data(), c.data(), 0, 60, out.data());
    expectNear(out, {-std::sqrt(0.8), -std::sqrt(0.2), 0});
    solveVectorsRelAng(a.data(), b.data(), parallel.data(), 90, 90, out.data());
    EXPECT_FALSE(std::isfinite(dot(out, out)));
}

// A known unit vector on the side of b x c comes back from its angles to b and c.
TEST(RelativeAngles, FindAKnownDirection) {
    for (double between : {90.0, 65.0, 120.0, 5.0, 0.01}) // degrees from b to c
        for (double aZ : {-1.0, 1.0})
            for (double tip : {0.0, 0.3, -0.8}) {
                SCOPED_TRACE(testing::Message() << between << ", a.z " << aZ << ", tip " << tip);
                Vector a{0, 0, aZ}, b{0.36, 0.48, 0.8}, axis{-0.8, 0.6, 0}, c, known, out;
                mlaRotateAroundAxis(b.data(), between, axis.data(), c.data());
                const Vector aside{0.48, 0.64, -0.6};
                for (std::size_t i = 0; i < 3; ++i)
                    known[i] = tip * b[i] + 0.1 * aside[i] + std::sqrt(0.99 - tip * tip) * axis[i];
                const double alpha = std::acos(-aZ * dot(known, b)) * 180 / pi;
                const double beta = std::acos(-aZ * dot(known, c)) * 180 / pi;
                solveVectorsRelAng(a.data(), b.data(), c.data(), alpha, beta, out.data());
                expectNear(out, known, 1e-15 / std::sin(between * pi / 180));
                EXPECT_NEAR(dot(out, out), 1, 2e-15);
            }
}

TEST(Spherical, Values) {
    const struct {
        const char* name;
        Vector p, hvLength; // degrees
    } cases[] = {
        {"y", {0, 2, 0}, {0, 0, 2}},
        {"x", {1, 0, 0}, {-90, 0, 1}},
        {"seam", {0, -1, 0}, {180, 0, 1}},
        {"seam, negative zero", {-0.0, -1, 0}, {180, 0, 1}},
        {"seam within rounding", {1e-20, -1, 0}, {180, 0, 1}},
        {"z", {0, 0, 3}, {0, 90, 3}},
        {"zero", {0, 0, 0}, {0, 0, 0}},
        {"negative zero", {-0.0, -0.0, -0.0}, {0, 0, 0}},
        {"short", {-3e-200, 0, 4e-200}, {90, 53.13010235415598, 5e-200}},
    };
    for (auto row : cases) {
        SCOPED_TRACE(row.name);
        ConvertCartesianToSphericalCoordinates(row.p.data());
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_DOUBLE_EQ(row.p[i], row.hvLength[i]) << "component " << i;
    }
    for (double h = -179.5; h <= 180; h += 14.5)
        for (double v = -89; v < 90; v += 12.5) {
            SCOPED_TRACE(testing::Message() << "H " << h << ", V " << v);
            const double hr = h * pi / 180, vr = v * pi / 180;
            Vector p{-std::sin(hr) * std::cos(vr), std::cos(hr) * std::cos(vr), std::sin(vr)};
            ConvertCartesianToSphericalCoordinates(p.data());
            expectNear(p, {h, v, 1}, 1e-13);
        }
}

} // namespace
