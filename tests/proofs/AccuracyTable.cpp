// The measured error of each orientation model, as tables of docs/accuracy-tables.md.
//   kiv_accuracy                 prints the tables
//   kiv_accuracy --check PAGE    compares them with a page's; exit code 1 where they differ

#include <charconv>
#include <cmath>
#include <exception>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/proofs/PageTables.h"
#include "tests/proofs/PoseErrors.h"

namespace {

using namespace kiv;
using docs::Case;
using docs::Errors;
using simulator::CorrectedReadings;
using simulator::Mounting;
using simulator::Pose;
using simulator::radians;
using simulator::RandomPoses;

struct Row {
    std::string model;
    std::string modes;
    std::string text;
    Case which;
    docs::Range range = {5, 45};
    bool roundingDecides = false; // the error's digits are the platform's
};

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

double degreesFromSeam(const Pose& pose) {
    return 180 - std::abs(simulator::anglesOf(pose.rotation).rx);
}

// Changes of the mounting.

void alongElevationAxis(Mounting& m) {
    m.scaleFactors[2] = m.scaleFactors[3] = 0;
}

auto offElevationAxis(float angle) {
    return [=](Mounting& m) {
        m.scaleFactors[2] = 0;
        m.scaleFactors[3] = angle;
    };
}

auto tiltDirectionOffset(float angle) {
    return [=](Mounting& m) { m.scaleFactors[1] = angle; };
}

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
    {"Dual level", "1, 2", "z and level Y of one sign", {.modes = {1, 2}, .admit = sidesAgree}},
    {"Dual level", "1, 2", "z and level Y of two signs", {.modes = {1, 2}, .admit = sidesDiffer}},
    {"Pendulum",
     "3, 4",
     "reference axis along the elevation axis",
     {.modes = {3, 4}, .mount = alongElevationAxis}},
    {"Pendulum", "3, 4", "reference axis 1.4 degrees off it", {.modes = {3, 4}}},
    {"Polarizer", "5, 6", "", {.modes = {5, 6}}},
    {"Three vectors", "7", "inverted", {.modes = {7}}},
    {"Three vectors", "8", "upright", {.modes = {8}}},
    {"Two levels", "9", "inverted", {.modes = {9}}},
    {"Two levels", "10", "upright", {.modes = {10}}},
};

const std::vector<Row> edges{
    {"Dual level",
     "1, 2",
     "one sign, scale factor 1 at 0.05 degrees",
     {.modes = {1, 2}, .mount = tiltDirectionOffset(0.05F), .admit = sidesAgree}},
    {"Dual level",
     "1, 2",
     "one sign, scale factor 1 at 0.5 degrees",
     {.modes = {1, 2}, .mount = tiltDirectionOffset(0.5F), .admit = sidesAgree}},
    {"Dual level",
     "1, 2",
     "one sign, metres, vector within 1.7e-5 of the x axis",
     {.modes = {1, 2}, .place = nearAxisInMetres, .admit = sidesAgree}},
    {"Pendulum",
     "3, 4",
     "metres, vector within 1.7e-5 of the x axis",
     {.modes = {3, 4}, .mount = alongElevationAxis, .place = nearAxisInMetres}},
    {"Pendulum",
     "3, 4",
     "distance 4000, z at 0.1",
     {.modes = {3, 4}, .mount = alongElevationAxis, .place = atHeight(0.1)},
     {5, 45},
     true},
    {"Pendulum",
     "3, 4",
     "distance 4000, z at 0.001",
     {.modes = {3, 4}, .mount = alongElevationAxis, .place = atHeight(0.001)},
     {5, 45},
     true},
    {"Pendulum",
     "3, 4",
     "distance 4000, z at 0.00001",
     {.modes = {3, 4}, .mount = alongElevationAxis, .place = atHeight(0.00001)},
     {5, 45},
     true},
    {"Pendulum",
     "3, 4",
     "scale factor 3 at 60 degrees",
     {.modes = {3, 4}, .mount = offElevationAxis(60)}},
    {"Pendulum",
     "3, 4",
     "scale factor 3 at 80 degrees",
     {.modes = {3, 4}, .mount = offElevationAxis(80)}},
    {"Pendulum", "3, 4", "sights to 80 degrees", {.modes = {3, 4}}, {5, 80}},
    {"Three vectors",
     "7, 8",
     "tilts to 20, tan(tilt) tan(elevation) under 0.45",
     {.modes = {7, 8}, .admit = wellInsideLevelSide},
     {20, 45}},
    {"Two levels",
     "9",
     "level X off by 0.01 degrees, rx over 0.02 from 180",
     {.modes = {9},
      .admit = [](const Pose& pose,
                  const CorrectedReadings&) { return degreesFromSeam(pose) > 0.02; },
      .disturb = levelXOffBy(0.01)}},
    {"Two levels",
     "9",
     "level X off by 0.01 degrees, rx within 0.02 of 180",
     {.modes = {9}, .place = invertedWithRoll(0.02), .disturb = levelXOffBy(0.01)}},
};

std::string digits(double value, int count) {
    char text[32];
    const bool whole = value >= 100;
    const auto [end, error] = std::to_chars(
        text, text + sizeof text, value,
        whole ? std::chars_format::fixed : std::chars_format::general, whole ? 0 : count);
    return {text, end};
}

void append(std::vector<std::string>& cells, const Errors& errors, bool roundingDecides = false) {
    for (const double value : {errors.median, errors.largest})
        cells.push_back(roundingDecides ? docs::about + digits(value, 1) : digits(value, 2));
}

// Every model at three tilts and two steepnesses.
void addModelTable(std::vector<std::string>& lines) {
    lines.push_back(
        docs::tableLine({"Model", "Modes", "Case", "Sights to", "Tilts to 0.5: median", "largest",
                         "to 5: median", "largest", "to 20: median", "largest"}));
    lines.push_back("|---|---|---|---|---|---|---|---|---|---|");
    for (const Row& row : models)
        for (const double steep : steepest) {
            std::vector<std::string> cells{row.model, row.modes, row.text, digits(steep, 2)};
            for (const double tilt : tilts)
                append(cells, docs::modelErrors(row.which, {tilt, steep}));
            lines.push_back(docs::tableLine(cells));
        }
    for (const double steep : steepest) {
        std::vector<std::string> h{"Home angles", "", "horizontal", digits(steep, 2)};
        std::vector<std::string> v{"Home angles", "", "vertical", digits(steep, 2)};
        for (const double tilt : tilts) {
            const docs::HomeErrors errors = docs::homeErrors({tilt, steep});
            append(h, errors.horizontal);
            append(v, errors.vertical);
        }
        lines.push_back(docs::tableLine(h));
        lines.push_back(docs::tableLine(v));
    }
}

// Every mode through a whole update.
void addUpdateTable(std::vector<std::string>& lines) {
    lines.push_back(docs::tableLine({"Model", "Mode", "Case", "Median", "Largest"}));
    lines.push_back("|---|---|---|---|---|");
    for (const Row& row : models) {
        if (row.which.mount)
            continue; // another mounting than the example sensor's
        for (const int mode : row.which.modes) {
            Case one = row.which;
            one.modes = {mode};
            std::vector<std::string> cells{row.model, std::to_string(mode), row.text};
            append(cells, docs::updateErrors(one, row.range));
            lines.push_back(docs::tableLine(cells));
        }
    }
}

void addEdgeTable(std::vector<std::string>& lines) {
    lines.push_back(docs::tableLine({"Model", "Modes", "At the edge", "Median", "Largest"}));
    lines.push_back("|---|---|---|---|---|");
    for (const Row& row : edges) {
        std::vector<std::string> cells{row.model, row.modes, row.text};
        append(cells, docs::modelErrors(row.which, row.range), row.roundingDecides);
        lines.push_back(docs::tableLine(cells));
    }
}

int run(int argc, char** argv) {
    std::vector<std::string> lines;
    addModelTable(lines);
    addUpdateTable(lines);
    addEdgeTable(lines);
    if (argc == 1) {
        docs::printTables(lines, std::cout);
        return 0;
    }
    if (argc != 3 || std::string_view(argv[1]) != "--check") {
        std::cerr << "usage: kiv_accuracy [--check PAGE]\n";
        return 2;
    }
    std::ifstream page(argv[2]);
    return docs::sameTables(docs::tableLines(page, docs::trustSection, false), lines, std::cerr)
               ? 0
               : 1;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& e) {
        std::cerr << "kiv_accuracy: " << e.what() << '\n';
        return 2;
    }
}
