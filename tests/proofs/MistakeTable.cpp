// What kiv check names when one thing is set up wrong, in every mount mode, over recordings of
// every kind; and that it names nothing where two things are wrong, or a value of the parameter
// file.

#include <algorithm>
#include <cmath>
#include <functional>
#include <iostream>
#include <numbers>
#include <set>
#include <utility>

#include "KIVInterface/CKivPrm.h"
#include "KIVInterface/ConfigureSensor.h"
#include "host/mistakes/MistakeSearch.h"
#include "host/parameters/Findings.h"
#include "params/RecordLoading.h"
#include "simulator/InverseCalibration.h"
#include "simulator/Noise.h"
#include "simulator/Trajectory.h"
#include "support/ZelUtil.h"

namespace {

using namespace kiv;
using host::MistakeSearch;
using host::RowSample;
using simulator::Motion;

using Angles = std::array<double, 3>;

struct Reading {
    KIV_RAWINFO raw{};
    Angles machine{}; // true angles
    Angles local{};
};
using Recording = std::vector<Reading>;

struct Setting {
    const char* name;
    Motion motion;
    int rows;
    double noise; // of encoders and levels, degrees
    double digit; // of the same; 0: exact
    double tilt = 5;
};

constexpr Setting settings[] = {
    {"still, exact, 5 rows", Motion::still, 5, 0, 0},
    {"still, noisy, 500 rows", Motion::still, 500, 0.01, 0},
    {"turn, exact, 5 rows", Motion::turn, 5, 0, 0},
    {"turn, exact, 500 rows", Motion::turn, 500, 0, 0},
    {"turn, noisy, 100 rows", Motion::turn, 100, 0.01, 0},
    {"swing, exact, 50 rows", Motion::swing, 50, 0, 0},
    {"swing, noisy, 500 rows", Motion::swing, 500, 0.01, 0},
    {"random, noisy, 50 rows", Motion::random, 50, 0.005, 0},
    {"turn, digits of 0.01, 500 rows", Motion::turn, 500, 0, 0.01},
};

ParsedFile sensorIn(int mode) {
    const auto examined =
        host::examineFile(KIV_SENSORS "/wide" + std::to_string(mode) + "/Tg5.prm", std::cerr);
    ParsedFile parsed = examined->parsed;
    const auto block = [&](Block which) -> BlockValues& {
        return *parsed.document.blocks[static_cast<std::size_t>(which)];
    };
    for (const Block table : {Block::tiltXCalibration, Block::tiltYCalibration})
        block(table).trailing = {-9, 9, 0};
    double local[9];
    simulator::rotationFromYawPitchRoll(25, -10, 15, local);
    double machine[9];
    simulator::rotationFromYawPitchRoll(-20, 3, 4, machine);
    std::copy_n(local, 9, block(Block::localMatrix).numbers.begin());
    std::copy_n(machine, 9, block(Block::machineMatrix).numbers.begin());
    return parsed;
}

void times(const double* a, const double* b, double* out) {
    MatrixMultiply(a, b, 3, 3, 3, out);
}

Angles anglesOfMachine(const double* r) {
    const simulator::Angles a = simulator::anglesOf(r);
    return {a.rx, a.ry, a.rz};
}

// r = Rz(rz) * Ry(ry) * Rx(rx)
Angles anglesOfLocal(const double* r) {
    return {std::atan2(r[7], r[8]) / simulator::radians,
            -std::asin(std::clamp(r[6], -1.0, 1.0)) / simulator::radians,
            std::atan2(r[3], r[0]) / simulator::radians};
}

Recording record(const ParsedFile& file, const Setting& setting, std::uint64_t seed) {
    CKivPrm parameters;
    RecordLoading::store(parameters, file);
    const simulator::Mounting mounting = simulator::mountingOf(parameters);
    simulator::InverseCalibration calibration(parameters);
    double machine[9];
    double local[9];
    double localBack[9];
    parameters.getMachineMatrix(machine, 3);
    parameters.getLocalMatrix(local, 3);
    std::copy_n(local, 9, localBack);
    MatrixInverse(localBack, 3);
    simulator::Trajectory path(setting.motion, seed, setting.tilt,
                               simulator::invertedIn(mounting.mode));
    simulator::Random random(seed + 77);
    const simulator::Noise noise{setting.noise * 5, setting.noise, setting.noise};
    Recording rows;
    double first[9] = {};
    while (rows.size() < static_cast<std::size_t>(setting.rows)) {
        const simulator::Pose pose = path.at(static_cast<double>(rows.size()) / setting.rows);
        simulator::CorrectedReadings readings;
        if (!simulator::readingsOf(mounting, pose, readings))
            continue;
        Reading row;
        row.raw.status = 2;
        row.raw.refMetric = 0.1F;
        calibration.rawReadings(pose, readings, 21, row.raw);
        noise.addTo(row.raw, random);
        if (setting.digit > 0)
            for (float* each : {&row.raw.azimuthRaw, &row.raw.elevationRaw, &row.raw.levelXRaw,
                                &row.raw.levelYRaw})
                *each = static_cast<float>(std::round(*each / setting.digit) * setting.digit);
        double m[9];
        double work[9];
        if (rows.empty()) {
            for (int i = 0; i < 9; ++i)
                first[i] = pose.rotation[i % 3 * 3 + i / 3];
        }
        times(pose.rotation, first, m);
        times(local, m, work);
        times(work, localBack, m);
        row.local = anglesOfLocal(m);
        times(machine, pose.rotation, m);
        row.machine = anglesOfMachine(m);
        if (reportsOwnMatrix(mounting.mode)) // and knows no frames
            row.machine = row.local = anglesOfMachine(pose.rotation);
        rows.push_back(row);
    }
    return rows;
}

struct Case {
    ParsedFile file;
    Recording rows;
    bool truthIsLocal = false;
};

// What goes wrong, and under which name.
struct Planted {
    std::string name;
    std::function<void(Case&)> plant;
};

auto inReadings(void (*change)(KIV_RAWINFO&)) {
    return [change](Case& c) {
        for (Reading& row : c.rows)
            change(row.raw);
    };
}

void toRadians(float& reading) {
    reading = static_cast<float>(reading * std::numbers::pi / 180);
}

void toDegrees(float& reading) {
    reading = static_cast<float>(reading * 180 / std::numbers::pi);
}

// Of a recording in one mode: the file's mode is another.
const std::vector<Planted>& plantedIn(int mode) {
    static std::vector<Planted> all[11];
    if (!all[mode].empty())
        return all[mode];
    all[mode] = {
        {"levels_exchanged", inReadings([](KIV_RAWINFO& r) {
             const float x = r.levelXRaw;
             r.levelXRaw = r.levelYRaw;
             r.levelYRaw = x;
         })},
        {"level_x_sign", inReadings([](KIV_RAWINFO& r) { r.levelXRaw *= -1; })},
        {"level_y_sign", inReadings([](KIV_RAWINFO& r) { r.levelYRaw *= -1; })},
        {"azimuth_sign", inReadings([](KIV_RAWINFO& r) { r.azimuthRaw *= -1; })},
        {"elevation_sign", inReadings([](KIV_RAWINFO& r) { r.elevationRaw *= -1; })},
        {"all_in_radians", inReadings([](KIV_RAWINFO& r) {
             for (float* each : {&r.azimuthRaw, &r.elevationRaw, &r.levelXRaw, &r.levelYRaw})
                 toRadians(*each);
         })},
        {"encoders_in_radians", inReadings([](KIV_RAWINFO& r) {
             toRadians(r.azimuthRaw);
             toRadians(r.elevationRaw);
         })},
        {"levels_in_radians", inReadings([](KIV_RAWINFO& r) {
             toRadians(r.levelXRaw);
             toRadians(r.levelYRaw);
         })},
        {"degrees_converted_twice", inReadings([](KIV_RAWINFO& r) {
             for (float* each : {&r.azimuthRaw, &r.elevationRaw, &r.levelXRaw, &r.levelYRaw})
                 toDegrees(*each);
         })},
        {"x_y_exchanged", inReadings([](KIV_RAWINFO& r) {
             const float x = r.vector[0];
             r.vector[0] = r.vector[1];
             r.vector[1] = x;
         })},
        {"y_sign", inReadings([](KIV_RAWINFO& r) { r.vector[1] *= -1; })},
        {"local_as_machine", [](Case& c) { c.truthIsLocal = true; }},
        {"machine_inverted",
         [](Case& c) {
             auto& numbers =
                 c.file.document.blocks[static_cast<std::size_t>(Block::machineMatrix)]->numbers;
             std::swap(numbers[1], numbers[3]);
             std::swap(numbers[2], numbers[6]);
             std::swap(numbers[5], numbers[7]);
         }},
    };
    for (int other = 1; other <= 10; ++other)
        if (other != mode)
            all[mode].push_back({"mount_mode_" + std::to_string(mode), [other](Case& c) {
                                     c.file.document
                                         .blocks[static_cast<std::size_t>(Block::mountingMode)]
                                         ->integer = other;
                                 }});
    return all[mode];
}

// A wrong value of the file.
struct WrongValue {
    Block block;
    std::size_t number; // npos: every second of a table
    double by;
};

constexpr auto everySecond = static_cast<std::size_t>(-1);

constexpr WrongValue wrongValues[] = {
    {Block::angleOffset, 0, 1},
    {Block::angleOffset, 0, 30},
    {Block::angleOffset, 1, 0.3},
    {Block::angleOffset, 1, -5},
    {Block::tiltOffset, 0, 0.5},
    {Block::tiltOffset, 1, 0.5},
    {Block::tiltOffset, 1, -3},
    {Block::thermalFactor, 1, 0.2},
    {Block::thermalFactor, 3, 0.2},
    {Block::thermalFactor, 3, -0.5},
    {Block::scaleFactor, 0, 2},
    {Block::scaleFactor, 1, 1},
    {Block::scaleFactor, 3, 10},
    {Block::scaleFactor, 4, -0.5},
    {Block::scaleFactor, 6, 0.3},
    {Block::levelX, 3, 10},
    {Block::levelX, 6, 0.3},
    {Block::levelY, 3, 10},
    {Block::levelY, 5, 1},
    {Block::qvc, 5, 2},
    {Block::tiltYCalibration, everySecond, 2},
    {Block::azCalibration, everySecond, 3},
};

MistakeSearch search(const Case& c, bool withTruth) {
    CKivPrm parameters;
    RecordLoading::store(parameters, c.file);
    F_VECTOR4 limits{};
    parameters.GetKIVLevelLimits(limits);
    CKiv sensor;
    configureSensor(sensor, parameters);
    JudgedSensor judged(sensor, limits);
    RowSample sample(withTruth);
    for (const Reading& row : c.rows) {
        host::RowResult result;
        result.raw = row.raw;
        judged.judge(row.raw, {.state = true}, result);
        sample.add(result, c.truthIsLocal ? row.local : row.machine);
    }
    return host::searchMistakes(c.file, sample, std::nullopt).value_or(MistakeSearch{});
}

std::vector<std::string> namesOf(const MistakeSearch& found) {
    std::vector<std::string> names;
    for (const host::JudgedMistake& mistake : found.judged)
        if (mistake.fits)
            names.push_back(mistake.name);
    return names;
}

bool sameMistake(std::string a, std::string b) {
    const auto plain = [](std::string& name) {
        if (name == "mount_mode_2")
            name = "mount_mode_1";
        if (name == "mount_mode_6")
            name = "mount_mode_5";
    };
    plain(a);
    plain(b);
    return a == b;
}

struct Counts {
    int named = 0;
    int namedWithOthers = 0;
    int notVisible = 0;
    int wrong = 0;
    int ofPair = 0; // one of two
    int missed = 0;
    int untold = 0; // too few rows to tell

    void print(const std::string& what) const {
        std::cout << what << ": " << named << " named, " << namedWithOthers << " among others, "
                  << notVisible << " not visible, " << wrong << " wrong, " << ofPair
                  << " one of two, " << missed << " not named, " << untold << " not to be judged\n";
    }
};

bool verbose = false;

void count(Counts& counts, const std::string& expected, const MistakeSearch& found,
           const std::string& where, const std::set<std::string>& pair = {}) {
    const std::vector<std::string> names = namesOf(found);
    const bool right = std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        return sameMistake(name, expected);
    });
    const bool others = std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        return !sameMistake(name, expected);
    });
    const bool silent = found.verdict() == MistakeSearch::Verdict::fits;
    const bool ofPair = std::all_of(names.begin(), names.end(), [&](const std::string& name) {
        return std::any_of(pair.begin(), pair.end(),
                           [&](const std::string& each) { return sameMistake(name, each); });
    });
    int& which = others && ofPair                                        ? counts.ofPair
                 : right && others                                       ? counts.namedWithOthers
                 : right                                                 ? counts.named
                 : others                                                ? counts.wrong
                 : silent                                                ? counts.notVisible
                 : found.verdict() == MistakeSearch::Verdict::tooFewRows ? counts.untold
                                                                         : counts.missed;
    ++which;
    if (verbose && (others || (!right && !expected.empty()))) {
        std::cout << "  " << where << ' ' << expected << ": " << static_cast<int>(found.verdict());
        const host::Fit& now = found.asItStands;
        std::cout << " angles " << now.angles.counted().rootMeanSquare() << " ("
                  << now.angles.counted().rows << ") spare "
                  << now.spare.counted().rootMeanSquare();
        for (const auto& each : found.judged)
            if (each.fits || sameMistake(each.name, expected))
                std::cout << ", " << each.name << (each.fits ? "" : " (no)") << ' '
                          << each.fit.angles.counted().rootMeanSquare() << '/'
                          << each.fit.spare.counted().rootMeanSquare() << " of "
                          << each.fit.angles.counted().rows;
        std::cout << '\n';
    }
}

void planted(const Setting& setting, bool withTruth, Counts& counts) {
    for (int mode = 1; mode <= 10; ++mode) {
        if (!withTruth && !hasSpareReading(mode))
            continue;
        const ParsedFile file = sensorIn(mode);
        const Recording rows = record(file, setting, 3 + static_cast<std::uint64_t>(mode));
        for (const Planted& each : plantedIn(mode)) {
            Case c{file, rows};
            each.plant(c);
            const int ofFile = c.file.document.find(Block::mountingMode)->integer;
            if (!withTruth && !hasSpareReading(ofFile))
                continue;
            count(counts, each.name, search(c, withTruth),
                  std::string(setting.name) + " mode " + std::to_string(mode) + " file "
                      + std::to_string(ofFile));
        }
    }
}

void sound(const Setting& setting, Counts& counts, bool withTruth) {
    for (int mode = 1; mode <= 10; ++mode)
        for (std::uint64_t seed = 1; seed <= 10; ++seed) {
            if (!withTruth && !hasSpareReading(mode))
                continue;
            const ParsedFile file = sensorIn(mode);
            count(counts, "", search({file, record(file, setting, seed)}, withTruth),
                  std::string(setting.name) + " mode " + std::to_string(mode) + " sound");
        }
}

// Nothing may be named but one of a pair whose other does not show.
void pairs(const Setting& setting, Counts& counts) {
    for (int mode = 1; mode <= 10; ++mode) {
        const ParsedFile file = sensorIn(mode);
        const Recording rows = record(file, setting, 50 + static_cast<std::uint64_t>(mode));
        const auto& all = plantedIn(mode);
        const auto shows = [&](const Planted& planted) {
            Case c{file, rows};
            planted.plant(c);
            return search(c, true).verdict() != MistakeSearch::Verdict::fits;
        };
        std::array<bool, 14> visible;
        for (std::size_t i = 0; i < visible.size(); ++i)
            visible[i] = shows(all[i]);
        for (std::size_t i = 0; i < 14; ++i)
            for (std::size_t j = i + 1; j < 14; ++j) {
                Case c{file, rows};
                all[i].plant(c);
                all[j].plant(c);
                const MistakeSearch found = search(c, true);
                std::string expected = !visible[i] ? all[j].name : !visible[j] ? all[i].name : "";
                if (all[i].name == "encoders_in_radians" && all[j].name == "levels_in_radians")
                    expected = "all_in_radians";
                count(counts, expected, found,
                      std::string(setting.name) + " mode " + std::to_string(mode) + " pair "
                          + all[i].name + ' ' + all[j].name,
                      {all[i].name, all[j].name});
            }
    }
}

void wrong(const Setting& setting, Counts& counts) {
    for (int mode = 1; mode <= 10; ++mode) {
        const ParsedFile file = sensorIn(mode);
        const Recording rows = record(file, setting, 90 + static_cast<std::uint64_t>(mode));
        for (const WrongValue& value : wrongValues) {
            Case c{file, rows};
            auto& numbers = c.file.document.blocks[static_cast<std::size_t>(value.block)]->numbers;
            for (std::size_t i = 0; i < numbers.size(); ++i)
                if (value.number == everySecond ? i % 2 == 1 : i == value.number)
                    numbers[i] += static_cast<float>(value.by);
            count(counts, "", search(c, true),
                  std::string(setting.name) + " mode " + std::to_string(mode) + " block "
                      + std::string(layoutOf(value.block).title) + ' '
                      + std::to_string(value.number) + " by " + std::to_string(value.by));
        }
    }
}

} // namespace

int main(int argc, char**) {
    verbose = argc > 1;
    Counts all, alone, good, goodAlone, two, values;
    for (const Setting& setting : settings) {
        Counts counts;
        planted(setting, true, counts);
        counts.print(setting.name);
        planted(setting, false, alone);
        sound(setting, good, true);
        sound(setting, goodAlone, false);
        pairs(setting, two);
        wrong(setting, values);
    }
    alone.print("by the spare reading alone");
    good.print("sound");
    goodAlone.print("sound, by the spare reading alone");
    two.print("pairs of mistakes");
    values.print("wrong values of the file");
    return 0;
}
