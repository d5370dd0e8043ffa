#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include "KIVInterface/CKiv.h"
#include "sensor/SensorAccess.h"
#include "sensor/Update.h"
#include "tests/Allocations.h"
#include "tests/Matchers.h"
#include "tests/PreparedSensor.h"

namespace {

using namespace kiv;
using test::goodReading;
using test::prepare;

constexpr double identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};

bool sameBytes(const KIV_INFO& a, const KIV_INFO& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// What is left out of kiv verify's cases: whether level X is a ratio goes by the mode, not by the
// model, which is that of the first one.
TEST(Update, TheModeDecidesOnTheRatioOfTheLevels) {
    for (const int mode : {4, 5, 6, 7}) {
        CKiv sensor;
        prepare(sensor, mode == 5 ? 4 : 5);
        sensor.setMountMode(mode);
        KIV_RAWINFO raw = goodReading();
        raw.levelXRaw = 500;
        raw.levelYRaw = 2500;
        KIV_INFO info;
        sensor.updateKIVData(raw, info);
        EXPECT_FLOAT_EQ(info.levelX, mode == 5 || mode == 6 ? 0.2F : 500) << mode;
    }
}

TEST(Update, StatusOtherThanTwoCorrectsTheReadingsAlone) {
    for (const int mode : {4, 8}) { // in mode 4 the last matrix is not the identity
        CKiv sensor;
        prepare(sensor, mode);
        KIV_INFO info;
        double m[9];
        for (const int status : {1, 3, 0, -2}) {
            KIV_RAWINFO raw = goodReading();
            sensor.updateKIVData(raw, info);
            sensor.updateKIVData(raw, info);
            EXPECT_EQ(sensor.ReadMatrix(m), KIV_OK);
            raw.status = status;
            std::memset(static_cast<void*>(&info), 0x5a, sizeof info);
            sensor.updateKIVData(raw, info);
            KIV_INFO expected{};
            expected.azimuth = 10;
            expected.elevation = -12;
            expected.levelX = 1.5F;
            expected.levelY = -0.75F;
            EXPECT_TRUE(sameBytes(info, expected)) << mode << ' ' << status;
            EXPECT_EQ(sensor.ReadMatrix(m), KIV_NO_TRANSFORM) << mode << ' ' << status;
            EXPECT_TRUE(test::isNear(m, identity, 0)) << mode << ' ' << status;
        }
    }
}

// The limit of the metric and a blocked one are among kiv verify's cases.
TEST(Update, CapturesTheReferenceOnceWhenItQualifies) {
    CKiv sensor;
    prepare(sensor, 4);
    const std::pair<float, UpdateOutcome> rows[] = {
        {std::numeric_limits<float>::quiet_NaN(), UpdateOutcome::noReference},
        {0.1F, UpdateOutcome::reference},
        {0.9F, UpdateOutcome::oriented},
    };
    for (const auto& [metric, outcome] : rows) {
        KIV_RAWINFO raw = goodReading();
        raw.refMetric = metric;
        raw.refBlocked = outcome == UpdateOutcome::oriented;
        raw.unused1 = raw.unused2 = 12345;
        KIV_INFO info;
        EXPECT_EQ(SensorUpdate::run(sensor, raw, info), outcome) << metric;
        EXPECT_EQ(info.rz != 0, outcome == UpdateOutcome::oriented) << metric;
        double m[9];
        EXPECT_EQ(sensor.ReadMatrix(m), KIV_OK) << metric;
        EXPECT_EQ(bool(test::isNear(m, identity, 0)), info.rz == 0) << metric;
    }
}

TEST(Update, WhatTheModelFailsOnIsNoReference) {
    CKiv sensor;
    prepare(sensor, 4);
    KIV_RAWINFO inTheHorizon = goodReading();
    inTheHorizon.vector[2] = 0;
    KIV_INFO info;
    EXPECT_EQ(SensorUpdate::run(sensor, inTheHorizon, info), UpdateOutcome::modelFailed);
    EXPECT_EQ(SensorUpdate::run(sensor, goodReading(), info), UpdateOutcome::reference);
}

TEST(Update, DestroyKeepsReferenceAndCorrections) {
    CKiv sensor;
    const float azimuth[] = {0, 0.5F};
    prepare(sensor, 4);
    const float elevation[] = {0, -0.25F};
    sensor.setAzimuthComp(1, azimuth);
    sensor.setElevationComp(1, elevation);
    KIV_INFO info;
    sensor.updateKIVData(goodReading(), info);
    sensor.Destroy();
    prepare(sensor, 4);
    EXPECT_EQ(sensor.prm, nullptr); // setMountMode makes none
    EXPECT_EQ(SensorUpdate::run(sensor, goodReading(), info), UpdateOutcome::oriented);
    EXPECT_EQ(info.azimuth, 10.5F);
    EXPECT_EQ(info.elevation, -12.25F);
}

TEST(Update, ScaleFactorsReachTheModelWithTheNextMode) {
    CKiv sensor;
    prepare(sensor, 6);
    KIV_INFO before, after;
    sensor.updateKIVData(goodReading(), before);
    sensor.updateKIVData(goodReading(), before);
    const float turned[] = {30};
    sensor.setScaleFactors(turned, 1);
    sensor.updateKIVData(goodReading(), after);
    EXPECT_TRUE(sameBytes(after, before));
    sensor.setMountMode(6);
    sensor.updateKIVData(goodReading(), after);
    EXPECT_FALSE(sameBytes(after, before));
}

// Whole matrices are those of kiv verify's cases. Here ones of order 2, packed into the front of
// the one before.
TEST(Update, ComposesTheResultWithMatricesOfLowerOrder) {
    CKiv sensor;
    prepare(sensor, 4);
    double machine[9];
    double local[9];
    rotation_z(machine, 0.5);
    rotation_x(local, -0.3);
    sensor.setMachineMatrix(machine, 3);
    sensor.setLocalMatrix(local, 3);
    KIV_INFO info;
    sensor.updateKIVData(goodReading(), info);
    double packed[] = {2, 0.5, -1, 3};
    sensor.setLocalMatrix(packed, 2);
    sensor.setMachineMatrix(packed, 2);
    std::copy_n(packed, 4, local);
    std::copy_n(packed, 4, machine);
    double result[9];
    double expected[9];
    for (const bool inMachine : {false, true}) { // locally nothing has moved since the reference
        sensor.setMcsFlag(inMachine);
        sensor.updateKIVData(goodReading(), info);
        sensor.ReadMatrix(result);
        MatrixMultiply(inMachine ? machine : local,
                       inMachine ? SensorAccess::transform(sensor)
                                 : SensorAccess::localInverse(sensor),
                       3, 3, 3, expected);
        EXPECT_TRUE(test::isNear(result, expected, 1e-13)) << inMachine;
    }
}

// The output replaces the parameters, in the order x, z, y, and the next mode setting hands it to
// the model.
TEST(Update, ThreeVectorModesKeepTheirOutput) {
    for (const int mode : {7, 8, 9, 10}) {
        CKiv sensor;
        prepare(sensor, mode);
        const float qvc[] = {10, 20, 30, 0, 0, 0.125F};
        sensor.setQVCParameters(qvc, 6);
        sensor.setMountMode(mode);
        KIV_INFO info;
        sensor.updateKIVData(goodReading(), info);
        EXPECT_EQ(info.rz, 0) << mode;
        EXPECT_NE(info.qvc[0], 0) << mode; // already with the reference
        sensor.updateKIVData(goodReading(), info);
        double result[9];
        EXPECT_EQ(sensor.ReadMatrix(result), KIV_OK) << mode;
        EXPECT_TRUE(test::isNear(result, identity, 0)) << mode;
        const float* stored = SensorAccess::qvcParameters(sensor);
        EXPECT_TRUE(info.qvc[0] == stored[0] && info.qvc[1] == stored[2] && info.qvc[2] == stored[1]
                    && stored[5] == 0) // all six are the output's
            << mode;
        const float before = info.qvc[0];
        sensor.updateKIVData(goodReading(), info);
        EXPECT_EQ(info.qvc[0], before) << mode;
        sensor.setMountMode(mode);
        sensor.updateKIVData(goodReading(), info);
        EXPECT_NE(info.qvc[0], before) << mode;
    }
}

TEST(Update, ModeElevenReportsTheQvcParametersOfAPendulum) {
    CKiv sensor;
    prepare(sensor, 11);
    KIV_INFO info;
    sensor.updateKIVData(goodReading(), info);
    sensor.updateKIVData(goodReading(), info);
    EXPECT_EQ(info.qvc[0], 10);
    EXPECT_EQ(info.qvc[1], 30);
    EXPECT_EQ(info.qvc[2], 20);
    const double* t = SensorAccess::transform(sensor);
    EXPECT_NEAR(info.rz, std::atan2(-t[1], t[0]) * 57.29577951308, 2e-5);
    CKiv below;
    prepare(below, 4);
    below.updateKIVData(goodReading(), info);
    below.updateKIVData(goodReading(), info);
    EXPECT_EQ(info.qvc[0], 0);
}

TEST(Update, WithoutModelOrTiltTableHasNoOrientation) {
    const float knots[] = {0, 1, 0, 0, 0};
    const double spline[8] = {};
    CKiv noModel;
    CKiv noTable;
    CKiv onlyX;
    CKiv onlyY;
    onlyX.setLevelXComp(2, knots, spline);
    onlyY.setLevelYComp(2, knots, spline);
    for (CKiv* sensor : {&noTable, &onlyX, &onlyY}) {
        sensor->setTiltOffset({0.5F, 0.5F});
        sensor->setThermalFactor({0, 2, 0, 2});
        sensor->setMountMode(5); // a model that would not fail by itself
    }
    for (CKiv* sensor : {&noModel, &noTable, &onlyX, &onlyY}) {
        KIV_INFO info;
        EXPECT_EQ(SensorUpdate::run(*sensor, goodReading(), info), UpdateOutcome::modelFailed);
        EXPECT_EQ(info.azimuth, 10);
        // A missing curve counts as 0.
        EXPECT_EQ(info.levelX, sensor == &noModel ? 0 : -1);
        EXPECT_EQ(info.levelY, sensor == &noModel ? 0 : -1);
        double m[9];
        EXPECT_EQ(sensor->ReadMatrix(m), KIV_OK);
        EXPECT_TRUE(test::isNear(m, identity, 0));
    }
}

TEST(Update, CopyComputesTheSameAndStandsAlone) {
    for (int mode = 1; mode <= 10; ++mode) {
        CKiv sensor;
        prepare(sensor, mode);
        const float azimuth[] = {0, 0.5F};
        const float elevation[] = {0, -0.25F};
        double local[9];
        rotation_x(local, 0.4);
        sensor.setAzimuthComp(1, azimuth);
        sensor.setElevationComp(1, elevation);
        sensor.setEncoderOffset({0.1F, -0.2F});
        sensor.setLocalMatrix(local, 3);
        sensor.setMcsFlag(false);
        KIV_RAWINFO raw = goodReading();
        KIV_INFO info;
        sensor.updateKIVData(raw, info); // the reference goes along
        raw.azimuthRaw = 25;
        sensor.updateKIVData(raw, info);
        ASSERT_EQ(sensor.prm->ReadCalibrationFile(KIV_EXAMPLES, 5), KIV_OK);

        CKiv copy(sensor);
        float ofRecord = 0;
        EXPECT_EQ(copy.prm->getADMOffset(ofRecord), KIV_OK);
        const auto outputOf = [](const CKiv& each) { // what the model last gave
            std::array<float, 6> output{};
            const_cast<CKivModel*>(SensorAccess::model(each))->GetQVCMatrix(output.data(), 6);
            return output;
        };
        EXPECT_EQ(outputOf(copy), outputOf(sensor)) << mode;
        KIV_INFO fromCopy;
        double m[9];
        double ofCopy[9];
        sensor.ReadMatrix(m);
        EXPECT_EQ(copy.ReadMatrix(ofCopy), KIV_OK) << mode;
        EXPECT_TRUE(test::isNear(ofCopy, m, 0)) << mode;
        CKiv pushed(sensor);
        for (CKiv* each : {&copy, &pushed}) {
            if (each == &pushed) { // scale factors, QVC and levels went along too
                sensor.setMountMode(mode);
                pushed.setMountMode(mode);
            }
            sensor.updateKIVData(raw, info);
            each->updateKIVData(raw, fromCopy);
            EXPECT_TRUE(sameBytes(info, fromCopy)) << mode;
            EXPECT_NE(info.rz, 0) << mode;
        }

        EXPECT_NE(SensorAccess::levelXTable(copy), SensorAccess::levelXTable(sensor));
        EXPECT_NE(copy.prm, sensor.prm);
        sensor.setMcsFlag(true);
        sensor.Destroy();
        copy.updateKIVData(raw, fromCopy);
        EXPECT_TRUE(mode >= 7 || sameBytes(info, fromCopy)) << mode;
        const CKiv ofDestroyed(sensor);
        EXPECT_EQ(ofDestroyed.prm, nullptr);
    }
}

TEST(Update, AllocatesNothing) {
    for (int mode = 1; mode <= 10; ++mode) {
        CKiv sensor;
        prepare(sensor, mode);
        const float table[] = {0, 0.5F, 90, 0.25F};
        sensor.setAzimuthComp(2, table);
        KIV_INFO info;
        double m[9];
        const std::size_t before = test::allocationCount();
        for (const bool machine : {true, false}) {
            sensor.setMcsFlag(machine);
            for (int i = 0; i < 3; ++i)
                sensor.updateKIVData(goodReading(), info);
            sensor.ReadMatrix(m);
        }
        EXPECT_EQ(test::allocationCount(), before) << mode;
    }
}

} // namespace
