#include "models/Geometry.h"

#include <bit>
#include <cmath>
#include <cstdint>

#include <gtest/gtest.h>

namespace {

using namespace kiv;

double above(double v) {
    return std::nextafter(v, INFINITY);
}

// The bits behind all recorded results; they follow from the decimal literals by correct rounding.
TEST(AngleConstants, ArePinnedBitForBit) {
    const struct {
        const char* name;
        double value;
        std::uint64_t bits;
    } rows[] = {
        {"degToRad", degToRad, 0x3f91df46a2529983},
        {"radToDeg", radToDeg, 0x404ca5dc1a63c0b1},
        {"pi", pi, 0x400921fb54442eea},
        {"halfPi", halfPi, 0x3ff921fb54442eea},
        {"twoPi", twoPi, 0x401921fb54442eea},
        {"threeHalfPi", threeHalfPi, 0x4012d97c7f332330},
        {"angleDeadBand", angleDeadBand, 0x3d719799812dea11},
        {"lengthDeadBand", lengthDeadBand, 0x3ef24ab5181baf71},
        {"inclinationDeadBand", inclinationDeadBand, 0x3ef24ab5181baf71},
        {"levelDeadBand", levelDeadBand, 0x3ef24d15211930a7},
    };
    for (const auto& row : rows)
        EXPECT_EQ(std::bit_cast<std::uint64_t>(row.value), row.bits)
            << row.name << std::hex << ' ' << std::bit_cast<std::uint64_t>(row.value);
}

TEST(AxisAngles, CountAClosedBandAroundTheAxesAsZero) {
    const double b = lengthDeadBand;
    const double eighth = std::atan(1.0);
    const struct {
        const char* name;
        double m, n;
        double fullTurn, signedTurn, halfPlane;
    } rows[] = {
        {"origin", 0, 0, 0, 0, 0},
        {"corner of the band", b, -b, 0, 0, 0},
        {"band upwards", b, 1, halfPi, halfPi, halfPi},
        {"band downwards", -b, -1, threeHalfPi, -halfPi, -halfPi},
        {"negative zero downwards", -0.0, -1, threeHalfPi, -halfPi, -halfPi},
        {"band forwards", 1, -b, 0, 0, 0},
        {"band backwards", -1, b, pi, pi, 0},
        {"band backwards, below", -1, -b, pi, pi, 0},
        {"just above the band forwards", 1, above(b), std::atan(above(b)), std::atan(above(b)),
         std::atan(above(b))},
        {"just below the band forwards", 1, -above(b), twoPi - std::atan(above(b)),
         -std::atan(above(b)), -std::atan(above(b))},
        {"just above the band backwards", -1, above(b), pi - std::atan(above(b)),
         pi - std::atan(above(b)), -std::atan(above(b))},
        {"just below the band backwards", -1, -above(b), pi + std::atan(above(b)),
         std::atan(above(b)) - pi, std::atan(above(b))},
        {"just right of the band upwards", above(b), 1, std::atan(1 / above(b)),
         std::atan(1 / above(b)), std::atan(1 / above(b))},
        {"first quadrant", 2, 2, eighth, eighth, eighth},
        {"second quadrant", -2, 2, pi - eighth, pi - eighth, -eighth},
        {"third quadrant", -2, -2, pi + eighth, eighth - pi, eighth},
        {"fourth quadrant", 2, -2, twoPi - eighth, -eighth, -eighth},
        {"no number", NAN, 0, NAN, NAN, NAN},
        {"no number on the axis", 0, NAN, NAN, NAN, NAN},
        {"unbounded upwards", 0, INFINITY, halfPi, halfPi, halfPi},
    };
    const auto same = [](double a, double expected) {
        return std::isnan(expected) ? std::isnan(a) : a == expected;
    };
    for (const auto& row : rows) {
        EXPECT_PRED2(same, fullTurnAngle(row.m, row.n, b), row.fullTurn) << row.name;
        EXPECT_PRED2(same, signedAngle(row.m, row.n, b), row.signedTurn) << row.name;
        EXPECT_PRED2(same, halfPlaneAngle(row.m, row.n, b), row.halfPlane) << row.name;
    }
}

TEST(ArcArgument, ForgivesRoundingAndNothingElse) {
    EXPECT_EQ(arcArgument(above(1)), 1);
    EXPECT_EQ(arcArgument(-1 - 1e-12), -1);
    EXPECT_EQ(arcArgument(1 + 1.1e-12), 1 + 1.1e-12);
    EXPECT_EQ(arcArgument(-1.001), -1.001);
    EXPECT_EQ(arcArgument(0.999), 0.999);
    EXPECT_TRUE(std::isnan(arcArgument(NAN)));
}

} // namespace
