// Whether the library is right about how far its results can be trusted: its part of
// docs/accuracy-tables.md.
//   kiv_trust [--poses N] [--draws N] [--check PAGE]
// N is the number of poses of each model's bound, 1000000 by default, and that of the draws of each
// Monte Carlo evaluation, 100000. --check compares the tables with a page's. Exit code 1 where they
// differ or a proof does not hold.

#include <algorithm>
#include <charconv>
#include <cmath>
#include <exception>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "support/Numbers.h"
#include "tests/proofs/PageTables.h"
#include "tests/proofs/TrustTrials.h"

namespace {

using namespace kiv;
using docs::Range;

struct Counts {
    std::size_t poses = 1000000;
    std::size_t draws = 100000;
};

struct Row {
    std::string model;
    std::string modes;
    std::string text;
    docs::Case which;
    Range range;
    // What the proof asks for; else the row shows an edge, where not good may be much.
    bool wholeRange = true;
};

constexpr Range usual{5, 45};
constexpr Range wide{20, 60};

auto scaleFactor(int i, float value) {
    return [=](simulator::Mounting& m) { m.scaleFactors[i] = value; };
}

auto atHeight(double height) {
    return [=](simulator::Pose& pose, simulator::RandomPoses&) {
        pose.position[2] = std::copysign(height, pose.position[2]);
    };
}

void nearSeam(simulator::Pose& pose, simulator::RandomPoses& random) {
    simulator::rotationFromYawPitchRoll(0, random.uniform(-5, 5), 180 + random.uniform(-1e-5, 1e-5),
                                        pose.rotation);
}

const std::vector<Row> bounds{
    {"Dual level", "1, 2", "", {.modes = {1, 2}}, usual},
    {"Dual level", "1, 2", "", {.modes = {1, 2}}, wide},
    {"Pendulum", "3, 4", "", {.modes = {3, 4}}, usual},
    {"Pendulum", "3, 4", "", {.modes = {3, 4}}, wide},
    {"Polarizer", "5, 6", "", {.modes = {5, 6}}, usual},
    {"Polarizer", "5, 6", "", {.modes = {5, 6}}, wide},
    {"Three vectors", "7, 8", "", {.modes = {7, 8}}, usual},
    {"Three vectors", "7, 8", "", {.modes = {7, 8}}, wide},
    {"Two levels", "9, 10", "", {.modes = {9, 10}}, usual},
    {"Two levels", "9, 10", "", {.modes = {9, 10}}, wide},
    {"Dual level",
     "1, 2",
     "scale factor 1 at 0.5 degrees",
     {.modes = {1, 2}, .mount = scaleFactor(1, 0.5F)},
     usual,
     false},
    {"Dual level", "1, 2", "sights to 85", {.modes = {1, 2}}, {20, 85}, false},
    {"Pendulum", "3, 4", "z at 0.0001", {.modes = {3, 4}, .place = atHeight(0.0001)}, usual, false},
    {"Pendulum",
     "3, 4",
     "scale factor 3 at 80 degrees",
     {.modes = {3, 4}, .mount = scaleFactor(3, 80)},
     usual,
     false},
    {"Pendulum", "3, 4", "sights to 85", {.modes = {3, 4}}, {20, 85}, false},
    {"Three vectors", "7, 8", "limits of 20", {.modes = {7, 8}, .limit = 20}, wide, false},
    {"Three vectors", "7, 8", "limits of 20", {.modes = {7, 8}, .limit = 20}, usual, false},
    {"Three vectors", "7, 8", "tilted far beyond the limits", {.modes = {7, 8}}, {40, 60}, false},
    {"Two levels", "9", "rx within 1e-5 of 180", {.modes = {9}, .place = nearSeam}, usual, false},
};

std::string digits(double value, int significant) {
    std::string text;
    appendRounded(text, value, significant);
    return text;
}

std::string decimals(double value, int count) {
    char text[64];
    const auto [end, error] =
        std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, count);
    return {text, end};
}

std::string share(std::size_t part, std::size_t whole) {
    return decimals(whole == 0 ? 0 : 100.0 * static_cast<double>(part) / static_cast<double>(whole),
                    1);
}

// Says what does not hold.
class Proofs {
public:
    void expect(bool holds, const std::string& where, const std::string& what) {
        if (holds)
            return;
        std::cerr << where << ": " << what << '\n';
        all = false;
    }
    bool hold() const { return all; }

private:
    bool all = true;
};

// A share or a deviation found in so many rows is as far off as this once in 100000 tables.
double allowance(double required, double spread, std::size_t rows) {
    return std::max(required, 4.5 * spread / std::sqrt(static_cast<double>(rows)));
}

// Within single precision the largest of many says how many they are, and no more.
std::string excess(const docs::BoundTrial& t) {
    return t.largestExcess <= docs::singlePrecision ? "at most " + digits(docs::singlePrecision, 1)
                                                    : docs::about + digits(t.largestExcess, 1);
}

void addBounds(std::vector<std::string>& lines, Proofs& proofs, const Counts& counts) {
    lines.push_back(
        docs::tableLine({"Model", "Modes", "Case", "Tilts to", "Sights to", "Good, %",
                         "Good and above the bound, %", "Largest error of good rows",
                         "Largest excess over the bound", "Not good though within 0.001, %"}));
    lines.push_back("|---|---|---|---|---|---|---|---|---|---|");
    for (const Row& row : bounds) {
        const docs::BoundTrial t =
            docs::tryBound(row.which, row.range, row.wholeRange ? counts.poses : counts.poses / 10);
        std::vector<std::string> cells{row.model,
                                       row.modes,
                                       row.text,
                                       digits(row.range.mostTilt, 2),
                                       digits(row.range.steepest, 2),
                                       share(t.good, t.rows),
                                       (row.wholeRange ? "" : docs::about)
                                           + share(t.wronglyGood, t.good),
                                       docs::about + digits(t.largestError, 1),
                                       excess(t),
                                       row.wholeRange ? share(t.rightNotGood, t.right) : ""};
        lines.push_back(docs::tableLine(cells));
        const bool beyond = row.text == "tilted far beyond the limits";
        proofs.expect(t.wronglyGood == 0 || beyond, lines.back(),
                      std::to_string(t.wronglyGood) + " good rows above their bound");
        // Of three vectors tilted by 20 degrees many have a second pose within the limits.
        const bool ambiguous = row.which.modes[0] == 7 && row.range.mostTilt > 5;
        proofs.expect(!row.wholeRange || ambiguous || 20 * t.rightNotGood <= t.right, lines.back(),
                      "more than 5 % of the rows within 0.001 degrees are not good");
    }
}

void addAnySensor(std::vector<std::string>& lines, Proofs& proofs, const Counts& counts) {
    lines.push_back(docs::tableLine({"Parameters", "Mode", "Good, %", "Good and above the bound, %",
                                     "Largest excess over the bound"}));
    lines.push_back("|---|---|---|---|---|");
    const struct {
        docs::Dead dead;
        const char* text;
        int firstMode, lastMode;
        bool noneGood;
    } rows[] = {
        {docs::Dead::nothing, "as the sensor's", 1, 10, false},
        {docs::Dead::parallelAxes, "level axes 0.1 degrees apart", 9, 10, false},
        {docs::Dead::thermal, "thermal factors of a level 0", 1, 10, true},
        {docs::Dead::table, "flat tilt table", 1, 10, true},
        {docs::Dead::gain, "a gain of 0", 3, 10, true},
        {docs::Dead::reflection, "a reflection as matrix", 1, 6, true},
        {docs::Dead::shear, "a matrix that shears by 1 %", 1, 6, true},
    };
    for (const auto& row : rows)
        for (int mode = row.firstMode; mode <= row.lastMode; ++mode) {
            const docs::WideTrial t = docs::tryAnySensor(
                mode, row.dead, row.noneGood ? counts.poses / 100 : counts.poses);
            lines.push_back(docs::tableLine({row.text, std::to_string(mode),
                                             docs::about + share(t.good, t.rows),
                                             share(t.wronglyGood, t.good), excess(t)}));
            proofs.expect(100000 * t.wronglyGood <= t.good && t.farAbove == 0, lines.back(),
                          std::to_string(t.wronglyGood) + " good rows above their bound");
            proofs.expect(!row.noneGood || t.good == 0, lines.back(), "good rows");
        }
}

void addNoise(std::vector<std::string>& lines, Proofs& proofs, const Counts& counts) {
    lines.push_back(docs::tableLine(
        {"Noise of encoders", "Mode", "Tilts to", "Sights to", "Good, %", "Least uncertainty",
         "Residual over uncertainty: rx", "ry", "rz", "Within twice, %: rx", "ry", "rz"}));
    lines.push_back("|---|---|---|---|---|---|---|---|---|---|---|---|");
    const struct {
        const simulator::Noise& noise;
        Range range;
        int firstMode; // the own errors of the models before are larger than the noise
    } trials[] = {
        {docs::usualNoise, usual, 1}, {docs::usualNoise, wide, 1}, {docs::leastNoise, usual, 5}};
    for (const auto& trial : trials)
        for (int mode = trial.firstMode; mode <= 10; ++mode) {
            const docs::NoiseTrial t =
                docs::tryNoise(mode, trial.noise, trial.range, counts.poses / 50);
            std::vector<std::string> cells{
                digits(trial.noise.encoder, 1),  std::to_string(mode),
                digits(trial.range.mostTilt, 2), digits(trial.range.steepest, 2),
                share(t.good, t.rows),           docs::about + digits(t.leastUncertainty, 1)};
            for (const double deviation : t.deviation)
                cells.push_back(decimals(deviation, 3));
            for (const double within : t.within2)
                cells.push_back(decimals(100 * within, 1));
            lines.push_back(docs::tableLine(cells));
            for (std::size_t k = 0; k < 3; ++k) {
                proofs.expect(std::abs(t.deviation[k] - 1)
                                  <= allowance(0.03, std::sqrt(0.5), t.good),
                              lines.back(), "a deviation not within 0.03 of 1");
                proofs.expect(std::abs(t.within2[k] - 0.9545) <= allowance(0.01, 0.2084, t.good),
                              lines.back(), "a share not within 1 % of 95.4");
            }
        }
}

void addMonteCarlo(std::vector<std::string>& lines, Proofs& proofs, const Counts& counts) {
    lines.push_back(docs::tableLine({"Mode", "Uncertainties", "Within 2 % of Monte Carlo's"}));
    lines.push_back("|---|---|---|");
    for (int mode = 1; mode <= 10; ++mode) {
        const std::vector<double> off = docs::tryMonteCarlo(mode, usual, 20, counts.draws);
        const double most = allowance(0.02, std::sqrt(0.5), counts.draws);
        const auto within = std::count_if(off.begin(), off.end(),
                                          [&](double each) { return std::abs(each) <= most; });
        lines.push_back(docs::tableLine(
            {std::to_string(mode), std::to_string(off.size()), std::to_string(within)}));
        proofs.expect(within == std::ssize(off), lines.back(), "some are not within 2 %");
    }
}

int run(int argc, char** argv) {
    Counts counts;
    std::string page;
    for (int i = 1; i < argc; i += 2) {
        const std::string_view name = argv[i];
        const std::string_view value = i + 1 < argc ? argv[i + 1] : "";
        const auto number = numberIn<std::size_t>(value);
        if (name == "--check" && !value.empty())
            page = value;
        else if (name == "--poses" && number && *number >= 1000)
            counts.poses = *number;
        else if (name == "--draws" && number && *number >= 100)
            counts.draws = *number;
        else {
            std::cerr << "usage: kiv_trust [--poses N] [--draws N] [--check PAGE]\n";
            return 2;
        }
    }
    std::vector<std::string> lines;
    Proofs proofs;
    addBounds(lines, proofs, counts);
    addAnySensor(lines, proofs, counts);
    addNoise(lines, proofs, counts);
    addMonteCarlo(lines, proofs, counts);
    if (page.empty()) {
        docs::printTables(lines, std::cout);
        return proofs.hold() ? 0 : 1;
    }
    std::ifstream file(page);
    const bool same =
        docs::sameTables(docs::tableLines(file, docs::trustSection, true), lines, std::cerr);
    return same && proofs.hold() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& e) {
        std::cerr << "kiv_trust: " << e.what() << '\n';
        return 2;
    }
}
