// The whole way round: a known pose, the raw readings that it gives, the update, the angles.

#include <cmath>

#include <gtest/gtest.h>

#include "KIVInterface/ConfigureSensor.h"
#include "sensor/Update.h"
#include "simulator/InverseCalibration.h"
#include "simulator/Trajectory.h"
#include "support/ZelUtil.h"
#include "tests/Matchers.h"
#include "tests/ModelCases.h"

namespace {

using namespace kiv;

void loadExample(CKivPrm& record) {
    ASSERT_EQ(record.ReadCalibrationFile(KIV_EXAMPLES, 5), KIV_OK);
}

TEST(Simulator, ExampleReadingsGiveTheTrueAnglesBack) {
    constexpr double allowed = 0.003; // degrees, at tilts to 5 degrees
    CKivPrm record;
    loadExample(record);
    CKiv sensor;
    ASSERT_EQ(configureSensor(sensor, record), KIV_OK);
    const simulator::Mounting mounting = simulator::mountingOf(record);
    simulator::InverseCalibration calibration(record);
    double machine[9];
    record.getMachineMatrix(machine, 3);

    simulator::Trajectory turn(simulator::Motion::turn, 3, 5, false);
    KIV_INFO info;
    int oriented = 0;
    for (int i = 0; i < 500; ++i) {
        const simulator::Pose pose = turn.at(i / 500.0);
        simulator::Readings readings;
        ASSERT_TRUE(simulator::readingsOf(mounting, pose, readings)) << i;
        KIV_RAWINFO raw{};
        raw.status = 2;
        calibration.rawReadings(pose, readings, 15 + 0.02F * static_cast<float>(i), raw);
        const UpdateOutcome outcome = SensorUpdate::run(sensor, raw, info);
        EXPECT_NEAR(info.levelY, readings.levelY, 2e-6) << i;
        EXPECT_NEAR(std::remainder(info.azimuth - readings.azimuth, 360), 0, 3e-5) << i;
        if (outcome != UpdateOutcome::oriented)
            continue;
        ++oriented;
        test::Matrix expected;
        double result[9];
        MatrixMultiply(machine, pose.rotation, 3, 3, 3, expected.data());
        sensor.ReadMatrix(result);
        EXPECT_LE(test::degreesApart(result, expected.data()), allowed) << i;
        const simulator::Angles truth = simulator::anglesOf(expected.data());
        EXPECT_NEAR(info.rx, truth.rx, allowed) << i;
        EXPECT_NEAR(info.ry, truth.ry, allowed) << i;
        EXPECT_NEAR(info.rz, truth.rz, allowed) << i;
    }
    EXPECT_EQ(oriented, 499);
}

} // namespace
