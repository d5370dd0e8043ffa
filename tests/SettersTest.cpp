#include "KIVInterface/CKiv.h"

#include <algorithm>
#include <array>
#include <limits>
#include <new>

#include <gtest/gtest.h>

#include "sensor/SensorAccess.h"
#include "tests/Allocations.h"

namespace {

using kiv::SensorAccess;

constexpr float floats[32] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
double doubles[64] = {2, 0, 0, 0, 4, 0, 0, 0, 5};
constexpr int tooMany = std::numeric_limits<int>::max();

TEST(Setters, RefuseBadArgumentsAndStoreNothing) {
    CKiv sensor;
    ASSERT_EQ(sensor.setLevelXComp(4, floats, doubles), KIV_OK);
    ASSERT_EQ(sensor.setLevel1Parameters(floats + 1, 7), KIV_OK);
    ASSERT_EQ(sensor.setAzimuthComp(2, floats), KIV_OK);
    ASSERT_EQ(sensor.setLocalMatrix(doubles, 3), KIV_OK);
    ASSERT_EQ(sensor.setQVCParameters(floats + 1, 6), KIV_OK);
    const struct {
        const char* name;
        int code;
    } rows[] = {
        {"azimuth null", sensor.setAzimuthComp(2, nullptr)},
        {"azimuth negative", sensor.setAzimuthComp(-1, floats)},
        {"azimuth huge", sensor.setAzimuthComp(tooMany, floats)},
        {"elevation null", sensor.setElevationComp(0, nullptr)},
        {"elevation negative", sensor.setElevationComp(-1, floats)},
        {"level X no table", sensor.setLevelXComp(4, nullptr, doubles)},
        {"level X no spline", sensor.setLevelXComp(4, floats, nullptr)},
        {"level X empty", sensor.setLevelXComp(0, floats, doubles)},
        {"level X huge", sensor.setLevelXComp(tooMany, floats, doubles)},
        {"level Y no table", sensor.setLevelYComp(4, nullptr, doubles)},
        {"level Y empty", sensor.setLevelYComp(0, floats, doubles)},
        {"level 1 null", sensor.setLevel1Parameters(nullptr, 0)},
        {"level 1 too many", sensor.setLevel1Parameters(floats, 8)},
        {"level 2 null", sensor.setLevel2Parameters(nullptr, 7)},
        {"level 2 too many", sensor.setLevel2Parameters(floats, 8)},
        {"QVC null", sensor.setQVCParameters(nullptr, 6)},
        {"QVC too many", sensor.setQVCParameters(floats, 7)},
        {"factors null", sensor.setScaleFactors(nullptr, 8)},
        {"factors too many", sensor.setScaleFactors(floats, 9)},
        {"local null", sensor.setLocalMatrix(nullptr, 3)},
        {"local order 0", sensor.setLocalMatrix(doubles, 0)},
        {"local order 4", sensor.setLocalMatrix(doubles, 4)},
        {"machine null", sensor.setMachineMatrix(nullptr, 3)},
        {"machine order 4", sensor.setMachineMatrix(doubles, 4)},
        {"machine negative", sensor.setMachineMatrix(doubles, -3)},
        {"vector null", sensor.setKnownVector(nullptr)},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.code, KIV_BAD_ARGUMENT) << row.name;
    EXPECT_EQ(SensorAccess::levelXCount(sensor), 4);
    EXPECT_TRUE(std::equal(floats + 1, floats + 8, SensorAccess::level1Parameters(sensor)));
    EXPECT_TRUE(std::equal(floats + 1, floats + 7, SensorAccess::qvcParameters(sensor)));
    EXPECT_EQ(SensorAccess::azimuthComp(sensor)[3], 3);
    EXPECT_EQ(SensorAccess::localInverse(sensor)[0], 0.5);
}

TEST(Setters, CopyWhatTheCountAsksFor) {
    CKiv sensor;
    EXPECT_EQ(sensor.setLevel1Parameters(floats + 1, 7), KIV_OK);
    EXPECT_EQ(sensor.setLevel1Parameters(floats + 10, 3), KIV_OK);
    EXPECT_EQ(sensor.setLevel1Parameters(floats, 0), KIV_OK);
    EXPECT_EQ(sensor.setLevel1Parameters(floats, -5), KIV_OK);
    const float expected[] = {10, 11, 12, 4, 5, 6, 7};
    EXPECT_TRUE(std::equal(expected, expected + 7, SensorAccess::level1Parameters(sensor)));

    EXPECT_EQ(sensor.setLevelXComp(4, floats, doubles), KIV_OK);
    EXPECT_TRUE(std::equal(floats, floats + 7, SensorAccess::levelXTable(sensor)));
    EXPECT_TRUE(std::equal(doubles, doubles + 16, SensorAccess::levelXSpline(sensor)));

    EXPECT_EQ(sensor.setEncoderOffset({1.5F, -0.25F}), KIV_OK);
    EXPECT_EQ(SensorAccess::encoderOffset(sensor)[0], 1.5);
    EXPECT_EQ(SensorAccess::encoderOffset(sensor)[1], -0.25);
}

TEST(Setters, TablesShrinkInPlaceAndGrowIntoNewStorage) {
    CKiv sensor;
    ASSERT_EQ(sensor.setAzimuthComp(5, floats), KIV_OK);
    const float* storage = SensorAccess::azimuthComp(sensor);
    ASSERT_EQ(sensor.setAzimuthComp(3, floats + 4), KIV_OK);
    EXPECT_EQ(SensorAccess::azimuthComp(sensor), storage);
    EXPECT_TRUE(std::equal(floats + 4, floats + 10, storage));
    ASSERT_EQ(sensor.setAzimuthComp(8, floats), KIV_OK);
    EXPECT_TRUE(std::equal(floats, floats + 16, SensorAccess::azimuthComp(sensor)));
    ASSERT_EQ(sensor.setLevelYComp(2, floats, doubles), KIV_OK);
    ASSERT_EQ(sensor.setLevelYComp(9, floats, doubles), KIV_OK);
}

TEST(Setters, RefusedMemoryLeavesAnEncoderTable) {
    CKiv sensor;
    ASSERT_EQ(sensor.setAzimuthComp(5, floats), KIV_OK);
    for (std::size_t n = 1;; ++n) {
        kiv::test::failAllocation(n);
        try {
            EXPECT_EQ(sensor.setAzimuthComp(3, floats + 4), KIV_OK);
            break;
        } catch (const std::bad_alloc&) {
            EXPECT_TRUE(std::equal(floats, floats + 10, SensorAccess::azimuthComp(sensor))) << n;
        }
    }
    kiv::test::failAllocation(0);
}

TEST(Setters, LocalMatrixIsInvertedAndSingularOneKept) {
    CKiv sensor;
    ASSERT_EQ(sensor.setLocalMatrix(doubles, 3), KIV_OK);
    const double* inverse = SensorAccess::localInverse(sensor);
    EXPECT_EQ(inverse[0], 0.5);
    EXPECT_EQ(inverse[4], 0.25);
    EXPECT_EQ(inverse[8], 0.2);
    const double singular[9] = {1, 2, 3, 2, 4, 6, 0, 0, 1};
    EXPECT_EQ(sensor.setLocalMatrix(singular, 3), KIV_OK);
    EXPECT_TRUE(std::equal(singular, singular + 9, inverse));
    // Orders 1 and 2 store packed; the rest stays.
    const double small[] = {0, 2, 4, 0};
    EXPECT_EQ(sensor.setLocalMatrix(small, 2), KIV_OK);
    const double expected[9] = {0, 0.25, 0.5, 0, 4, 6, 0, 0, 1};
    EXPECT_TRUE(std::equal(expected, expected + 9, inverse));
}

} // namespace
