#include <cmath>

#include <gtest/gtest.h>

#include "KIVInterface/CKiv.h"

namespace {

TEST(HomeAngles, PublishedExamples) {
    const struct {
        const char* name;
        D_VECTOR3 frameX, direction;
        D_VECTOR2 angles;
        D_VECTOR3 tilt;
        double homeH, homeV, tolerance;
    } rows[] = {
        // The truncated constants decide these digits.
        {"level",
         {1, 0, 0},
         {1, 0, 0},
         {10, 20},
         {0, 0, 0},
         9.999999999997707,
         19.999999999995413,
         1e-14},
        {"tilted", {0, 1, 0}, {1, 1, 0}, {10, 20}, {2, -3, 0}, 55.0742201, 21.7473990, 5e-8},
        {"tilt z is not read",
         {0, 1, 0},
         {1, 1, 0},
         {10, 20},
         {2, -3, NAN},
         55.0742201,
         21.7473990,
         5e-8},
        {"direction backwards", {1, 0, 0}, {-1, 0, 0}, {10, 0}, {0, 0, 0}, -170, 0, 1e-9},
        {"direction to the left", {1, 0, 0}, {0, 1, 0}, {10, 0}, {0, 0, 0}, -80, 0, 1e-9},
        {"direction to the right", {1, 0, 0}, {0, -1, 0}, {10, 0}, {0, 0, 0}, 100, 0, 1e-9},
    };
    CKiv sensor;
    for (const auto& row : rows) {
        double h = 0;
        double v = 0;
        EXPECT_TRUE(sensor.Calc_HV0(row.frameX, row.direction, row.angles, row.tilt, &h, &v))
            << row.name;
        EXPECT_NEAR(h, row.homeH, row.tolerance) << row.name;
        EXPECT_NEAR(v, row.homeV, row.tolerance) << row.name;
    }
}

double dot(const D_VECTOR3& a, const D_VECTOR3& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

D_VECTOR3 cross(const D_VECTOR3& a, const D_VECTOR3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

// Coordinates of v along x, p x x and p, where x and p need not be square to each other.
D_VECTOR3 inTiltFrame(const D_VECTOR3& v, const D_VECTOR3& x, const D_VECTOR3& p) {
    const D_VECTOR3 q = cross(p, x);
    const double xp = dot(x, p);
    const double det = dot(x, x) * dot(p, p) - xp * xp;
    return {(dot(v, x) * dot(p, p) - dot(v, p) * xp) / det, dot(v, q) / dot(q, q),
            (dot(v, p) * dot(x, x) - dot(v, x) * xp) / det};
}

// Against a second computation, with the up vector in closed form and the coordinates by
// projection.
TEST(HomeAngles, FollowTheUpVector) {
    constexpr double k = 0.01745329251994;
    // Degrees: the tilt's direction comes from an arc sine, which near 1 turns two units in the
    // last place into 3e-8 radians.
    constexpr double tolerance = 2e-6;
    CKiv sensor;
    int rows = 0;
    for (const double a : {-40.0, -5.0, -0.001, -0.0001, 0.0, 1e-14, 5.0, 40.0})
        for (const double b : {-30.0, -5.0, 0.0, 1e-9, 1e-12, 5.0, 30.0})
            for (const double azimuth : {0.0, 1e-9, 30.0, 90.0, 135.0, 180.0, 270.0, 300.0}) {
                const double c = std::cos(azimuth * k);
                const double s = std::sin(azimuth * k);
                const double tiltX = std::cos(a * k) * std::sin(b * k);
                const double tiltY = -std::sin(a * k);
                const D_VECTOR3 up{c * tiltX - s * tiltY, s * tiltX + c * tiltY,
                                   std::cos(a * k) * std::cos(b * k)};
                const D_VECTOR3 frameX{1, 0.2, -0.1};
                const D_VECTOR3 direction{2 * c, 2 * s, 0.3};
                const double length = std::sqrt(dot(direction, direction));
                const D_VECTOR3 u{direction.x / length, direction.y / length, direction.z / length};
                const D_VECTOR3 rv = cross(up, u);
                const D_VECTOR3 first = inTiltFrame(u, frameX, up);
                const D_VECTOR3 second = inTiltFrame(rv, frameX, up);
                const D_VECTOR3 third = inTiltFrame(cross(u, rv), frameX, up);
                const double homeH = 10 - std::atan2(-second.x, second.y) / k;
                const double homeV = 20
                                     + 0.5
                                           * (std::atan((third.y + third.x) / (first.y + first.x))
                                              - std::atan(first.z / third.z))
                                           / k;
                double h = 0;
                double v = 0;
                EXPECT_TRUE(sensor.Calc_HV0(frameX, direction, {10, 20}, {a, b, 0}, &h, &v));
                EXPECT_NEAR(std::remainder(h - homeH, 360), 0, tolerance)
                    << a << ' ' << b << ' ' << azimuth;
                EXPECT_NEAR(v, homeV, tolerance) << a << ' ' << b << ' ' << azimuth;
                ++rows;
            }
    EXPECT_EQ(rows, 8 * 7 * 8);
}

// Beyond a right angle a tilt counts as its supplement: the up vector never points down.
TEST(HomeAngles, LargeTiltCountsAsItsSupplement) {
    CKiv sensor;
    const D_VECTOR3 frameX{1, 0.2, -0.1}, direction{1, 1, 0.3};
    double h[2] = {};
    double v[2] = {};
    EXPECT_TRUE(sensor.Calc_HV0(frameX, direction, {0, 0}, {60, 0, 0}, &h[0], &v[0]));
    EXPECT_TRUE(sensor.Calc_HV0(frameX, direction, {0, 0}, {120, 0, 0}, &h[1], &v[1]));
    EXPECT_GT(std::abs(v[0]), 1);
    EXPECT_NEAR(h[0], h[1], 1e-9);
    EXPECT_NEAR(v[0], v[1], 1e-9);
}

TEST(HomeAngles, SingularTiltFrameFails) {
    CKiv sensor;
    double h = 0;
    double v = 0;
    EXPECT_FALSE(sensor.Calc_HV0({0, 0, 1}, {1, 0, 0}, {10, 20}, {0, 0, 0}, &h, &v));
    EXPECT_FALSE(sensor.Calc_HV0({0, 0, 0}, {1, 0, 0}, {10, 20}, {0, 0, 0}, &h, &v));
    EXPECT_FALSE(sensor.Calc_HV0({1, 0, 0}, {1, 0, 0}, {10, 20}, {NAN, 0, 0}, &h, &v));
    EXPECT_TRUE(sensor.Calc_HV0({1, 0, 0}, {0, 0, 0}, {10, 20}, {0, 0, 0}, &h, &v));
}

} // namespace
