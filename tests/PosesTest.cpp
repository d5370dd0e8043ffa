#include "host/poses/PoseFigures.h"

#include <cmath>

#include <gtest/gtest.h>

#include "host/poses/ReadingsPart.h"
#include "simulator/Random.h"

namespace {

using namespace kiv::host;

// The mean M of rotations that add up to S makes the trace of S^T M largest: S^T M is symmetric and
// its eigenvalues are positive.
TEST(Poses, MeanIsTheNearestRotation) {
    kiv::simulator::Random random(1);
    for (const double spread : {1e-3, 5.0, 60.0})
        for (const bool localFrame : {false, true}) {
            PoseRows rows;
            Matrix sum{};
            for (int i = 0; i < 20; ++i) {
                const Matrix rotation = rotationBy({170 + spread * random.uniform(-1, 1),
                                                    40 + spread * random.uniform(-1, 1),
                                                    -175 + spread * random.uniform(-1, 1)},
                                                   localFrame);
                rows.add(rotation, std::nullopt);
                for (std::size_t j = 0; j < 9; ++j)
                    sum[j] += rotation[j];
            }
            const PoseFigures figures = figuresOf(rows, localFrame);
            ASSERT_TRUE(figures.hasMean);
            const Matrix m = product(transposed(sum), figures.mean);
            EXPECT_NEAR(m[1], m[3], 1e-5) << spread;
            EXPECT_NEAR(m[2], m[6], 1e-5) << spread;
            EXPECT_NEAR(m[5], m[7], 1e-5) << spread;
            EXPECT_GT(m[0] + m[4] + m[8], 10) << spread;
            const Matrix again = rotationBy(
                {figures.axes[0].angle, figures.axes[1].angle, figures.axes[2].angle}, localFrame);
            EXPECT_LT(angleOf(rotationFrom(again, figures.mean)), 1e-6) << spread;
        }
}

// About a pose far from level, where the axes of the angles are far from those of the frame.
TEST(Poses, ScatterIsThatOfTheAngles) {
    for (const bool localFrame : {false, true}) {
        PoseRows rows;
        for (int i = 0; i < 30; ++i) {
            const double side = i % 2 == 0 ? 1 : -1; // without correlation beyond neighbours
            rows.add(rotationBy({20 + 0.001 * side, 50 + 0.002 * side, 179.999 + 0.003 * side},
                                localFrame),
                     i);
        }
        const PoseFigures figures = figuresOf(rows, localFrame);
        const double ratio = std::sqrt(30.0 / 29);
        EXPECT_NEAR(figures.axes[0].deviation, 0.001 * ratio, 1e-6);
        EXPECT_NEAR(figures.axes[1].deviation, 0.002 * ratio, 1e-6);
        EXPECT_NEAR(figures.axes[2].deviation, 0.003 * ratio, 1e-6);
        EXPECT_NEAR(figures.axes[2].uncertainty, 0.003 / std::sqrt(29), 1e-6);
        EXPECT_FALSE(figures.lowerBound);
    }
}

TEST(Poses, OutliersAreThoseFarFromTheMedian) {
    const struct {
        const char* name;
        int rows;
        double noise, far;
        std::size_t outliers;
    } cases[] = {{"noise", 40, 0.001, 0.004, 0},
                 {"far", 40, 0.001, 0.02, 1},
                 {"far from rows that are all the same", 20, 0, 0.001, 1},
                 {"too few rows", 4, 0.001, 1, 0}};
    for (const auto& row : cases) {
        kiv::simulator::Random random(2);
        PoseRows rows;
        for (int i = 1; i < row.rows; ++i)
            rows.add(rotationBy({row.noise * random.normal(), 5, 7}, false), i);
        rows.add(rotationBy({row.far, 5, 7}, false), row.rows);
        EXPECT_EQ(rows.leaveOutliersOut(), row.outliers) << row.name;
        EXPECT_EQ(rows.size(), static_cast<std::size_t>(row.rows) - row.outliers) << row.name;
    }
}

TEST(Poses, RotationsThatAreOpposedHaveNoMean) {
    PoseRows rows;
    for (const double rz : {0.0, 90.0, 180.0, -90.0})
        rows.add(rotationBy({0, 0, rz}, false), std::nullopt);
    EXPECT_FALSE(figuresOf(rows, false).hasMean);
}

// What the rows have in common does not become less by their number.
TEST(Poses, ReadingsPartAveragesNoiseAlone) {
    kiv::AngleUncertainty row{};
    row.contribution[at(kiv::Source::levelY)] = {0.3, 0, 0};
    row.contribution[at(kiv::Source::tiltOffsetY)] = {0.4, 0.2, 0};
    row.rounding = {0, 0, 0.9};
    row.reference = {0, 0, 0.1};
    ReadingsPart part;
    for (int i = 0; i < 9; ++i)
        part.add(row);
    const auto mean = part.ofMean();
    EXPECT_NEAR(mean[0], std::hypot(0.1, 0.4), 1e-12);
    EXPECT_NEAR(mean[1], 0.2, 1e-12);
    EXPECT_NEAR(mean[2], std::hypot(0.3, 0.1), 1e-12);
}

} // namespace
