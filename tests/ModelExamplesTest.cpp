// Published examples of the models, and the models against a second computation that follows the
// geometry with vectors and Rodrigues' formula, not the models' own matrices.

#include <gtest/gtest.h>

#include "simulator/RandomPoses.h"
#include "simulator/TypicalMounting.h"
#include "support/AngleConstants.h"
#include "tests/Matchers.h"
#include "tests/ModelCases.h"

namespace {

using namespace kiv;
using simulator::Mounting;
using test::Matrix;
using test::modelOf;

constexpr double printedDigits = 5e-7;      // half a unit in the sixth decimal
constexpr double secondComputation = 1e-12; // the truncated constants leave up to 6e-13

struct V {
    double x, y, z;
};

V operator+(V a, V b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

V operator*(double s, V a) {
    return {s * a.x, s * a.y, s * a.z};
}

double dot(V a, V b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

V cross(V a, V b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

V unit(V a) {
    return 1 / std::sqrt(dot(a, a)) * a;
}

// v turned about a unit axis, radians.
V turned(V v, V axis, double angle) {
    return std::cos(angle) * v + std::sin(angle) * cross(axis, v)
           + (1 - std::cos(angle)) * dot(axis, v) * axis;
}

constexpr V ex{1, 0, 0};
constexpr V ey{0, 1, 0};
constexpr V ez{0, 0, 1};

// A rotation as the images of the three axes.
struct Rotation {
    V x, y, z;

    V operator()(V v) const { return v.x * x + v.y * y + v.z * z; }
};

// The rotation that first turns by angle about axis (sensor side), then does r.
Rotation after(const Rotation& r, V axis, double angle) {
    return {r(turned(ex, axis, angle)), r(turned(ey, axis, angle)), r(turned(ez, axis, angle))};
}

Matrix matrixOf(const Rotation& r) {
    return {r.x.x, r.y.x, r.z.x, r.x.y, r.y.y, r.z.y, r.x.z, r.y.z, r.z.z};
}

// Measured vector, readings and encoder angles of the size that occur.
Matrix randomMeasurement(simulator::RandomPoses& random) {
    const simulator::Pose pose = random.next();
    return {pose.position[0],
            pose.position[1],
            pose.position[2],
            random.uniform(-5, 5),
            random.uniform(-5, 5),
            random.uniform(-180, 180),
            random.uniform(-60, 60),
            0,
            0};
}

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
        EXPECT_EQ(withLevels(sign * band * (1 - 1e-12), -sign * band * (1 - 1e-12)), level);
        EXPECT_NE(withLevels(sign * band * (1 + 1e-12), 0.5 * band), level);
        EXPECT_NE(withLevels(0, sign * band * (1 + 1e-12)), level);
    }
}

TEST(ModelExamples, PolarizerAgainstVectors) {
    const Mounting m = simulator::typicalMounting(6);
    const auto model = modelOf(m);
    simulator::RandomPoses random(31, {5, -70, 70, false});
    for (int i = 0; i < 300; ++i) {
        const Matrix input = randomMeasurement(random);
        const V sight = unit({input[0], input[1], input[2]});
        const V right = unit(cross(sight, ez)); // horizontal
        const double roll = (m.scaleFactors[1] + input[4]) * degToRad * m.scaleFactors[6];
        Rotation r{turned(right, sight, roll), sight, turned(cross(right, sight), sight, roll)};
        r = after(r, ez, m.scaleFactors[0] * degToRad);
        r = after(r, ex, 0.2 - input[6] * degToRad);
        r = after(r, ez, 0.1 - input[5] * degToRad);
        EXPECT_TRUE(
            test::isNear(computed(*model, input).data(), matrixOf(r).data(), secondComputation))
            << i;
    }
}

// The head's rotation that lays the start vector onto the measured direction and gives the level's
// axis its dip, found by turning about the measured direction.
Rotation headFromLevel(const Mounting& m, const float* level, double reading, const Matrix& input) {
    const double tan3 = std::tan(m.qvcParameters[3] * degToRad);
    const double tan4 = std::tan(m.qvcParameters[4] * degToRad);
    const double start = m.qvcParameters[5] * degToRad;
    const V w1 = turned({std::cos(start), 0, std::sin(start)}, unit({tan3, 1, tan4}),
                        input[6] * degToRad - 0.2);
    const V axis = unit({1, std::tan(level[3] * degToRad), std::tan(level[4] * degToRad)});
    const V sight = unit({input[0], input[1], input[2]});

    // Any rotation from w1 to the line of sight, then the turn about it.
    const V hinge = cross(w1, sight);
    const double angle = std::atan2(std::sqrt(dot(hinge, hinge)), dot(w1, sight));
    const V axis0 = turned(axis, unit(hinge), angle);
    const double along = sight.z * dot(sight, axis0);
    const double a = axis0.z - along;
    const double b = cross(sight, axis0).z;
    const double dip = (reading + level[5]) * level[6] * degToRad;
    const double middle = std::atan2(b, a);
    const double half = std::acos((-std::sin(dip) - along) / std::hypot(a, b));
    const double side = m.mode % 2 == 0 ? 1 : -1; // gravity's side of sight x axis
    for (const double turn : {middle + half, middle - half}) {
        const auto image = [&](V v) { return turned(turned(v, unit(hinge), angle), sight, turn); };
        const Rotation r{image(ex), image(ey), image(ez)};
        if (-side * cross(sight, r(axis)).z >= 0)
            return r;
    }
    ADD_FAILURE() << "no turn on the right side";
    return {ex, ey, ez};
}

TEST(ModelExamples, ThreeVectorsAgainstATurnAboutTheLineOfSight) {
    for (const int mode : {7, 8, 9, 10}) {
        const Mounting m = simulator::typicalMounting(mode);
        const auto model = modelOf(m);
        simulator::RandomPoses random(17, {5, -20, 20, false});
        for (int i = 0; i < 200; ++i) {
            const Matrix input = randomMeasurement(random);
            const bool two = mode >= 9;
            const double azimuth = -(input[5] * degToRad - 0.1);
            const Rotation first = headFromLevel(m, m.level1Parameters, input[two ? 3 : 4], input);
            Matrix expected = matrixOf(after(first, ez, azimuth));
            EXPECT_TRUE(test::isNear(computed(*model, input, false, two).data(), expected.data(),
                                     secondComputation))
                << mode << ' ' << i;
            float qvc[6];
            model->GetQVCMatrix(qvc, 6);
            const V carried = first({m.qvcParameters[0], m.qvcParameters[2], m.qvcParameters[1]});
            EXPECT_NEAR(qvc[0], carried.x, 3e-6);
            EXPECT_NEAR(qvc[1], carried.z, 3e-6);
            EXPECT_NEAR(qvc[2], carried.y, 3e-6);
            if (!two)
                continue;

            const Rotation second = headFromLevel(m, m.level2Parameters, input[4], input);
            expected = matrixOf(after(second, ez, azimuth));
            EXPECT_TRUE(test::isNear(computed(*model, input, true, false).data(), expected.data(),
                                     secondComputation))
                << mode << ' ' << i << " second level";

            const auto mean = [](double a, double b) { return 0.5 * (a + b); };
            const double rx =
                mean(std::atan2(-first.z.y, first.z.z), std::atan2(-second.z.y, second.z.z));
            const double ry = mean(std::asin(first.z.x), std::asin(second.z.x));
            const double rz =
                mean(std::atan2(-first.y.x, first.x.x), std::atan2(-second.y.x, second.x.x));
            Rotation r{ex, ey, ez};
            r = after(after(after(after(r, ex, rx), ey, ry), ez, rz), ez, azimuth);
            EXPECT_TRUE(
                test::isNear(computed(*model, input).data(), matrixOf(r).data(), secondComputation))
                << mode << ' ' << i << " both levels";
        }
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
    const Mounting m = simulator::typicalMounting(8);
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

} // namespace
