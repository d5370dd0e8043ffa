#include "KIVInterface/CKivPendulum.h"

#include <algorithm>
#include <array>

#include <gtest/gtest.h>

#include "models/Geometry.h"
#include "models/PendulumSolver.h"
#include "tests/Matchers.h"

namespace {

using namespace kiv;

constexpr double printedDigits = 5e-7; // half a unit in the sixth decimal
constexpr double azimuthOffset = 0.1;  // rad
constexpr double elevationOffset = 0.2;

struct Example {
    const char* name;
    std::array<float, 8> factors;
    int parity;
    int passes;
    double beta; // degrees
    std::array<double, 9> matrix;
};

const Example examples[] = {
    {"even mode",
     {0.5F, 0.2F, 2.0F, 3.0F, 1, 1, 1, 0},
     0,
     18,
     -0.8232,
     {0.967905, -0.251038, -0.011869, 0.251168, 0.967880, 0.011134, 0.008693, -0.013758, 0.999868}},
    {"odd mode",
     {0.5F, 0.2F, 2.0F, 3.0F, 1, 1, 1, 0},
     1,
     19,
     -4.0123,
     {0.872942, -0.379394, -0.306648, 0.389173, 0.920637, -0.031171, 0.294138, -0.092128,
      0.951312}},
    {"reference axis along the transverse axis",
     {0.5F, 0.2F, 0, 0, 1, 1, 1, 0},
     0,
     1,
     1.2,
     {0.966572, -0.256395, -0.000672, 0.256316, 0.966333, -0.022399, 0.006392, 0.021478, 0.999749}},
};

using Matrix = std::array<double, 9>;
constexpr Matrix measurement{3000, 1000, 500, 0, 1.0, 10, 20, 0, 0};

CKivPendulum pendulum(std::array<float, 8> factors, int parity) {
    CKivPendulum model;
    model.set_iMMode(parity);
    model.UpdateSFactors(factors.data(), 8);
    return model;
}

PendulumProblem problemOf(const Example& example) {
    const double sense = example.parity == 1 ? -1 : 1;
    const double s2 = example.factors[2] * degToRad;
    const double s3 = example.factors[3] * degToRad;
    return {{measurement[0], measurement[1], measurement[2]},
            sense * (example.factors[1] + measurement[4]) * degToRad,
            sense * (elevationOffset - measurement[6] * degToRad),
            example.factors[0] * degToRad + halfPi,
            {std::sin(s3) * std::cos(s2), std::cos(s3) * std::cos(s2), std::sin(s2)}};
}

TEST(Pendulum, ReachesThePublishedExamples) {
    for (const Example& example : examples) {
        const PendulumSolution solution = solvePendulum(problemOf(example));
        EXPECT_EQ(solution.passes, example.passes) << example.name;
        EXPECT_NEAR(solution.beta * radToDeg, example.beta, 5e-5) << example.name;

        Matrix m = measurement;
        EXPECT_TRUE(pendulum(example.factors, example.parity)
                        .CalTranxMatrix(m.data(), azimuthOffset, elevationOffset, 3));
        EXPECT_TRUE(test::isNear(m.data(), example.matrix.data(), printedDigits)) << example.name;
        EXPECT_TRUE(test::isRotation(m.data(), 1e-14)) << example.name;
    }
}

// The level case is open: at the band itself the axis rises, one step below it lies level.
TEST(Pendulum, LevelBand) {
    PendulumProblem problem = problemOf(examples[2]);
    problem.beta0 = inclinationDeadBand;
    EXPECT_NEAR(solvePendulum(problem).frame[7], inclinationDeadBand, 1e-12);
    problem.beta0 = std::nextafter(inclinationDeadBand, 0);
    EXPECT_EQ(solvePendulum(problem).frame[7], 0);
}

// A reference axis across the transverse axis oscillates about an inclination that it cannot show;
// the frame of the last pass counts.
TEST(Pendulum, StopsAfterFiveHundredPassesWithTheLastFrame) {
    const std::array<float, 8> factors{0, 0, 10, 90, 1, 1, 1, 0};
    const double s2 = 10 * degToRad;
    const double s3 = 90 * degToRad;
    const PendulumSolution solution =
        solvePendulum({{3000, 1000, 500},
                       10 * degToRad,
                       -0.15,
                       halfPi,
                       {std::sin(s3) * std::cos(s2), std::cos(s3) * std::cos(s2), std::sin(s2)}});
    EXPECT_EQ(solution.passes, 500);
    Matrix m{3000, 1000, 500, 0, 10, 0, 0, 0, 0};
    EXPECT_TRUE(pendulum(factors, 0).CalTranxMatrix(m.data(), 0, -0.15, 3));
    EXPECT_TRUE(test::isRotation(m.data(), 1e-13));
}

TEST(Pendulum, FailsWhereThereIsNoTransverseAxis) {
    const struct {
        const char* name;
        Matrix input;
    } rows[] = {
        {"tilted in the horizon", {3000, 1000, 0, 0, 1, 10, 20, 0, 0}},
        {"zero vector", {0, 0, 0, 0, 1, 10, 20, 0, 0}},
        {"zero vector, level", {0, 0, 0, 0, -0.2F, 10, 20, 0, 0}},
        {"straight up", {0, 0, 500, 0, 40, 10, 20, 0, 0}},
        {"steeper than any axis", {3000, 1000, 500, 0, 89.7, 10, 20, 0, 0}},
    };
    for (const auto& row : rows) {
        Matrix m = row.input;
        EXPECT_FALSE(pendulum(examples[2].factors, 0).CalTranxMatrix(m.data(), 0.1, 0.2, 3))
            << row.name;
    }
}

} // namespace
