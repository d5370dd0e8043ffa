#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include "KIVInterface/CKiv.h"
#include "sensor/OrientationAngles.h"
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

TEST(Update, CorrectsTheTilts) {
    const struct {
        const char* name;
        int mode;
        float x, y;
        F_VECTOR2 offset;
        F_VECTOR4 thermal;
        float levelX, levelY;
    } rows[] = {
        {"plain", 4, 3, -4, {0, 0}, {0, 1, 0, 1}, 3, -4},
        {"offsets", 4, 3, -4, {0.5F, -1}, {0, 1, 0, 1}, 2.5F, -3},
        {"thermal gain", 4, 3, -4, {1, 0}, {0.0625F, 0.25F, 0, 2}, 3, -8},
        {"ratio needs a large denominator", 5, 500, 1000, {0, 0}, {0, 1, 0, 1}, 0, 1000},
        {"ratio at the threshold", 5, 500, 2000, {0, 0}, {0, 1, 0, 1}, 0, 2000},
        {"ratio", 5, 500, -2500, {0, 0}, {0, 1, 0, 1}, -0.2F, -2500},
        {"ratio, even mode", 6, 500, 2500, {0, 0}, {0, 1, 0, 1}, 0.2F, 2500},
        {"no ratio in mode 1", 1, 3, 1000, {0, 0}, {0, 1, 0, 1}, 3, 1000},
        {"no ratio in mode 7", 7, 3, 2500, {0, 0}, {0, 1, 0, 1}, 3, 2500},
    };
    for (const auto& row : rows) {
        CKiv sensor;
        prepare(sensor, row.mode == 5 ? 4 : 5); // the mode counts, not the model of the first one
        sensor.setMountMode(row.mode);
        sensor.setTiltOffset(row.offset);
        sensor.setThermalFactor(row.thermal);
        KIV_RAWINFO raw = goodReading();
        raw.temperature = 20;
        raw.levelXRaw = row.x;
        raw.levelYRaw = row.y;
        KIV_INFO info;
        sensor.updateKIVData(raw, info);
        EXPECT_FLOAT_EQ(info.levelX, row.levelX) << row.name;
        EXPECT_FLOAT_EQ(info.levelY, row.levelY) << row.name;
    }
}

TEST(Update, CorrectsTheEncodersWithTheirOwnTables) {
    CKiv sensor;
    prepare(sensor, 4);
    const float azimuth[] = {0, 0.5F, 180, 0.5F};
    const float elevation[] = {0, -0.25F};
    sensor.setAzimuthComp(2, azimuth);
    sensor.setElevationComp(1, elevation);
    KIV_INFO info;
    sensor.updateKIVData(goodReading(), info);
    EXPECT_FLOAT_EQ(info.azimuth, 10.5F);
    EXPECT_FLOAT_EQ(info.elevation, -12.25F);
    sensor.setAzimuthComp(0, azimuth); // takes the correction away
    sensor.updateKIVData(goodReading(), info);
    EXPECT_FLOAT_EQ(info.azimuth, 10);
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

TEST(Update, CapturesTheReferenceOnceWhenItQualifies) {
    CKiv sensor;
    prepare(sensor, 4);
    const struct {
        const char* name;
        float metric;
        bool blocked;
        UpdateOutcome outcome;
    } rows[] = {
        {"above the limit", std::nextafter(0.4F, 1.0F), false, UpdateOutcome::noReference},
        {"not a number", std::numeric_limits<float>::quiet_NaN(), false,
         UpdateOutcome::noReference},
        {"blocked", 0.1F, true, UpdateOutcome::noReference},
        {"at the limit", 0.4F, false, UpdateOutcome::reference},
        {"after the capture", 0.9F, true, UpdateOutcome::oriented},
    };
    for (const auto& row : rows) {
        KIV_RAWINFO raw = goodReading();
        raw.refMetric = row.metric;
        raw.refBlocked = row.blocked;
        raw.unused1 = raw.unused2 = 12345;
        KIV_INFO info;
        EXPECT_EQ(SensorUpdate::run(sensor, raw, info), row.outcome) << row.name;
        const bool oriented = row.outcome == UpdateOutcome::oriented;
        EXPECT_EQ(info.rz != 0, oriented) << row.name;
        double m[9];
        EXPECT_EQ(sensor.ReadMatrix(m), KIV_OK) << row.name;
        EXPECT_EQ(bool(test::isNear(m, identity, 0)), !oriented) << row.name;
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
    sensor.setAzimuthComp(1, azimuth);
    KIV_INFO info;
    sensor.updateKIVData(goodReading(), info);
    sensor.Destroy();
    prepare(sensor, 4);
    EXPECT_EQ(sensor.prm, nullptr); // setMountMode makes none
    EXPECT_EQ(SensorUpdate::run(sensor, goodReading(), info), UpdateOutcome::oriented);
    EXPECT_EQ(info.azimuth, 10.5F);
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

TEST(Update, ComposesTheResultInMachineOrLocalCoordinates) {
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
    std::array<double, 9> reference;
    std::copy_n(SensorAccess::transform(sensor), 9, reference.begin());

    KIV_RAWINFO turned = goodReading();
    turned.azimuthRaw = 40;
    turned.levelYRaw = 2;
    sensor.updateKIVData(turned, info);
    double result[9];
    double expected[9];
    const double* t = SensorAccess::transform(sensor);
    MatrixMultiply(machine, t, 3, 3, 3, expected);
    sensor.ReadMatrix(result);
    EXPECT_TRUE(test::isNear(result, expected, 0));

    // result = L T T0^-1 L^-1: the motion since the reference, for rotations the transposes invert.
    const std::array<double, 9> t0 = reference;
    sensor.setMcsFlag(false);
    sensor.updateKIVData(turned, info);
    sensor.ReadMatrix(result);
    const auto times = [](const std::array<double, 9>& a, const std::array<double, 9>& b) {
        std::array<double, 9> c;
        MatrixMultiply(a.data(), b.data(), 3, 3, 3, c.data());
        return c;
    };
    const auto transposed = [](std::array<double, 9> a) {
        MatrixTransform(a.data(), 3, 3);
        return a;
    };
    std::array<double, 9> l;
    std::array<double, 9> now;
    std::copy_n(local, 9, l.begin());
    std::copy_n(SensorAccess::transform(sensor), 9, now.begin());
    const auto motion = times(times(l, now), times(transposed(t0), transposed(l)));
    EXPECT_TRUE(test::isNear(result, motion.data(), 1e-13));
    const OrientationAngles angles = localAngles(motion.data());
    EXPECT_NEAR(info.rx, angles.rx, 1e-5);
    EXPECT_NEAR(info.ry, angles.ry, 1e-5);
    EXPECT_NEAR(info.rz, angles.rz, 1e-5);

    sensor.updateKIVData(goodReading(), info);
    sensor.ReadMatrix(result);
    EXPECT_TRUE(test::isNear(result, identity, 1e-14));
    EXPECT_NEAR(info.rx, 0, 1e-10);
    EXPECT_NEAR(info.ry, 0, 1e-10);
    EXPECT_NEAR(info.rz, 0, 1e-10);

    // Matrices of order 2 are packed into the front, the rest stays.
    double packed[] = {2, 0.5, -1, 3};
    sensor.setLocalMatrix(packed, 2);
    sensor.updateKIVData(goodReading(), info);
    sensor.ReadMatrix(result);
    std::copy_n(packed, 4, local);
    MatrixMultiply(local, SensorAccess::localInverse(sensor), 3, 3, 3, expected);
    EXPECT_TRUE(test::isNear(result, expected, 1e-13));
    sensor.setMachineMatrix(packed, 2);
    sensor.setMcsFlag(true);
    sensor.updateKIVData(goodReading(), info);
    sensor.ReadMatrix(result);
    std::copy_n(packed, 4, machine);
    MatrixMultiply(machine, SensorAccess::transform(sensor), 3, 3, 3, expected);
    EXPECT_TRUE(test::isNear(result, expected, 0));
}

TEST(Update, ThreeVectorModesReportTheModelsMatrixAndQvc) {
    for (const int mode : {7, 8, 9, 10}) {
        CKiv sensor;
        prepare(sensor, mode);
        const float qvc[] = {10, 20, 30, 0, 0, 0.125F};
        sensor.setQVCParameters(qvc, 6);
        sensor.setMountMode(mode);
        KIV_INFO first;
        KIV_INFO second;
        sensor.updateKIVData(goodReading(), first);
        EXPECT_EQ(first.rz, 0) << mode;
        EXPECT_NE(first.qvc[0], 0) << mode; // already with the reference
        KIV_RAWINFO turned = goodReading();
        turned.azimuthRaw = 40;
        sensor.updateKIVData(turned, second);
        const double* t = SensorAccess::transform(sensor);
        EXPECT_NEAR(second.rz, std::atan2(-t[1], t[0]) * 57.29577951308, 2e-5) << mode;
        double result[9];
        EXPECT_EQ(sensor.ReadMatrix(result), KIV_OK) << mode;
        EXPECT_TRUE(test::isNear(result, identity, 0)) << mode;

        // The output has replaced the parameters, in the order x, z, y, and the next mode setting
        // hands it to the model.
        const float* stored = SensorAccess::qvcParameters(sensor);
        EXPECT_EQ(second.qvc[0], stored[0]);
        EXPECT_EQ(second.qvc[1], stored[2]);
        EXPECT_EQ(second.qvc[2], stored[1]);
        EXPECT_EQ(stored[5], 0); // all six are the output's
        EXPECT_NEAR(std::hypot(second.qvc[0], second.qvc[1], second.qvc[2]), std::hypot(10, 20, 30),
                    1e-3);
        const float before = second.qvc[0];
        sensor.updateKIVData(turned, second);
        EXPECT_EQ(second.qvc[0], before) << mode;
        sensor.setMountMode(mode);
        sensor.updateKIVData(turned, second);
        EXPECT_NE(second.qvc[0], before) << mode;
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

TEST(Update, LevelsOutsideTheirTablesReachTheTwoLevelModel) {
    CKiv sensor;
    prepare(sensor, 9);
    KIV_INFO info;
    KIV_RAWINFO raw = goodReading();
    EXPECT_EQ(SensorUpdate::run(sensor, raw, info), UpdateOutcome::reference);
    raw.levelXRaw = 20.1F;
    EXPECT_EQ(SensorUpdate::run(sensor, raw, info), UpdateOutcome::oriented);
    const KIV_INFO oneLevel = info;
    raw.levelXRaw = 25;
    sensor.updateKIVData(raw, info);
    EXPECT_EQ(info.rx, oneLevel.rx); // that level is not looked at
    raw.levelYRaw = -20.1F;
    EXPECT_EQ(SensorUpdate::run(sensor, raw, info), UpdateOutcome::modelFailed);
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
