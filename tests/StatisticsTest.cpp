#include "host/summary/Statistics.h"

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/base/Distributions.h"
#include "host/summary/AllanDeviation.h"
#include "host/summary/Drift.h"
#include "host/summary/Quantile.h"
#include "host/summary/SpareReadings.h"

namespace {

using kiv::host::Quantile;
using kiv::host::Statistics;

struct Case {
    const char* name;
    std::vector<double> values;
    bool allTheWayRound;
    double mean, deviation, least, largest;
};

// Expected values by hand: of the values unwrapped about their mean.
const Case cases[] = {
    {"nothing near the seam: the ordinary ones", {0, 0, 90}, false, 30, std::sqrt(2700), 0, 90},
    {"about the seam", {173, -173, 179, -179}, false, 180, std::sqrt(200.0 / 6), 173, -173},
    {"about the seam, mean beyond it", {178, -170}, false, -176, std::sqrt(72), 178, -170},
    {"mean behind the highest", {171, 177, -171}, false, 179, std::sqrt(84), 171, -171},
    {"encoder angles, mean behind the highest", {356, 3, 352}, false, 357, std::sqrt(31), 352, 3},
    {"encoder angles about their own seam", {359, 4, 3}, false, 2, std::sqrt(7), 359, 4},
    {"encoder angles beyond half a turn", {200, 210}, false, 205, std::sqrt(50), 200, 210},
    {"alone", {-180}, false, -180, 0, -180, -180},
    {"unwrapped the shorter way", {100, 100, 100, -100}, false, 140, 80, 100, -100},
};

TEST(Statistics, TakesAnglesAsDirections) {
    for (const Case& row : cases) {
        Statistics statistics;
        for (const double value : row.values)
            statistics.add(value);
        const Statistics::Figures found = statistics.figures();
        EXPECT_EQ(found.count, row.values.size()) << row.name;
        EXPECT_EQ(found.allTheWayRound, row.allTheWayRound) << row.name;
        EXPECT_NEAR(found.mean, row.mean, 1e-9) << row.name;
        EXPECT_NEAR(found.deviation, row.deviation, 1e-9) << row.name;
        EXPECT_EQ(found.least, row.least) << row.name;
        EXPECT_EQ(found.largest, row.largest) << row.name;
    }
}

TEST(Statistics, NoMeanOfWhatGoesAllTheWayRound) {
    Statistics turn, swing, linear(Statistics::Kind::linear);
    for (double angle = -180; angle < 180; angle += 0.5) {
        turn.add(angle);
        swing.add(angle / 2);
        linear.add(angle);
    }
    EXPECT_TRUE(turn.figures().allTheWayRound);
    EXPECT_FALSE(swing.figures().allTheWayRound);
    EXPECT_EQ(linear.figures().least, -180);
}

TEST(Statistics, QuantileIsWithinATenthOfAPercent) {
    Quantile quantile;
    EXPECT_EQ(quantile.at(0.95), 0);
    for (int i = 1; i <= 1000; ++i)
        quantile.add(i * 1e-6);
    EXPECT_GE(quantile.at(0.95), 950e-6);
    EXPECT_LE(quantile.at(0.95), 950e-6 * 1.001);
}

// Expected values: the GNU Scientific Library's.
TEST(Distributions, QuantilesAndTheirProbabilities) {
    using namespace kiv::host;
    const struct {
        bool student;
        double probability, degrees, value;
    } rows[] = {
        {true, 0.975, 1, 12.7062047362},     {true, 0.9995, 3.7, 9.47424013712},
        {true, 0.4, 10000, -0.253353843446}, {false, 0.025, 10, 3.24697278024},
        {false, 0.975, 99, 128.421988645},   {false, 0.5, 0.5, 0.0873476047057},
    };
    for (const auto& row : rows) {
        const auto quantile = row.student ? studentQuantile : chiSquaredQuantile;
        const auto probability = row.student ? studentProbability : chiSquaredProbability;
        EXPECT_NEAR(quantile(row.probability, row.degrees) / row.value, 1, 1e-9) << row.value;
        EXPECT_NEAR(probability(row.value, row.degrees), row.probability, 1e-9) << row.value;
    }
}

// White noise, on which a line lies: one in ten thousand of the slope's uncertainties would be this
// far off.
TEST(Drift, FindsALineAndItsUncertaintyUnderNoise) {
    std::mt19937 random(1);
    std::normal_distribution<double> noise(0, 0.01);
    kiv::host::Drift drift;
    kiv::host::AllanDeviation allan;
    for (int i = 0; i < 7200; ++i) {
        const double hours = i / 3600.0;
        drift.add(hours, 0.02 * hours + noise(random), 20 + hours);
        allan.add(noise(random));
    }
    const auto found = drift.figures();
    ASSERT_TRUE(found);
    const double expected = 0.01 / std::sqrt(7200 * 4 / 12.0);
    EXPECT_NEAR(found->slope, 0.02, 4 * expected);
    EXPECT_NEAR(found->uncertainty / expected, 1, 0.35);
    EXPECT_NEAR(*found->withTemperature, 0.755, 0.03);
    for (const auto& [values, deviation] : allan.points())
        if (values <= 64) {
            EXPECT_NEAR(deviation * std::sqrt(static_cast<double>(values)), 0.01, 0.0015) << values;
        }
}

// Values of a mean and a spread to both sides, with what the uncertainties expect of each.
TEST(SpareReadings, SpeakAgainstAMeanOrASizeThatIsOff) {
    const struct {
        int rows;
        double mean, spread, expected;
        const char* objection; // its start
    } rows[] = {
        {9, 0.02, 0, 0, ""},
        {10, 0.02, 0, 0, "expected a mean of 0, found 0.020000 degrees in 10 rows"},
        {10, -0.02, 0.011, 0, "expected a mean of 0, found -0.020000"},
        {10, -0.02, 0.013, 0, ""},
        {1000, 0.0049, 0.001, 0, ""},
        {100, 0, 0.016, 0.01,
         "expected 0.010000 degrees by the uncertainties, found 0.016000 in 100"},
        {98, 0, 0.016, 0.01, ""},
        {100, 0, 0.014, 0.01, ""},
        {100, 0, 0.016, 0, ""},
    };
    for (const auto& row : rows) {
        kiv::host::SpareReadings spare;
        kiv::RowTrust trust;
        spare.add(trust, 1); // has none
        for (int i = 0; i < row.rows; ++i) {
            trust.spare = row.mean + (i % 2 == 0 ? row.spread : -row.spread);
            trust.spareDeviation = row.expected;
            spare.add(trust, static_cast<std::size_t>(i) + 2);
        }
        const std::string objection = spare.objection();
        EXPECT_TRUE(objection.starts_with(row.objection)) << objection;
        EXPECT_EQ(objection.empty(), !*row.objection) << objection;
        EXPECT_EQ(spare.rows(), static_cast<std::size_t>(row.rows));
        EXPECT_DOUBLE_EQ(spare.largest(), std::abs(row.mean) + row.spread);
    }
}

} // namespace
