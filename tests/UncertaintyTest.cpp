// How far a row can be trusted: what tests/proofs/TrustTrials.cpp does not try.

#include <array>
#include <cmath>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "sensor/SensorAccess.h"
#include "sensor/Update.h"
#include "simulator/Mounting.h"
#include "simulator/Random.h"
#include "tests/Allocations.h"
#include "tests/PreparedSensor.h"
#include "uncertainty/CalibrationPart.h"
#include "uncertainty/Propagation.h"
#include "uncertainty/Trust.h"

namespace {

using namespace kiv;
using simulator::Pose;
using test::prepare;

constexpr F_VECTOR4 wide{-19, 19, -19, 19}; // limits

// A sensor of test::prepare in a pose: its raw readings are the corrected ones.
struct Place {
    double pitch, roll;        // degrees
    double azimuth, elevation; // of the measured direction, degrees
    double yaw = 0;
    float level2 = -65; // azimuth of the second level's axis, degrees
};

KIV_RAWINFO readingsAt(int mode, const Place& place) {
    simulator::Mounting m;
    m.mode = mode;
    m.level1Parameters[3] = -30;
    m.level2Parameters[3] = place.level2;
    Pose pose;
    simulator::rotationFromYawPitchRoll(place.yaw, place.pitch,
                                        place.roll + (simulator::invertedIn(mode) ? 180 : 0),
                                        pose.rotation);
    const double azimuth = place.azimuth * simulator::radians;
    const double elevation = place.elevation * simulator::radians;
    pose.position[0] = 4000 * std::cos(elevation) * std::cos(azimuth);
    pose.position[1] = 4000 * std::cos(elevation) * std::sin(azimuth);
    pose.position[2] = 4000 * std::sin(elevation);
    simulator::CorrectedReadings readings;
    EXPECT_TRUE(simulator::readingsOf(m, pose, readings));
    KIV_RAWINFO raw = test::goodReading();
    for (int i = 0; i < 3; ++i)
        raw.vector[i] = static_cast<float>(pose.position[i]);
    raw.azimuthRaw = static_cast<float>(readings.azimuth);
    raw.elevationRaw = static_cast<float>(readings.elevation);
    raw.levelXRaw = static_cast<float>(readings.levelX);
    raw.levelYRaw = static_cast<float>(readings.levelY);
    return raw;
}

RowTrust judged(TrustJudge& judge, CKiv& sensor, const KIV_RAWINFO& raw) {
    KIV_INFO info;
    const UpdateOutcome outcome = SensorUpdate::run(sensor, raw, info);
    EXPECT_GE(outcome, UpdateOutcome::reference);
    return judge.judge(sensor, raw, info, outcome == UpdateOutcome::reference);
}

void turnedBy(CKiv& sensor, double degrees, double heightOfX = 1) {
    double m[9];
    rotation_y(m, degrees * simulator::radians);
    m[6] *= heightOfX, m[7] *= heightOfX, m[8] *= heightOfX;
    sensor.setMachineMatrix(m, 3);
}

TEST(Trust, EachReasonHasItsWord) {
    struct Row {
        const char* word;
        int mode;
        Place place;
        std::function<void(KIV_RAWINFO&)> disturb = [](KIV_RAWINFO&) {};
        std::function<void(CKiv&)> set = [](CKiv&) {};
        double ofElevation = 0; // uncertainty, degrees
        F_VECTOR4 limits = wide;
    };
    const auto as = [](KIV_RAWINFO&) {};
    const auto factor = [](int which, float value) {
        return [=](CKiv& s) {
            float factors[] = {0, 0, 0, 0, 1, 1, 1, 0};
            factors[which] = value;
            s.setScaleFactors(factors, 8);
        };
    };
    const auto level2 = [](float azimuth, float gain) {
        return [=](CKiv& s) {
            const float values[] = {0, 0, 0, azimuth, 0, 0, gain};
            s.setLevel2Parameters(values, 7);
        };
    };
    const auto elevationOffBy = [](double degrees) {
        return [=](CKiv& s) {
            s.setEncoderOffset({0, static_cast<float>(degrees * simulator::radians)});
        };
    };
    const auto flat = [](CKiv& s) {
        const float knots[] = {-20, 20, -20, 20, 0};
        const double spline[] = {0, 0.02, 0, 0, 0.8, 0.02, 0, 0};
        s.setLevelYComp(2, knots, spline);
    };
    const auto notFromX = [](CKiv& s) { s.setThermalFactor({0, 0, 0, 1}); };
    const Row rows[] = {
        {"good", 1, {3, 4, 90, 20}},
        {"two_signs", 1, {3, 4, 90, -20}},
        {"not_settled", 1, {15, 10, 100, 10}, as, factor(1, 1)},
        {"near_level_sight", 4, {3, 4, 60, 1e-8}},
        {"roll_unseen", 4, {3, 4, 60, 20}, as, factor(3, 85)},
        {"roll_unseen", 5, {0, 0, 60, 89.99}},
        {"outside_limits", 4, {0, 19.5, 0, 10}},
        {"outside_limits", 1, {3, 4, 90, 20}, as, [](CKiv&) {}, 0, {-1, 1, -19, 19}},
        {"outside_limits", 1, {3, 4, 90, 20}, as, [](CKiv&) {}, 0, {-19, 19, -1, 1}},
        {"outside_limits", 4, {3, 4, 60, 20}, as, [](CKiv&) {}, 0, {-19, 19, -1, 1}},
        {"good", 4, {3, 4, 60, 20}, as, [](CKiv&) {}, 0, {-1, 1, -19, 19}},
        {"mirror_near", 8, {15, 9, 0, 60}},
        {"mirror_near", 8, {17, 17, -20, 60}}, // the result is the mirrored one
        {"good", 8, {5, 3, 0, 45}},
        {"levels_disagree", 10, {3, 4, 60, 20}, [](KIV_RAWINFO& raw) { raw.levelXRaw += 0.2F; }},
        {"good", 10, {3, 4, 60, 20}, [](KIV_RAWINFO& raw) { raw.levelXRaw += 0.02F; }},
        {"outside_limits", 10, {3, 4, 60, 20}, [](KIV_RAWINFO& raw) { raw.levelXRaw = 20.1F; }},
        {"seam", 9, {3, 1e-4, 20, 20}, [](KIV_RAWINFO& raw) { raw.levelXRaw += 0.01F; }},
        {"mirror_near", 10, {17, 17, -20, 60, 0, -30.1F}, as, level2(-30.1F, 1)},
        {"no_rotation", 6, {3, 4, 60, 20}, as, [](CKiv& s) { turnedBy(s, 0, -1); }},
        {"no_rotation", 6, {3, 4, 60, 20}, as, [](CKiv& s) { turnedBy(s, 0, 1.00002); }},
        {"good", 6, {3, 4, 60, 20}, as, [](CKiv& s) { turnedBy(s, 0, 1.000002); }},
        {"good", 8, {3, 4, 60, 20}, as, [](CKiv& s) { turnedBy(s, 0, -1); }},
        {"ry_near_90", 6, {0, 0, 60, 20}, as, [](CKiv& s) { turnedBy(s, 89.999); }},
        {"reading_lost", 1, {3, 4, 90, 20}, as, notFromX},
        {"good", 8, {3, 4, 60, 20}, as, notFromX},
        {"reading_lost", 8, {3, 4, 60, 20}, as, flat},
        {"reading_lost", 4, {3, 4, 60, 20}, as, factor(4, 0)},
        {"reading_lost", 5, {3, 4, 60, 20}, as, factor(5, 0)},
        {"reading_lost", 5, {3, 4, 60, 20}, as, factor(6, 0)},
        {"reading_lost", 10, {3, 4, 60, 20}, as, level2(-65, 0)},
        {"spare_disagrees", 2, {3, 4, 90, 20}, as, elevationOffBy(0.051)},
        {"good", 2, {3, 4, 90, 20}, as, elevationOffBy(-0.049)},
        {"good", 2, {3, 4, 90, 20}, as, elevationOffBy(-0.051), 0.013},
    };
    for (const Row& row : rows) {
        CKiv sensor;
        prepare(sensor, row.mode);
        row.set(sensor);
        sensor.setMountMode(row.mode);
        TrustJudge judge(sensor, row.limits);
        Uncertainties uncertainties;
        uncertainties[Source::elevation] = row.ofElevation;
        judge.expect(uncertainties);
        KIV_RAWINFO raw = readingsAt(row.mode, row.place);
        row.disturb(raw);
        judged(judge, sensor, raw);
        EXPECT_STREQ(wordOf(judged(judge, sensor, raw).trust), row.word)
            << &row - rows << ": " << row.mode << ' ' << row.place.pitch;
    }
}

// The deviation of the spare reading is that of draws; an elevation offset shows with its sign.
TEST(Trust, ExpectsOfTheSpareReadingWhatDrawsShow) {
    for (const auto& [mode, upwards] : {std::pair{1, 0.3}, {10, 0.3}, {10, 5.0}}) {
        CKiv sensor;
        prepare(sensor, mode);
        sensor.setThermalFactor({0.01F, 0.8F, 0.02F, 0.6F});
        TrustJudge judge(sensor, wide);
        Uncertainties u;
        u[Source::vector1] = 0.1, u[Source::vector2] = 0.2, u[Source::vector3] = upwards;
        u[Source::elevation] = 0.004;
        u[Source::levelX] = 0.005, u[Source::levelY] = 0.003;
        u[Source::temperature] = 0.02;
        judge.expect(u);
        const KIV_RAWINFO raw = readingsAt(mode, {3, 4, 120, 35});
        const double deviation =
            (judged(judge, sensor, raw), judged(judge, sensor, raw)).spareDeviation;
        simulator::Random random(3);
        double sum = 0, squares = 0;
        constexpr int draws = 4000;
        for (int i = 0; i < draws; ++i) {
            KIV_RAWINFO drawn = raw;
            const auto by = [&](Source source) {
                return static_cast<float>(u[source] * random.normal());
            };
            drawn.vector[0] += by(Source::vector1);
            drawn.vector[1] += by(Source::vector2);
            drawn.vector[2] += by(Source::vector3);
            drawn.elevationRaw += by(Source::elevation);
            drawn.levelXRaw += by(Source::levelX);
            drawn.levelYRaw += by(Source::levelY);
            drawn.temperature += by(Source::temperature);
            const double spare = judged(judge, sensor, drawn).spare;
            sum += spare;
            squares += spare * spare;
        }
        EXPECT_NEAR(deviation / std::sqrt((squares - sum * sum / draws) / draws), 1, 0.06) << mode;
        sensor.setEncoderOffset({0, static_cast<float>(0.02 * simulator::radians)});
        judge.configure(sensor);
        EXPECT_NEAR(judged(judge, sensor, raw).spare - sum / draws, mode == 1 ? -0.02 : 0,
                    mode == 1 ? 0.001 : 0.02);
    }
}

// Each row's error in the local frame is its own and the reference's.
TEST(Trust, AReferenceThatIsNotGoodSpoilsTheLocalFrame) {
    for (const bool machine : {true, false}) {
        CKiv sensor;
        prepare(sensor, 1);
        sensor.setMcsFlag(machine);
        TrustJudge judge(sensor, wide);
        const RowTrust reference = judged(judge, sensor, readingsAt(1, {3, 4, 90, -20}));
        EXPECT_EQ(reference.trust, Trust::twoSigns);
        const RowTrust row = judged(judge, sensor, readingsAt(1, {3, 4, 90, 20}));
        EXPECT_EQ(row.trust, machine ? Trust::good : Trust::reference);
        EXPECT_EQ(row.modelError > reference.modelError, !machine);
    }
}

// With uncertain parameters, which in the local frame act on reference and row at once, and a
// vector's uncertainties by the line of sight.
void expectAgreementWithDraws(bool machineFrame) {
    constexpr int draws = 4000;
    constexpr double tolerance = 0.06; // five deviations of a deviation of so many draws
    CKiv configured;
    prepare(configured, 1);
    double local[9];
    rotation_x(local, 0.4);
    configured.setLocalMatrix(local, 3);
    configured.setMcsFlag(machineFrame);
    configured.setThermalFactor({0.01F, 0.8F, 0.02F, 0.6F});
    KIV_RAWINFO first = readingsAt(1, {3, 4, 90, 20});
    KIV_RAWINFO second = readingsAt(1, {2, 5, 120, 25, 30});
    for (KIV_RAWINFO* raw : {&first, &second})
        raw->levelXRaw += 1, raw->levelYRaw += 1;

    Uncertainties u;
    u.bySight = true;
    u[Source::vector1] = 5;
    u[Source::vector2] = u[Source::vector3] = 0.5;
    u[Source::azimuth] = 0.02;
    u[Source::elevation] = 0.015;
    u[Source::levelX] = u[Source::levelY] = 0.02;
    u[Source::temperature] = 0.3;
    u[Source::azimuthOffset] = u[Source::elevationOffset] = 0.03;
    u[Source::tiltOffsetX] = u[Source::tiltOffsetY] = 0.04;

    CKiv sensor(configured);
    Propagation propagation(sensor, u);
    KIV_INFO info;
    ASSERT_EQ(SensorUpdate::run(sensor, first, info), UpdateOutcome::reference);
    propagation.captured(sensor, first);
    ASSERT_EQ(SensorUpdate::run(sensor, second, info), UpdateOutcome::oriented);
    const KIV_INFO middle = info;
    AngleUncertainty found;
    const std::size_t before = test::allocationCount();
    ASSERT_TRUE(propagation.of(sensor, second, info, found));
    EXPECT_EQ(test::allocationCount(), before);
    SensorUpdate::run(sensor, second, info);
    EXPECT_EQ(info.rx, middle.rx); // the sensor is as it was
    EXPECT_EQ(found.contribution[at(Source::vector1)][2], 0);

    // Drawn without and with the reference's readings.
    simulator::Random random(5);
    for (const bool drawReference : {false, true}) {
        std::array<std::array<double, 3>, 3> sums{};
        for (int i = 0; i < draws; ++i) {
            CKiv drawn(configured);
            const auto by = [&](Source source) { return u[source] * random.normal(); };
            const auto disturbed = [&](KIV_RAWINFO raw) {
                const double x = raw.vector[0], y = raw.vector[1], z = raw.vector[2];
                const double rho = std::hypot(x, y), r = std::hypot(rho, z);
                const double along = by(Source::vector1) / r;
                const double side = by(Source::vector2) / rho;
                const double above = by(Source::vector3) / r;
                raw.vector[0] = static_cast<float>(x + along * x - side * y - above * z * x / rho);
                raw.vector[1] = static_cast<float>(y + along * y + side * x - above * z * y / rho);
                raw.vector[2] = static_cast<float>(z + along * z + above * rho);
                raw.azimuthRaw += static_cast<float>(by(Source::azimuth));
                raw.elevationRaw += static_cast<float>(by(Source::elevation));
                raw.levelXRaw += static_cast<float>(by(Source::levelX));
                raw.levelYRaw += static_cast<float>(by(Source::levelY));
                raw.temperature += static_cast<float>(by(Source::temperature));
                return raw;
            };
            drawn.setEncoderOffset(
                {static_cast<float>(by(Source::azimuthOffset) * simulator::radians),
                 static_cast<float>(by(Source::elevationOffset) * simulator::radians)});
            drawn.setTiltOffset({static_cast<float>(by(Source::tiltOffsetX)),
                                 static_cast<float>(by(Source::tiltOffsetY))});
            drawn.updateKIVData(drawReference ? disturbed(first) : first, info);
            drawn.updateKIVData(disturbed(second), info);
            const double off[] = {info.rx - middle.rx, info.ry - middle.ry, info.rz - middle.rz};
            for (std::size_t j = 0; j < 3; ++j)
                for (std::size_t k = 0; k < 3; ++k)
                    sums[j][k] += off[j] * off[k] / draws;
        }
        for (std::size_t j = 0; j < 3; ++j) {
            const double whole =
                std::hypot(found.standard[j], drawReference ? found.reference[j] : 0);
            EXPECT_NEAR(whole / std::sqrt(sums[j][j]), 1, tolerance) << j << drawReference;
        }
        if (!drawReference) {
            EXPECT_NEAR(found.correlation[1], sums[0][2] / std::sqrt(sums[0][0] * sums[2][2]),
                        tolerance);
        }
    }
}

TEST(Propagation, AgreesWithDrawsOfReferenceParametersAndReadings) {
    for (const bool machineFrame : {true, false}) {
        SCOPED_TRACE(machineFrame ? "machine" : "local");
        expectAgreementWithDraws(machineFrame);
    }
}

// The readings become the reference, then they have angles.
KIV_INFO updatedTwice(CKiv& sensor, const KIV_RAWINFO& raw) {
    KIV_INFO info;
    SensorUpdate::run(sensor, raw, info);
    SensorUpdate::run(sensor, raw, info);
    return info;
}

// Inputs that are known better than single precision has steps count in proportion.
TEST(Propagation, HasTheSlopesOfNearlyExactInputs) {
    CKiv sensor;
    prepare(sensor, 1);
    sensor.setThermalFactor({0.01F, 0.8F, 0.02F, 0.6F});
    const KIV_RAWINFO raw = readingsAt(1, {3, 4, 90, 20});
    const KIV_INFO info = updatedTwice(sensor, raw);
    const auto contributions = [&](double size) {
        Uncertainties u;
        u.of.fill(size);
        AngleUncertainty found;
        EXPECT_TRUE(Propagation(sensor, u).of(sensor, raw, info, found));
        return found.contribution;
    };
    const auto exact = contributions(1e-9), usual = contributions(1e-3);
    for (std::size_t source = 0; source < sourceCount; ++source)
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(1e6 * exact[source][i], usual[source][i], 2e-5) << source << ' ' << i;
}

// Also where parameters are known better than single precision has steps, and near z = 0 of the
// pendulum. Whatever turns the angles by more than a quarter of a turn has no slope.
TEST(CalibrationPart, IsInProportionToTheUncertaintyOfTheParameters) {
    CKiv sensor;
    prepare(sensor, 4);
    const auto partOf = [&](std::string_view name, double u, double z) {
        const KIV_RAWINFO raw = readingsAt(4, {3, 4, 60, std::atan(z / 4000) / simulator::radians});
        const double variance = u * u;
        Calibration calibration;
        EXPECT_EQ(Calibration::make(sensor, std::span(&name, 1), &variance, calibration).kind,
                  CalibrationFault::none);
        CalibrationPart part(sensor, calibration);
        updatedTwice(sensor, raw);
        part.captured(sensor, raw);
        AngleTriple found{};
        return part.of(raw, found) ? found[0] / u : -1;
    };
    for (const char* name : {"angle_offset.elevation_deg", "tilt_sensor_offset.y_deg",
                             "scale_factor.0", "scale_factor.6"}) {
        const double usual = partOf(name, 1e-3, 300);
        EXPECT_GT(usual, 0.01) << name;
        EXPECT_NEAR(partOf(name, 1e-9, 300) / usual, 1, 0.02) << name;
        EXPECT_NEAR(partOf(name, 1e-3, 1e-5) / partOf(name, 1e-3, 3), 1, 0.02) << name;
    }
    EXPECT_EQ(partOf("angle_offset.azimuth_deg", 100, 300), -1);
}

// A component's steps turn the angles as far as they lie across the line of sight.
TEST(Propagation, CountsNoRoundingAlongTheLineOfSight) {
    CKiv sensor;
    prepare(sensor, 6);
    const KIV_RAWINFO raw = readingsAt(6, {3, 4, 0, 0}); // along x
    const KIV_INFO info = updatedTwice(sensor, raw);
    AngleUncertainty found;
    ASSERT_TRUE(Propagation(sensor, {}).of(sensor, raw, info, found));
    // Half of what a step of x would turn them by if it lay across.
    EXPECT_LT(found.rounding[0], 5e-7);
    EXPECT_LT(found.rounding[1], 5e-7);
}

TEST(Propagation, UnwrapsAnglesAtHalfATurn) {
    CKiv sensor;
    prepare(sensor, 6);
    KIV_RAWINFO raw = readingsAt(6, {3, 4, 90, 20, 180});
    Uncertainties u;
    u[Source::azimuth] = 0.01;
    Propagation propagation(sensor, u);
    KIV_INFO info = updatedTwice(sensor, raw);
    ASSERT_NEAR(std::abs(info.rz), 180, 1);
    raw.azimuthRaw += static_cast<float>(info.rz - std::copysign(180.0, info.rz));
    SensorUpdate::run(sensor, raw, info);
    ASSERT_NEAR(std::abs(info.rz), 180, 0.003);
    AngleUncertainty found;
    ASSERT_TRUE(propagation.of(sensor, raw, info, found));
    EXPECT_NEAR(found.standard[2], 0.01, 2e-4);
}

// Near z = 0, and where z is its own uncertainty, the pendulum's angles vary as they do elsewhere.
TEST(Propagation, KeepsClearOfTheLevelSightOfThePendulum) {
    CKiv sensor;
    prepare(sensor, 4);
    Uncertainties u;
    u[Source::vector3] = 0.5;
    u[Source::levelY] = 0.01;
    Propagation propagation(sensor, u);
    const auto uncertaintyAt = [&](double z) {
        const KIV_RAWINFO raw = readingsAt(4, {3, 4, 60, std::atan(z / 4000) / simulator::radians});
        const KIV_INFO info = updatedTwice(sensor, raw);
        AngleUncertainty found{};
        EXPECT_TRUE(propagation.of(sensor, raw, info, found)) << z;
        return found.standard;
    };
    const AngleTriple elsewhere = uncertaintyAt(3);
    for (const double z : {0.5, -0.5, 0.5001, 0.3, 0.06, 1e-3, 1e-5, -3e-6})
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(uncertaintyAt(z)[i] / elsewhere[i], 1, 0.02) << z << ' ' << i;
}

// One level's angle a step away lies on the other side of 180 degrees: the mean is no slope.
TEST(Propagation, HasNoFigureAcrossTheSeamOfTwoLevels) {
    for (const double roll : {0.004, 0.4}) {
        CKiv sensor;
        prepare(sensor, 9);
        const KIV_RAWINFO raw = readingsAt(9, {3, roll, 20, 20});
        Uncertainties u;
        u[Source::levelX] = 0.01;
        Propagation propagation(sensor, u);
        const KIV_INFO info = updatedTwice(sensor, raw);
        AngleUncertainty found;
        EXPECT_EQ(propagation.of(sensor, raw, info, found), roll > 0.1);
    }
}

} // namespace
