// Published examples of the models, their edges and their interface. The second computation of
// every branch is that of kiv verify's cases; errors of poses are in tests/proofs.

#include <gtest/gtest.h>

#include "KIVInterface/CKivPendulum.h"
#include "KIVInterface/CKivThreeVec2Level.h"
#include "simulator/TypicalMounting.h"
#include "support/AngleConstants.h"
#include "tests/Matchers.h"
#include "tests/ModelCases.h"

namespace {

using namespace kiv;
using simulator::Mounting;
using test::Matrix;
using test::modelOf;

constexpr double printedDigits = 5e-7; // half a unit in the sixth decimal

Matrix computed(CKivModel& model, Matrix m, bool outsideX = false, bool outsideY = false) {
    EXPECT_TRUE(model.CalTranxMatrix(m.data(), 0.1, 0.2, 3, outsideX, outsideY));
    return m;
}

TEST(ModelExamples, PublishedMatrices) {
    Mounting dual = simulator::typicalMounting(1);
    dual.scaleFactors[0] = 0.2F;
    dual.scaleFactors[1] = 0.1F;
    Mounting polarizer = simulator::typicalMounting(5);
    polarizer.scaleFactors[0] = 0.5F;
    polarizer.scaleFactors[1] = 0.2F;
    const struct {
        const char* name;
        Mounting mounting;
        Matrix input, expected;
    } rows[] = {
        {"dual level",
         dual,
         {3000, 1000, 500, 0.5, -0.3, 10, 20, 0, 0},
         {0.969758, -0.243901, -0.009012, 0.243932, 0.969789, 0.002537, 0.008121, -0.004659,
          0.999956}},
        {"polarizer",
         polarizer,
         {3000, 1000, 500, 0, 1.0, 10, 20, 0, 0},
         {0.256158, 0.966634, -0.001190, -0.966431, 0.256078, -0.020861, -0.019860, 0.006494,
          0.999782}},
    };
    for (const auto& row : rows) {
        const Matrix m = computed(*modelOf(row.mounting), row.input);
        EXPECT_TRUE(test::isNear(m.data(), row.expected.data(), printedDigits)) << row.name;
    }
    dual.scaleFactors[0] = dual.scaleFactors[1] = 0;
    Matrix level{3000, 1000, 500, 0, 0, 0, 0, 0, 0};
    const Matrix expected{0.937043,  -0.316228, -0.148159, 0.312348, 0.948683,
                          -0.049386, 0.156174,  0,         0.987730};
    EXPECT_TRUE(modelOf(dual)->CalTranxMatrix(level.data(), 0, 0, 3, false, false));
    EXPECT_TRUE(test::isNear(level.data(), expected.data(), printedDigits));
}

// The levels' dead band is closed: just inside it the vertical stays upright, just outside it
// tilts.
TEST(ModelExamples, DualLevelDeadBand) {
    Mounting dual = simulator::typicalMounting(2);
    const double band = levelDeadBand / degToRad; // degrees
    const auto withLevels = [&](double x, double y) {
        return computed(*modelOf(dual), {3000, 1000, 500, x, y, 10, 20, 0, 0});
    };
    const Matrix level = withLevels(0, 0);
    for (const double sign : {1.0, -1.0}) {
        EXPECT_EQ(withLevels(sign * 0.001, -sign * 0.001), level); // exactly the band
        EXPECT_NE(withLevels(sign * band * (1 + 1e-12), 0.5 * band), level);
        EXPECT_NE(withLevels(0, sign * band * (1 + 1e-12)), level);
    }
}

// The tilt is then level Y's, and what its direction is the arc cosine of, 1 or a rounding more.
TEST(ModelExamples, DualLevelWithOneLevelAtZero) {
    Mounting dual = simulator::typicalMounting(2);
    dual.scaleFactors[0] = 0;
    for (int i = 1; i <= 2000; ++i) {
        Matrix m{3000, 1000, 500, 0, i * 0.01, 10, 20, 0, 0};
        EXPECT_TRUE(modelOf(dual)->CalTranxMatrix(m.data(), 0, 0, 3, false, false)) << i;
    }
}

// Parities beyond 1, which the model interface allows: not 1 for the pendulum, not 0 for the
// others.
TEST(ModelExamples, ParityTwo) {
    const Matrix input{3000, 1000, 500, 0.5, 1, 10, 20, 0, 0};
    for (const auto& [mode, sameAs] : {std::pair{4, 4}, {8, 7}, {10, 9}}) {
        const auto parityTwo = modelOf(simulator::typicalMounting(mode));
        parityTwo->set_iMMode(2);
        EXPECT_EQ(computed(*parityTwo, input),
                  computed(*modelOf(simulator::typicalMounting(sameAs)), input))
            << mode;
    }
}

TEST(ModelExamples, TwoLevelModelKeepsItsInputWhenBothLevelsAreOutside) {
    const auto model = modelOf(simulator::typicalMounting(10));
    const Matrix input{3000, 1000, 500, 0.5, 1, 10, 20, 0, 0};
    computed(*model, input);
    float before[6];
    float after[6];
    model->GetQVCMatrix(before, 6);
    Matrix m = input;
    m[0] = 1;
    const Matrix unchanged = m;
    EXPECT_FALSE(model->CalTranxMatrix(m.data(), 0.1, 0.2, 3, true, true));
    EXPECT_EQ(m, unchanged);
    model->GetQVCMatrix(after, 6);
    EXPECT_TRUE(std::equal(before, before + 6, after));
}

TEST(ModelExamples, OneLevelRotationIsThatOfTheThreeVectorModel) {
    const simulator::SingleValues m(simulator::typicalMounting(8));
    CKivThreeVec2Level twoLevels;
    twoLevels.set_iMMode(0);
    double w1[3] = {std::sqrt(0.5), std::sqrt(0.5), 0};
    Matrix k{};
    twoLevels.GetF1(m.level1Parameters, -1.0, w1, 30, 10, 3, k.data());
    EXPECT_TRUE(test::isRotation(k.data(), 1e-12));
    const double u[3] = {-std::sin(30 * degToRad) * std::cos(10 * degToRad),
                         std::cos(30 * degToRad) * std::cos(10 * degToRad),
                         std::sin(10 * degToRad)};
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(k[3 * i] * w1[0] + k[3 * i + 1] * w1[1], u[i], 1e-12);
    const Matrix before = k;
    twoLevels.GetF1(m.level1Parameters, -2.0, w1, 30, 10, 2, k.data());
    EXPECT_EQ(k, before);
}

TEST(ModelInterface, OtherOrdersAreRefusedAndChangeNothing) {
    for (int mode = 1; mode <= 10; ++mode)
        for (const int n : {-1, 0, 1, 2, 4}) {
            const Matrix input{3000, 1000, 500, 1, 1, 10, 20, 0, 0};
            Matrix m = input;
            EXPECT_FALSE(modelOf(simulator::typicalMounting(mode))
                             ->CalTranxMatrix(m.data(), 0, 0, n, false, false))
                << mode << ' ' << n;
            EXPECT_EQ(m, input) << mode << ' ' << n;
        }
}

// Dual level and pendulum fail on entries that are not finite, or do not read them.
TEST(ModelInterface, NoMatrixThatIsNotFinite) {
    for (const int mode : {1, 4})
        for (std::size_t i = 0; i < 7; ++i)
            for (const double value : {double(NAN), double(INFINITY), -double(INFINITY)}) {
                Matrix m{3000, 1000, 500, 0.5, 1, 10, 20, 0, 0};
                m[i] = value;
                const bool good = modelOf(simulator::typicalMounting(mode))
                                      ->CalTranxMatrix(m.data(), 0, 0, 3, false, false);
                EXPECT_TRUE(
                    !good
                    || std::all_of(m.begin(), m.end(), [](double v) { return std::isfinite(v); }))
                    << mode << ' ' << i << ' ' << value;
            }
}

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
