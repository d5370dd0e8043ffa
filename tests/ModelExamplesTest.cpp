// Published examples of the models, and the models against a second computation that follows the
// geometry with vectors and Rodrigues' formula, not the models' own matrices.

#include <gtest/gtest.h>

#include "KIVInterface/CKivThreeVec2Level.h"
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

// Computed with 60 decimal digits from the formulas and the truncated constants: every branch of
// the tilt's direction, on both sides, with large scale factors, and the dead band of the planar
// azimuth.
TEST(ModelExamples, DualLevelAgainstSixtyDigits) {
    Mounting dual = simulator::typicalMounting(1);
    dual.scaleFactors[0] = dual.scaleFactors[1] = 5;
    const struct {
        Matrix input, expected;
    } rows[] = {
        {{3000, 1000, 500, 12, 14, 10, 20, 0, 0},
         {0.959387098860874, -0.272239502946716, 0.073905666728875, 0.282032184561566,
          0.931111530659139, -0.231277245627465, -0.005851616079800, 0.242728182354091,
          0.970076691854996}},
        {{3000, 1000, 500, -12, 14, 10, 20, 0, 0},
         {0.959452441831162, -0.272139963673888, 0.073422421887296, 0.281810858571641,
          0.931495357391514, -0.229997911184364, -0.005801021921674, 0.241363293252373,
          0.970417492018272}},
        {{3000, 1000, 500, 12, -14, 10, 20, 0, 0},
         {0.977365940204600, -0.194059834641536, -0.084241317100806, 0.209100166728970,
          0.946624688716893, 0.245313715445270, 0.032139371523042, -0.257376143592496,
          0.965776672687614}},
        {{3000, 1000, 500, -12, -14, 10, 20, 0, 0},
         {0.976594727116552, -0.201410440525424, -0.075475647830952, 0.213175726541738,
          0.953049239177020, 0.215065704652105, 0.028615530425790, -0.226121609209422,
          0.973678678654818}},
        {{-2000, 1500, -800, 12, 14, 10, 20, 0, 0},
         {-0.688442595739467, -0.692487836538813, -0.215655717794126, 0.565710655538571,
          -0.698759726101262, 0.437842779304409, -0.453892329282646, 0.179430882026154,
          0.872803707596210}},
        {{-2000, 1500, -800, -12, 14, 10, 20, 0, 0},
         {-0.694563235305752, -0.698568894098883, -0.171998291733000, 0.556364884703004,
          -0.673128682231042, 0.487191843350557, -0.456114050683619, 0.242691733182992,
          0.856189637529920}},
        {{-2000, 1500, -800, 12, -14, 10, 20, 0, 0},
         {-0.655380073467707, -0.569428115552801, -0.496214248605831, 0.628322890654409,
          -0.775620321430152, 0.060195199678008, -0.419150694119848, -0.272332036680545,
          0.866110822825968}},
        {{-2000, 1500, -800, -12, -14, 10, 20, 0, 0},
         {-0.655237253003296, -0.568256612369602, -0.497743472860186, 0.628679389694487,
          -0.775515417784999, 0.057775961706630, -0.418839309580729, -0.275064100303881,
          0.865397812265524}},
        {{1000, -2500, 700, 0, -15, 10, 20, 0, 0},
         {0.339935291038815, 0.897219573715165, -0.281852859571681, -0.936063399575461,
          0.351706368661401, -0.009377751235849, 0.090715543770553, 0.267019974506380,
          0.959411811128581}},
        {{1000, -2500, 700, 0, 15, -40, 5, 0, 0},
         {0.845471055528007, 0.378574863562570, -0.376642757720016, -0.312423541632220,
          0.922650684316216, 0.226069116344534, 0.433093783028962, -0.073462830121083,
          0.898350147599622}},
        {{3000, 1e-05, 500, 6, 8, 10, 20, 0, 0},
         {0.998579632068414, 0.051281990935291, -0.014452536933860, -0.052800644923946,
          0.988789819470248, -0.139666691833129, 0.007128135361170, 0.140231417013833,
          0.990093096313960}},
        {{1e-05, -3000, 500, 6, -8, 10, 20, 0, 0},
         {-0.095340259042753, 0.984864120956079, 0.144751159784890, -0.995040610712283,
          -0.098431719500845, 0.014331072166257, 0.028362264348747, -0.142666954300977,
          0.989364302019986}},
    };
    for (const auto& row : rows)
        EXPECT_TRUE(test::isNear(computed(*modelOf(dual), row.input).data(), row.expected.data(),
                                 secondComputation))
            << row.input[3] << ' ' << row.input[4];
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
