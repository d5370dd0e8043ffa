#include <array>
#include <cmath>

#include <gtest/gtest.h>

#include "support/ZelUtil.h"

namespace {

using Vector = std::array<double, 3>;

double dot(const Vector& a, const Vector& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

void expectNear(const Vector& got, const Vector& expected, double tolerance = 4e-16) {
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(got[i], expected[i], tolerance) << "component " << i;
}

TEST(RelativeAngles, WithoutSolution) {
    Vector a{0, 0, 1}, b{1, 0, 0}, c{0, 1, 0}, parallel{-1, 0, 0}, out;
    solveVectorsRelAng(a.data(), b.data(), c.data(), 0, 60, out.data());
    expectNear(out, {-std::sqrt(0.8), -std::sqrt(0.2), 0});
    solveVectorsRelAng(a.data(), b.data(), parallel.data(), 90, 90, out.data());
    EXPECT_FALSE(std::isfinite(dot(out, out)));
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
}

} // namespace
