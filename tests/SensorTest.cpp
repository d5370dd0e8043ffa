#include "KIVInterface/CKiv.h"

#include <array>
#include <typeinfo>

#include <gtest/gtest.h>

#include "KIVInterface/CKivDualLevel.h"
#include "KIVInterface/CKivPendulum.h"
#include "KIVInterface/CKivPolarizer.h"
#include "KIVInterface/CKivThreeVec.h"
#include "KIVInterface/CKivThreeVec2Level.h"
#include "sensor/SensorAccess.h"
#include "tests/Matchers.h"

namespace {

using kiv::SensorAccess;

constexpr double identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};

int parityOf(const CKiv& sensor) {
    // A negative mode leaves the parity and returns it.
    return const_cast<CKivModel*>(SensorAccess::model(sensor))->set_iMMode(-1);
}

TEST(Sensor, FirstMountModeChoosesTheModelAndItsParity) {
    const struct {
        int mode;
        const std::type_info& type;
        int parity;
    } rows[] = {
        {1, typeid(CKivDualLevel), 1},      {2, typeid(CKivDualLevel), 0},
        {3, typeid(CKivPendulum), 1},       {4, typeid(CKivPendulum), 0},
        {5, typeid(CKivPolarizer), 1},      {6, typeid(CKivPolarizer), 0},
        {7, typeid(CKivThreeVec), 1},       {8, typeid(CKivThreeVec), 0},
        {9, typeid(CKivThreeVec2Level), 1}, {10, typeid(CKivThreeVec2Level), 0},
        {0, typeid(CKivPendulum), 0},       {-2, typeid(CKivPendulum), 0},
        {-3, typeid(CKivPendulum), 0},      {11, typeid(CKivPendulum), 1},
        {12, typeid(CKivPendulum), 0},
    };
    for (const auto& row : rows) {
        CKiv sensor;
        EXPECT_EQ(sensor.setMountMode(row.mode), KIV_OK);
        const CKivModel& model = *SensorAccess::model(sensor);
        EXPECT_EQ(typeid(model), row.type) << "mode " << row.mode;
        EXPECT_EQ(parityOf(sensor), row.parity) << "mode " << row.mode;

        // A later mode is stored and changes neither.
        EXPECT_EQ(sensor.setMountMode(row.mode == 1 ? 6 : 1), KIV_OK);
        EXPECT_EQ(SensorAccess::model(sensor), &model) << "mode " << row.mode;
        EXPECT_EQ(parityOf(sensor), row.parity) << "mode " << row.mode;
        EXPECT_EQ(SensorAccess::mountMode(sensor), row.mode == 1 ? 6 : 1);

        sensor.Destroy();
        EXPECT_EQ(SensorAccess::model(sensor), nullptr);
        sensor.setMountMode(5);
        const CKivModel& fresh = *SensorAccess::model(sensor);
        EXPECT_EQ(typeid(fresh), typeid(CKivPolarizer));
    }
}

TEST(Sensor, NewObjectHasNoTransform) {
    CKiv sensor;
    std::array<double, 9> m{};
    EXPECT_EQ(sensor.ReadMatrix(nullptr), KIV_BAD_ARGUMENT);
    EXPECT_EQ(sensor.ReadMatrix(m.data()), KIV_NO_TRANSFORM);
    EXPECT_TRUE(kiv::test::isNear(m.data(), identity, 0));
    EXPECT_EQ(sensor.Initialization(), KIV_OK);
    ASSERT_NE(sensor.prm, nullptr);
    float offset = 0;
    EXPECT_EQ(sensor.prm->getADMOffset(offset), KIV_NOT_LOADED);
    sensor.Destroy();
    sensor.Destroy();
    EXPECT_EQ(sensor.prm, nullptr);
}

// Counts stay behind Destroy while the storage goes: setters and updates must not trust them.
TEST(Sensor, WorksAgainAfterDestroy) {
    CKiv sensor;
    const float table[] = {0, 1, 2, 3, 0, 0, 0};
    const double spline[16] = {};
    sensor.setLevelXComp(4, table, spline);
    sensor.setLevelYComp(4, table, spline);
    sensor.setAzimuthComp(3, table);
    sensor.Destroy();
    KIV_INFO info;
    sensor.updateKIVData(KIV_RAWINFO{}, info);
    const CKiv copy(sensor);
    EXPECT_EQ(SensorAccess::levelXTable(copy), nullptr);
    EXPECT_EQ(SensorAccess::levelYTable(sensor), nullptr);
    EXPECT_EQ(sensor.setLevelXComp(1, table, spline), KIV_OK);
    EXPECT_EQ(sensor.setAzimuthComp(2, table), KIV_OK);
    EXPECT_EQ(SensorAccess::azimuthComp(sensor)[3], 3);
}

} // namespace
