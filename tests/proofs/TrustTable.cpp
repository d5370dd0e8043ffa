// Whether the library is right about how far its results can be trusted: its part of
// docs/accuracy-tables.md. Poses are those of each model's bound, draws those of each Monte Carlo
// evaluation.

#include <algorithm>
#include <charconv>
#include <cmath>

#include "support/Numbers.h"
#include "tests/proofs/DrawnFiles.h"
#include "tests/proofs/PageTables.h"
#include "tests/proofs/TrustTrials.h"

namespace {

using namespace kiv;
using docs::Counts;
using docs::Range;
using docs::Row;
using docs::Tables;

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

// Those with a flag show an edge, where not good may be much.
const std::vector<Row> bounds{
    {"", {.modes = {1, 2}}, usual},
    {"", {.modes = {1, 2}}, wide},
    {"", {.modes = {3, 4}}, usual},
    {"", {.modes = {3, 4}}, wide},
    {"", {.modes = {5, 6}}, usual},
    {"", {.modes = {5, 6}}, wide},
    {"", {.modes = {7, 8}}, usual},
    {"", {.modes = {7, 8}}, wide},
    {"", {.modes = {9, 10}}, usual},
    {"", {.modes = {9, 10}}, wide},
    {"scale factor 1 at 0.5 degrees",
     {.modes = {1, 2}, .mount = scaleFactor(1, 0.5F)},
     usual,
     true},
    {"sights to 85", {.modes = {1, 2}}, {20, 85}, true},
    {"z at 0.0001", {.modes = {3, 4}, .place = atHeight(0.0001)}, usual, true},
    {"scale factor 3 at 80 degrees", {.modes = {3, 4}, .mount = scaleFactor(3, 80)}, usual, true},
    {"sights to 85", {.modes = {3, 4}}, {20, 85}, true},
    {"limits of 20", {.modes = {7, 8}, .limit = 20}, wide, true},
    {"limits of 20", {.modes = {7, 8}, .limit = 20}, usual, true},
    {"tilted far beyond the limits", {.modes = {7, 8}}, {40, 60}, true},
    {"rx within 1e-5 of 180", {.modes = {9}, .place = nearSeam}, usual, true},
};

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

// A share or a deviation found in so many rows is as far off as this once in 100000 tables.
double allowance(double required, double spread, std::size_t rows) {
    return std::max(required, 4.5 * spread / std::sqrt(static_cast<double>(rows)));
}

// Within single precision the largest of many says how many they are, and no more.
std::string excess(const docs::BoundTrial& t) {
    return t.largestExcess <= docs::singlePrecision
               ? "at most " + roundedText(docs::singlePrecision, 1)
               : docs::about + roundedText(t.largestExcess, 1);
}

void addBounds(Tables& tables, const Counts& counts) {
    tables.head({"Model", "Modes", "Case", "Tilts to", "Sights to", "Good, %",
                 "Good and above the bound, %", "Largest error of good rows",
                 "Largest excess over the bound", "Not good though within 0.001, %"});
    for (const Row& row : bounds) {
        const docs::BoundTrial t =
            docs::tryBound(row.which, row.range, row.flag ? counts.poses / 10 : counts.poses);
        std::vector<std::string> cells = row.cells();
        cells.insert(cells.end(), {roundedText(row.range.mostTilt, 2),
                                   roundedText(row.range.steepest, 2), share(t.good, t.rows),
                                   (row.flag ? docs::about : "") + share(t.wronglyGood, t.good),
                                   docs::about + roundedText(t.largestError, 1), excess(t),
                                   row.flag ? "" : share(t.rightNotGood, t.right)});
        tables.row(cells);
        tables.expect(t.wronglyGood == 0 || row.text == "tilted far beyond the limits",
                      std::to_string(t.wronglyGood) + " good rows above their bound");
        // Of three vectors tilted by 20 degrees many have a second pose within the limits.
        const bool ambiguous = row.which.modes[0] == 7 && row.range.mostTilt > 5;
        tables.expect(row.flag || ambiguous || 20 * t.rightNotGood <= t.right,
                      "more than 5 % of the rows within 0.001 degrees are not good");
    }
}

void addAnySensor(Tables& tables, const Counts& counts) {
    tables.head({"Parameters", "Mode", "Good, %", "Good and above the bound, %",
                 "Largest excess over the bound"});
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
            tables.row({row.text, std::to_string(mode), docs::about + share(t.good, t.rows),
                        share(t.wronglyGood, t.good), excess(t)});
            tables.expect(100000 * t.wronglyGood <= t.good && t.farAbove == 0,
                          std::to_string(t.wronglyGood) + " good rows above their bound");
            tables.expect(!row.noneGood || t.good == 0, "good rows");
        }
}

void addNoise(Tables& tables, const Counts& counts) {
    tables.head({"Noise of encoders", "Mode", "Tilts to", "Sights to", "Good, %",
                 "Least uncertainty", "Residual over uncertainty: rx", "ry", "rz",
                 "Within twice, %: rx", "ry", "rz"});
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
            std::vector<std::string> cells{roundedText(trial.noise.encoder, 1),
                                           std::to_string(mode),
                                           roundedText(trial.range.mostTilt, 2),
                                           roundedText(trial.range.steepest, 2),
                                           share(t.good, t.rows),
                                           docs::about + roundedText(t.leastUncertainty, 1)};
            for (const double deviation : t.deviation)
                cells.push_back(decimals(deviation, 3));
            for (const double within : t.within2)
                cells.push_back(decimals(100 * within, 1));
            tables.row(cells);
            for (std::size_t k = 0; k < 3; ++k) {
                tables.expect(std::abs(t.deviation[k] - 1)
                                  <= allowance(0.03, std::sqrt(0.5), t.good),
                              "a deviation not within 0.03 of 1");
                tables.expect(std::abs(t.within2[k] - 0.9545) <= allowance(0.01, 0.2084, t.good),
                              "a share not within 1 % of 95.4");
            }
        }
}

void addMonteCarlo(Tables& tables, const Counts& counts) {
    tables.head({"Mode", "Uncertainties", "Within 2 % of Monte Carlo's"});
    for (int mode = 1; mode <= 10; ++mode) {
        const std::vector<double> off = docs::tryMonteCarlo(mode, usual, 20, counts.draws);
        const double most = allowance(0.02, std::sqrt(0.5), counts.draws);
        const auto within = std::count_if(off.begin(), off.end(),
                                          [&](double each) { return std::abs(each) <= most; });
        tables.row({std::to_string(mode), std::to_string(off.size()), std::to_string(within)});
        tables.expect(within == std::ssize(off), "some are not within 2 %");
    }
}

void addDrawnFiles(Tables& tables, const Counts& counts) {
    tables.head({"Mode", "Frame", "Uncertainties", "Within 5 % of the drawn files'"});
    const std::size_t draws = std::min<std::size_t>(counts.draws, 20000);
    const double most = allowance(0.05, std::sqrt(0.5), draws);
    for (int mode = 1; mode <= 10; ++mode)
        for (const bool machineFrame : {true, false}) {
            if (!machineFrame && reportsOwnMatrix(mode))
                continue;
            const std::vector<double> off = docs::tryDrawnFiles(mode, machineFrame, usual, draws);
            const auto within = std::count_if(off.begin(), off.end(),
                                              [&](double each) { return std::abs(each) <= most; });
            tables.row({std::to_string(mode), machineFrame ? "machine" : "local",
                        std::to_string(off.size()), std::to_string(within)});
            tables.expect(within == std::ssize(off), "some are not within 5 %");
        }
}

} // namespace

int main(int argc, char** argv) {
    return docs::runProgram(argc, argv, true, [](Tables& tables, const Counts& counts) {
        addBounds(tables, counts);
        addAnySensor(tables, counts);
        addNoise(tables, counts);
        addMonteCarlo(tables, counts);
        addDrawnFiles(tables, counts);
    });
}
