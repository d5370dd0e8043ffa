// What holds for all five models, at chosen points and at seeded random ones.

#include <cstring>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "KIVInterface/CKivDualLevel.h"
#include "KIVInterface/CKivPendulum.h"
#include "KIVInterface/CKivPolarizer.h"
#include "KIVInterface/CKivThreeVec.h"
#include "KIVInterface/CKivThreeVec2Level.h"
#include "models/Geometry.h"
#include "simulator/RandomPoses.h"
#include "simulator/TypicalMounting.h"
#include "support/ZelUtil.h"
#include "tests/Matchers.h"
#include "tests/ModelCases.h"

namespace {

using namespace kiv;
using simulator::CorrectedReadings;
using simulator::Mounting;
using simulator::Pose;
using test::Matrix;
using test::modelOf;

constexpr double rotationTolerance = 1e-12; // per entry of transpose(M) M, and of the determinant

struct Law {
    int mode;
    const char* name;
    double poseError; // degrees, at tilts to 5 degrees, as docs/accuracy-tables.md states it
    std::vector<int> unreadFactors;
    bool readsParity;
    bool readsLevelX;
    bool readsLevel2;
    bool readsFlags;
};

void PrintTo(const Law& law, std::ostream* out) {
    *out << law.name << law.mode;
}

const std::vector<int> allFactors{0, 1, 2, 3, 4, 5, 6, 7};
const std::vector<int> dualFree{2, 3, 4, 5, 6, 7};

const Law laws[] = {
    {1, "DualLevel", 1e-9, dualFree, false, true, false, false},
    {2, "DualLevel", 1e-9, dualFree, false, true, false, false},
    {3, "Pendulum", 0.0022, {7}, true, false, false, false},
    {4, "Pendulum", 0.0022, {7}, true, false, false, false},
    {5, "Polarizer", 1e-10, {2, 3, 7}, false, false, false, false},
    {6, "Polarizer", 1e-10, {2, 3, 7}, false, false, false, false},
    {7, "ThreeVec", 1e-9, allFactors, true, false, false, false},
    {8, "ThreeVec", 1e-9, allFactors, true, false, false, false},
    {9, "ThreeVec2Level", 1e-9, allFactors, true, true, true, true},
    {10, "ThreeVec2Level", 1e-9, allFactors, true, true, true, true},
};

class ModelLaws : public ::testing::TestWithParam<Law> {
protected:
    ModelLaws() : mounting(withGains(GetParam().mode)), model(modelOf(mounting)) {}

    // Gains that differ from one another show which of them a model reads where.
    static Mounting withGains(int mode) {
        Mounting m = simulator::typicalMounting(mode);
        m.scaleFactors[4] = 1.01F;
        m.scaleFactors[5] = 0.98F;
        m.scaleFactors[6] = 1.03F;
        return m;
    }

    bool compute(CKivModel& which, Matrix& m, bool outsideX = false, bool outsideY = false) const {
        return which.CalTranxMatrix(m.data(), mounting.encoderOffset[0], mounting.encoderOffset[1],
                                    3, outsideX, outsideY);
    }

    // The dual-level model is exact where z and the level-Y reading agree in sign; elsewhere it
    // takes the tilt's direction from the wrong side. Inside the dead band around the axes its
    // azimuth is off by up to the band's width.
    double allowedError(const Pose& pose, const CorrectedReadings& readings) const {
        double allowed = GetParam().poseError;
        if (GetParam().mode > 2)
            return allowed;
        const auto [x, y, z] = pose.position;
        const double rho = std::hypot(x, y);
        const double tilt = 1.05 * std::hypot(readings.levelX, readings.levelY); // not quite square
        if (z * readings.levelY < 0)
            allowed += 2.1 * tilt * std::abs(std::tan(readings.levelY * simulator::radians) * z)
                       * std::hypot(rho, z) / (rho * rho);
        if (std::min(std::abs(x), std::abs(y)) <= lengthDeadBand)
            allowed += tilt * lengthDeadBand / rho;
        return allowed;
    }

    // The two-level model averages angles without regard to the seam at 180 degrees: there,
    // rounding may put one level's rotation on either side.
    bool onSeamOfMean(const Pose& pose, const CorrectedReadings& readings) const {
        double turn[9];
        double head[9];
        rotation_z(turn, readings.azimuth * simulator::radians - mounting.encoderOffset[0]);
        MatrixMultiply(pose.rotation, turn, 3, 3, 3, head);
        const simulator::Angles angles = simulator::anglesOf(head);
        return GetParam().mode >= 9
               && std::max(std::abs(angles.rx), std::abs(angles.rz)) > 180 - 1e-9;
    }

    void expectPose(const Pose& pose, const std::string& row) {
        CorrectedReadings readings;
        ASSERT_TRUE(simulator::readingsOf(mounting, pose, readings)) << row;
        ++rows;
        if (onSeamOfMean(pose, readings)) {
            ++rowsOnSeam;
            return;
        }
        Matrix m = test::measurementOf(pose, readings);
        ASSERT_TRUE(compute(*model, m)) << row;
        EXPECT_TRUE(test::isRotation(m.data(), rotationTolerance)) << row;
        EXPECT_LE(test::degreesApart(m.data(), pose.rotation), allowedError(pose, readings)) << row;
    }

    Mounting mounting;
    std::unique_ptr<CKivModel> model;
    int rows = 0;
    int rowsOnSeam = 0;
};

std::string printedPose(double azimuth, double elevation, double yaw, double pitch, double roll) {
    std::ostringstream text;
    text << "azimuth " << azimuth << " elevation " << elevation << " yaw " << yaw << " pitch "
         << pitch << " roll " << roll;
    return text.str();
}

TEST_P(ModelLaws, GiveBackChosenPoses) {
    const double upsideDown = simulator::invertedIn(GetParam().mode) ? 180 : 0;
    for (const double azimuth :
         {0.0, 1e-7, -1e-7, 45.0, 90.0, 90.0000001, 135.0, 180.0, -179.9999, -90.0})
        for (const double elevation : {-40.0, -8.0, -0.5, 0.5, 8.0, 40.0})
            for (const double yaw : {0.0, 90.0, 180.0, -179.99})
                for (const double pitch : {-4.0, 0.0, 4.0})
                    for (const double roll : {-3.0, 0.0, 3.0}) {
                        Pose pose;
                        simulator::rotationFromYawPitchRoll(yaw, pitch, roll + upsideDown,
                                                            pose.rotation);
                        const double a = azimuth * simulator::radians;
                        const double e = elevation * simulator::radians;
                        pose.position[0] = 4000 * std::cos(e) * std::cos(a);
                        pose.position[1] = 4000 * std::cos(e) * std::sin(a);
                        pose.position[2] = 4000 * std::sin(e);
                        expectPose(pose, printedPose(azimuth, elevation, yaw, pitch, roll));
                    }
    EXPECT_EQ(rows, 10 * 6 * 4 * 3 * 3);
    EXPECT_LE(rowsOnSeam, rows / 3);
}

TEST_P(ModelLaws, GiveBackRandomPoses) {
    for (const bool below : {false, true}) {
        simulator::RandomPoses poses(2024, {5, below ? -45.0 : 0.5, below ? -0.5 : 45.0,
                                            simulator::invertedIn(GetParam().mode)});
        for (int i = 0; i < 500; ++i)
            expectPose(poses.next(), (below ? "below " : "above ") + std::to_string(i));
    }
    EXPECT_EQ(rows, 1000);
    EXPECT_EQ(rowsOnSeam, 0);
}

// Same input, same bits: computed again, by a copy, by an assigned model, with the flags set where
// they are not read, and with noise in every value that the model does not read.
TEST_P(ModelLaws, UnreadValuesChangeNoBit) {
    const Law& law = GetParam();
    Mounting noisy = mounting;
    std::mt19937 random(7);
    const auto noise = [&] { return static_cast<float>(random() % 2000) - 1000; };
    for (const int i : law.unreadFactors)
        noisy.scaleFactors[i] = noise();
    if (law.mode < 7)
        for (float& q : noisy.qvcParameters)
            q = noise();
    for (int i = 0; i < (law.mode < 7 ? 7 : 3); ++i)
        noisy.level1Parameters[i] = noise();
    for (int i = 0; i < (law.readsLevel2 ? 3 : 7); ++i)
        noisy.level2Parameters[i] = noise();
    const auto noisyModel = modelOf(noisy);
    if (!law.readsParity)
        noisyModel->set_iMMode(17);

    simulator::RandomPoses poses(5, {5, -30, 30, simulator::invertedIn(law.mode)});
    for (int i = 0; i < 50; ++i) {
        const Pose pose = poses.next();
        CorrectedReadings readings;
        ASSERT_TRUE(simulator::readingsOf(mounting, pose, readings));
        const Matrix input = test::measurementOf(pose, readings);
        Matrix expected = input;
        ASSERT_TRUE(compute(*model, expected));

        Matrix again = input;
        EXPECT_TRUE(compute(*model, again));
        EXPECT_EQ(again, expected) << i;

        Matrix changed = input;
        changed[7] = noise();
        changed[8] = noise();
        if (!law.readsLevelX)
            changed[3] = noise();
        const bool flag = !law.readsFlags;
        EXPECT_TRUE(compute(*noisyModel, changed, flag, flag && i % 2 == 0));
        EXPECT_EQ(changed, expected) << i;
    }
}

template <typename Model>
void expectCopiesCompute(const CKivModel& model, const Matrix& input, const Matrix& expected) {
    const auto* original = dynamic_cast<const Model*>(&model);
    if (!original)
        return;
    Model copy(*original);
    Model assigned;
    EXPECT_EQ(&(assigned = *original), &assigned);
    for (Model* m : {&copy, &assigned}) {
        Matrix result = input;
        EXPECT_TRUE(static_cast<CKivModel*>(m)->CalTranxMatrix(result.data(), 0.1F, -0.2F, 3, false,
                                                               false));
        EXPECT_EQ(result, expected);
    }
}

TEST_P(ModelLaws, CopiesComputeTheSame) {
    simulator::RandomPoses poses(11, {5, 1, 30, simulator::invertedIn(GetParam().mode)});
    const Pose pose = poses.next();
    CorrectedReadings readings;
    ASSERT_TRUE(simulator::readingsOf(mounting, pose, readings));
    const Matrix input = test::measurementOf(pose, readings);
    Matrix expected = input;
    ASSERT_TRUE(model->CalTranxMatrix(expected.data(), 0.1F, -0.2F, 3, false, false));
    expectCopiesCompute<CKivDualLevel>(*model, input, expected);
    expectCopiesCompute<CKivPendulum>(*model, input, expected);
    expectCopiesCompute<CKivPolarizer>(*model, input, expected);
    expectCopiesCompute<CKivThreeVec>(*model, input, expected);
    expectCopiesCompute<CKivThreeVec2Level>(*model, input, expected);
}

TEST_P(ModelLaws, OtherOrdersAreRefusedAndChangeNothing) {
    for (const int n : {-1, 0, 1, 2, 4}) {
        const Matrix input{3000, 1000, 500, 1, 1, 10, 20, 0, 0};
        Matrix m = input;
        EXPECT_FALSE(model->CalTranxMatrix(m.data(), 0, 0, n, false, false)) << n;
        EXPECT_EQ(m, input) << n;
    }
}

// Every pair of entries of M takes every pair of special values: no report from a sanitizer, no
// hang, and what each model's contract says of entries that are not finite.
TEST_P(ModelLaws, SpecialValuesKeepTheContract) {
    constexpr double inf = std::numeric_limits<double>::infinity();
    const double special[] = {0.0,    -0.0,    std::nan(""), inf, -inf, 1e300, -1e300,
                              1e-320, -1e-320, 90,           -90, 180,  360,   1};
    const bool failsOnNonFinite = GetParam().mode <= 4;
    int tried = 0;
    for (std::size_t i = 0; i < 7; ++i)
        for (std::size_t j = i + 1; j < 7; ++j)
            for (const double vi : special)
                for (const double vj : special) {
                    Matrix m{3000, 1000, 500, 0.5, 1, 10, 20, 0, 0};
                    m[i] = vi;
                    m[j] = vj;
                    const bool ok = compute(*model, m);
                    const bool finite = allFinite(m.data(), 9);
                    EXPECT_TRUE(failsOnNonFinite ? !ok || finite : ok)
                        << i << ' ' << vi << ' ' << j << ' ' << vj;
                    EXPECT_TRUE(!ok || !finite || test::isRotation(m.data(), 1e-9))
                        << i << ' ' << vi << ' ' << j << ' ' << vj;
                    ++tried;
                }
    EXPECT_EQ(tried, 21 * 14 * 14);
}

INSTANTIATE_TEST_SUITE_P(AllModes, ModelLaws, ::testing::ValuesIn(laws), [](const auto& row) {
    return std::string(row.param.name) + "Mode" + std::to_string(row.param.mode);
});

// The model interface itself.

TEST(ModelInterface, BaseClassDoesNothing) {
    CKivModel model;
    float values[8] = {5};
    model.UpdateSFactors(values, 8);
    model.UpdateQVCParameters(values, 6);
    model.UpdateLevel1Parameters(values, 7);
    model.UpdateLevel2Parameters(values, 7);
    values[0] = 6;
    model.GetQVCMatrix(values, 6);
    EXPECT_EQ(values[0], 6);
    const Matrix input{1, 2, 3, 4, 5, 6, 7, 8, 9};
    Matrix m = input;
    EXPECT_TRUE(model.CalTranxMatrix(m.data(), 1, 2, 3, true, true));
    EXPECT_TRUE(model.CalTranxMatrix(m.data(), 1, 2, 5, true, true));
    EXPECT_EQ(m, input);
}

TEST(ModelInterface, ParityIgnoresNegativeModes) {
    CKivPendulum model;
    EXPECT_EQ(model.set_iMMode(-1), 0);
    EXPECT_EQ(model.set_iMMode(1), 1);
    EXPECT_EQ(model.set_iMMode(-3), 1);
    EXPECT_EQ(model.set_iMMode(0), 0);
}

TEST(ModelInterface, UpdatesChangeTheFrontOfABlock) {
    const Mounting mounting = simulator::typicalMounting(8);
    const auto model = modelOf(mounting);
    float values[8] = {7, 8, 9, 10, 11, 12, 13, 14};
    const Matrix input{3000, 1000, 500, 0, 1, 10, 20, 0, 0};
    const auto result = [&] {
        Matrix m = input;
        model->CalTranxMatrix(m.data(), 0, 0, 3, false, false);
        return m;
    };
    const Matrix before = result();
    model->UpdateLevel1Parameters(values, 0);
    model->UpdateLevel1Parameters(values, -4);
    model->UpdateLevel1Parameters(values, 3); // entries 3 to 6 alone are read
    model->UpdateQVCParameters(values, 3);    // the QVC vector
    EXPECT_EQ(result(), before);
    float qvc[6] = {-1, -1, -1, -1, -1, -1};
    model->GetQVCMatrix(qvc, 2);
    EXPECT_EQ(qvc[2], -1);
    model->GetQVCMatrix(qvc, 6);
    EXPECT_NEAR(std::hypot(qvc[0], qvc[1], qvc[2]), std::hypot(7, 8, 9), 1e-5);
    EXPECT_EQ(qvc[3], 0);
    model->UpdateLevel1Parameters(values, 4);
    EXPECT_NE(result(), before);

    for (const int mode : {2, 4, 6}) {
        float untouched[6] = {5};
        modelOf(simulator::typicalMounting(mode))->GetQVCMatrix(untouched, 6);
        EXPECT_EQ(untouched[0], 5) << mode;
    }
}

} // namespace
