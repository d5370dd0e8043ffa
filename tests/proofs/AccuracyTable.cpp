// The measured error of each orientation model, as tables of docs/accuracy-tables.md.

#include <cmath>
#include <utility>

#include "support/Numbers.h"
#include "tests/proofs/PageTables.h"

namespace {

using namespace kiv;
using docs::Errors;
using docs::Row;
using docs::Tables;
using simulator::CorrectedReadings;
using simulator::Mounting;
using simulator::Pose;
using simulator::radians;
using simulator::RandomPoses;

constexpr double tilts[] = {0.5, 5, 20}; // degrees
constexpr double steepest[] = {20, 45};  // degrees

// Conditions on a pose and its readings.

bool sidesAgree(const Pose& pose, const CorrectedReadings& readings) {
    return pose.position[2] * readings.levelY > 0;
}

bool sidesDiffer(const Pose& pose, const CorrectedReadings& readings) {
    return !sidesAgree(pose, readings);
}

// The tangents of the sensor's tilt and of the line of sight's elevation in the sensor's own frame.
double tiltTimesElevation(const Pose& pose) {
    const double* r = pose.rotation;
    double u[3];
    simulator::transposedTimes(r, pose.position, u);
    return std::hypot(r[2], r[5]) / std::abs(r[8]) * std::abs(u[2]) / std::hypot(u[0], u[1]);
}

bool wellInsideLevelSide(const Pose& pose, const CorrectedReadings&) {
    return tiltTimesElevation(pose) < 0.45; // the sine of 30 degrees, with some margin
}

bool offSeam(const Pose& pose, const CorrectedReadings&) {
    return std::abs(simulator::anglesOf(pose.rotation).rx) < 180 - 0.02;
}

// Changes of the mounting: scale factors.

auto factors(std::vector<std::pair<int, float>> values) {
    return [=](Mounting& m) {
        for (const auto& [i, value] : values)
            m.scaleFactors[i] = value;
    };
}

const auto alongElevationAxis = factors({{2, 0}, {3, 0}});

// Changes of the pose.

auto atHeight(double height) {
    return [=](Pose& pose, RandomPoses& random) {
        const double azimuth = random.uniform(-180, 180) * radians;
        pose.position[0] = 4000 * std::cos(azimuth);
        pose.position[1] = 4000 * std::sin(azimuth);
        pose.position[2] = random.uniform(-1, 1) < 0 ? -height : height;
    };
}

// Inside the planar azimuth's dead band, at a distance that metres give.
void nearAxisInMetres(Pose& pose, RandomPoses& random) {
    pose.position[0] = random.uniform(2, 20);
    pose.position[1] = random.uniform(-1.7e-5, 1.7e-5);
    pose.position[2] = random.uniform(0, 0.3) * pose.position[0];
}

auto invertedWithRoll(double most) {
    return [=](Pose& pose, RandomPoses& random) {
        simulator::rotationFromYawPitchRoll(0, random.uniform(-5, 5),
                                            180 + random.uniform(-most, most), pose.rotation);
    };
}

auto levelXOffBy(double error) {
    return [=](CorrectedReadings& readings) { readings.levelX += error; };
}

const std::vector<Row> models{
    {"z and level Y of one sign", {.modes = {1, 2}, .admit = sidesAgree}},
    {"z and level Y of two signs", {.modes = {1, 2}, .admit = sidesDiffer}},
    {"reference axis along the elevation axis", {.modes = {3, 4}, .mount = alongElevationAxis}},
    {"reference axis 1.4 degrees off it", {.modes = {3, 4}}},
    {"", {.modes = {5, 6}}},
    {"inverted", {.modes = {7}}},
    {"upright", {.modes = {8}}},
    {"inverted", {.modes = {9}}},
    {"upright", {.modes = {10}}},
};

// Those with a flag have digits that are the platform's.
Row atHeightOf(double height, const char* text) {
    return {std::string("distance 4000, z at ") + text,
            {.modes = {3, 4}, .mount = alongElevationAxis, .place = atHeight(height)},
            {5, 45},
            true};
}

const std::vector<Row> edges{
    {"one sign, scale factor 1 at 0.05 degrees",
     {.modes = {1, 2}, .mount = factors({{1, 0.05F}}), .admit = sidesAgree}},
    {"one sign, scale factor 1 at 0.5 degrees",
     {.modes = {1, 2}, .mount = factors({{1, 0.5F}}), .admit = sidesAgree}},
    {"one sign, metres, vector within 1.7e-5 of the x axis",
     {.modes = {1, 2}, .place = nearAxisInMetres, .admit = sidesAgree}},
    {"metres, vector within 1.7e-5 of the x axis",
     {.modes = {3, 4}, .mount = alongElevationAxis, .place = nearAxisInMetres}},
    atHeightOf(0.1, "0.1"),
    atHeightOf(0.001, "0.001"),
    atHeightOf(0.00001, "0.00001"),
    {"scale factor 3 at 60 degrees", {.modes = {3, 4}, .mount = factors({{2, 0}, {3, 60}})}},
    {"scale factor 3 at 80 degrees", {.modes = {3, 4}, .mount = factors({{2, 0}, {3, 80}})}},
    {"sights to 80 degrees", {.modes = {3, 4}}, {5, 80}},
    {"tilts to 20, tan(tilt) tan(elevation) under 0.45",
     {.modes = {7, 8}, .admit = wellInsideLevelSide},
     {20, 45}},
    {"level X off by 0.01 degrees, rx over 0.02 from 180",
     {.modes = {9}, .admit = offSeam, .disturb = levelXOffBy(0.01)}},
    {"level X off by 0.01 degrees, rx within 0.02 of 180",
     {.modes = {9}, .place = invertedWithRoll(0.02), .disturb = levelXOffBy(0.01)}},
};

std::string digits(double value) {
    return value >= 100 ? std::to_string(std::lround(value)) : roundedText(value, 2);
}

void append(std::vector<std::string>& cells, const Errors& errors, bool sizeOnly = false) {
    for (const double value : {errors.median, errors.largest})
        cells.push_back(sizeOnly ? docs::about + roundedText(value, 1) : digits(value));
}

// Every model at three tilts and two steepnesses.
void addModelTable(Tables& tables) {
    tables.head({"Model", "Modes", "Case", "Sights to", "Tilts to 0.5: median", "largest",
                 "to 5: median", "largest", "to 20: median", "largest"});
    for (const Row& row : models)
        for (const double steep : steepest) {
            std::vector<std::string> cells = row.cells();
            cells.push_back(digits(steep));
            for (const double tilt : tilts)
                append(cells, docs::modelErrors(row.which, {tilt, steep}));
            tables.row(cells);
        }
    for (const double steep : steepest) {
        std::vector<std::string> h{"Home angles", "", "horizontal", digits(steep)};
        std::vector<std::string> v{"Home angles", "", "vertical", digits(steep)};
        for (const double tilt : tilts) {
            const docs::HomeErrors errors = docs::homeErrors({tilt, steep});
            append(h, errors.horizontal);
            append(v, errors.vertical);
        }
        tables.row(h);
        tables.row(v);
    }
}

void addEdgeTable(Tables& tables) {
    tables.head({"Model", "Modes", "At the edge", "Median", "Largest"});
    for (const Row& row : edges) {
        std::vector<std::string> cells = row.cells();
        append(cells, docs::modelErrors(row.which, row.range), row.flag);
        tables.row(cells);
    }
}

} // namespace

int main(int argc, char** argv) {
    return docs::runProgram(argc, argv, false, [](Tables& tables, const docs::Counts&) {
        addModelTable(tables);
        addEdgeTable(tables);
    });
}
