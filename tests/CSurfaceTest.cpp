// The functions of kiv.h: the digits are those of the C++ surface and of kiv run, refusals leave
// everything as it was.

#include <bit>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <set>
#include <thread>
#include <tuple>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "KIVInterface/ConfigureSensor.h"
#include "judged/RowState.h"
#include "kiv.h"
#include "tests/Allocations.h"
#include "tests/FileFaults.h"
#include "tests/PreparedSensor.h"
#include "tests/ToolRunner.h"
#include "tests/TrappingHost.h"
#include "uncertainty/Propagation.h"
#include "uncertainty/Trust.h"
#include "uncertainty/UncertaintyNames.h"

namespace {

namespace fs = std::filesystem;
using namespace kiv::test;
using Json = nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool,
                                  std::int64_t, std::uint64_t, float>;

struct Free {
    void operator()(kiv_parameters* p) const { kiv_parameters_free(p); }
    void operator()(kiv_sensor* s) const { kiv_sensor_free(s); }
};
using Parameters = std::unique_ptr<kiv_parameters, Free>;
using Sensor = std::unique_ptr<kiv_sensor, Free>;

Parameters loaded(const std::string& path) {
    kiv_parameters* made = nullptr;
    EXPECT_EQ(kiv_parameters_new(&made), 0);
    EXPECT_EQ(kiv_parameters_load(made, path.c_str()), 0);
    return Parameters(made);
}

Sensor sensorOf(const Parameters& parameters, int frame = KIV_FRAME_MACHINE) {
    kiv_sensor* made = nullptr;
    EXPECT_EQ(kiv_sensor_new(parameters.get(), &made), 0);
    EXPECT_EQ(kiv_sensor_set_frame(made, frame), 0);
    return Sensor(made);
}

kiv_reading goodOne() {
    return std::bit_cast<kiv_reading>(goodReading());
}

template <typename T>
bool sameBytes(const std::vector<T>& a, const std::vector<T>& b) {
    return std::memcmp(a.data(), b.data(), sizeof(T) * a.size()) == 0;
}

struct Results {
    std::vector<kiv_result> results;
    std::vector<double> matrices;
    std::vector<std::uint8_t> states;
    std::vector<kiv_trust> trust;
    std::vector<kiv_uncertainty> uncertainties;
    std::vector<kiv_calibration_uncertainty> calibration;

    explicit Results(std::size_t n)
        : results(n), matrices(9 * n), states(n), trust(n), uncertainties(n), calibration(n) {}
    bool operator==(const Results& other) const {
        return sameBytes(results, other.results) && matrices == other.matrices
               && states == other.states && sameJudgement(other);
    }
    bool sameJudgement(const Results& other) const {
        return sameBytes(trust, other.trust) && sameBytes(uncertainties, other.uncertainties)
               && sameBytes(calibration, other.calibration);
    }
};

Results runMany(const Sensor& sensor, const std::vector<kiv_reading>& readings,
                std::size_t from = 0) {
    Results r(readings.size() - from);
    EXPECT_EQ(kiv_sensor_judge_calibrated(sensor.get(), &readings[from], readings.size() - from,
                                          r.results.data(), r.matrices.data(), r.states.data(),
                                          r.trust.data(), r.uncertainties.data(),
                                          r.calibration.data()),
              0);
    return r;
}

// Two gains and an angle, the first two closely correlated.
constexpr const char* calibrated[] = {"scale_factor.4", "scale_factor.6",
                                      "angle_offset.elevation_deg"};
constexpr double covariance[] = {1e-6, -9e-7, 0, -9e-7, 1e-6, 0, 0, 0, 4e-4};

int giveCalibration(kiv_sensor* sensor) {
    return kiv_sensor_set_calibration(sensor, calibrated, 3, covariance);
}

// One for each name that the sensor's model reads.
std::map<std::string, float> giveUncertainties(const Sensor& sensor, bool bySight) {
    std::map<std::string, float> given;
    for (std::size_t i = 0; const char* name = kiv_uncertainty_name(i); ++i) {
        const bool ofVector = i < 5;
        const float value = static_cast<float>(i + 1) / 256;
        if ((!ofVector || bySight == (i >= 3))
            && kiv_sensor_set_uncertainty(sensor.get(), name, value) == 0)
            given[name] = value;
    }
    return given;
}

// Of every state, one of them along the vertical.
std::vector<kiv_reading> someReadings() {
    std::vector<kiv_reading> readings(12, goodOne());
    for (std::size_t i = 0; i < readings.size(); ++i) {
        const auto step = static_cast<float>(i);
        readings[i].azimuth += 17 * step;
        readings[i].elevation -= 0.3F * step;
        readings[i].level_x += 0.2F * step;
        readings[i].level_y -= 0.1F * step;
        readings[i].vector[2] += 10 * step;
    }
    readings[0].ref_blocked = true;
    readings[2].status = 1;
    readings[4].vector[1] = std::numeric_limits<float>::infinity();
    readings[6].vector[0] = readings[6].vector[1] = 0;
    return readings;
}

// The tool's digits and words are compared by tests/python.
TEST(CSurface, GivesTheBitsOfTheClasses) {
    const ParameterFolder folder;
    const auto readings = someReadings();
    std::set<std::uint8_t> states;
    for (int mode = 1; mode <= 10; ++mode) {
        std::ofstream(folder.file(), std::ios::binary) << exampleInMode(mode);
        for (const int frame : {KIV_FRAME_LOCAL, KIV_FRAME_MACHINE}) {
            SCOPED_TRACE("mode " + std::to_string(mode) + ", frame " + std::to_string(frame));
            const auto parameters = loaded(folder.file());
            const Sensor many = sensorOf(parameters, frame), single = sensorOf(parameters, frame);
            const auto given = giveUncertainties(many, mode % 2 == 0);
            EXPECT_EQ(given.size(), mode < 3 || mode > 8 ? 11 + mode % 2 : 9 + mode % 2);
            const Results all = runMany(many, readings);
            CKivPrm record;
            CKiv sensor;
            record.ReadCalibrationFile(folder.path().c_str(), 5);
            kiv::configureSensor(sensor, record);
            sensor.setMcsFlag(frame != 0);
            kiv::NamedUncertainties named;
            for (const auto& [name, value] : given)
                named.give(kiv::principleOf(mode), name, value);
            kiv::Propagation propagation(sensor, named.values());
            for (std::size_t i = 0; i < readings.size(); ++i) {
                SCOPED_TRACE("row " + std::to_string(i));
                states.insert(all.states[i]);
                kiv_result one;
                KIV_INFO info;
                const auto raw = std::bit_cast<KIV_RAWINFO>(readings[i]);
                {
                    const TrappingHost host;
                    ASSERT_EQ(kiv_sensor_update(single.get(), &readings[i], &one), 0);
                    if (all.states[i] != KIV_STATE_REFUSED)
                        sensor.updateKIVData(raw, info);
                }
                EXPECT_EQ(std::memcmp(&one, &all.results[i], sizeof one), 0);
                EXPECT_EQ(all.trust[i].trust == KIV_TRUST_NONE, all.states[i] != KIV_STATE_OK);
                if (all.states[i] == KIV_STATE_REFUSED)
                    continue;
                EXPECT_EQ(std::memcmp(&info, &one, sizeof one), 0);
                double m[9], expected[9];
                EXPECT_EQ(kiv_sensor_matrix(single.get(), m), sensor.ReadMatrix(expected));
                EXPECT_EQ(std::memcmp(m, expected, sizeof m), 0);
                EXPECT_EQ(std::memcmp(m, &all.matrices[9 * i], sizeof m), 0);
                if (all.states[i] == KIV_STATE_REFERENCE)
                    propagation.captured(sensor, raw);
                kiv::AngleUncertainty angles;
                if (all.states[i] != KIV_STATE_OK || !propagation.of(sensor, raw, info, angles))
                    continue;
                const kiv_uncertainty& u = all.uncertainties[i];
                const std::pair<float, double> pairs[] = {
                    {u.rx, angles.standard[0]},
                    {u.ry, angles.standard[1]},
                    {u.rz, angles.standard[2]},
                    {u.correlation_rx_ry, angles.correlation[0]},
                    {u.correlation_rx_rz, angles.correlation[1]},
                    {u.correlation_ry_rz, angles.correlation[2]},
                    {u.reference_rx, angles.reference[0]},
                    {u.reference_ry, angles.reference[1]},
                    {u.reference_rz, angles.reference[2]}};
                for (const auto& [found, wanted] : pairs)
                    EXPECT_EQ(found, static_cast<float>(wanted)) << &found - &pairs[0].first;
            }
        }
    }
    EXPECT_EQ(states.size(), 6U);
}

TEST(CSurface, APartOfARecordingRunsFromACapturedReference) {
    const auto parameters = loaded(example);
    std::vector<kiv_reading> readings(8, goodOne());
    for (std::size_t i = 0; i < readings.size(); ++i)
        readings[i].azimuth += static_cast<float>(i);
    readings[0].status = 1;
    readings[1].ref_blocked = true;
    readings[2].vector[1] = std::numeric_limits<float>::infinity();

    const Sensor whole = sensorOf(parameters, KIV_FRAME_LOCAL);
    const Sensor part = sensorOf(parameters, KIV_FRAME_LOCAL);
    bool has = true;
    kiv_reading reference{};
    std::int64_t index = 77;
    EXPECT_EQ(kiv_sensor_has_reference(whole.get(), &has), 0);
    EXPECT_FALSE(has);
    EXPECT_EQ(kiv_sensor_reference_reading(whole.get(), &reference), 554);
    EXPECT_EQ(kiv_sensor_reference_index(whole.get(), &index), 554);
    const Results all = runMany(whole, readings);
    EXPECT_EQ(std::vector<std::uint8_t>(all.states.begin(), all.states.begin() + 5),
              (std::vector<std::uint8_t>{1, 2, 5, 3, 0}));
    EXPECT_EQ(kiv_sensor_has_reference(whole.get(), &has), 0);
    EXPECT_EQ(kiv_sensor_reference_reading(whole.get(), &reference), 0);
    EXPECT_EQ(kiv_sensor_reference_index(whole.get(), &index), 0);
    EXPECT_TRUE(has && index == 3 && std::memcmp(&reference, &readings[3], 52) == 0);

    // Over a reference of its own, which those that cannot be one do not take away.
    kiv_result ignored;
    EXPECT_EQ(kiv_sensor_update(part.get(), &readings[6], &ignored), 0);
    const Results before = runMany(part, readings, 4);
    for (const std::size_t i : {0U, 1U, 2U})
        EXPECT_EQ(kiv_sensor_capture_reference(part.get(), &readings[i]), 554) << i;
    EXPECT_TRUE(runMany(part, readings, 4) == before);
    EXPECT_EQ(kiv_sensor_capture_reference(part.get(), &reference), 0);
    EXPECT_EQ(kiv_sensor_reference_index(part.get(), &index), 0);
    EXPECT_EQ(index, -1);
    kiv_sensor* copied = nullptr;
    ASSERT_EQ(kiv_sensor_copy(part.get(), &copied), 0);
    for (const Results& results :
         {runMany(part, readings, 4), runMany(Sensor(copied), readings, 4)})
        EXPECT_EQ(std::memcmp(results.results.data(), &all.results[4], 4 * 48), 0);
}

// A sensor that has judged, one that is judged for the first time and a copy, after each setting
// and with a new reference: as one that was set before it was given anything.
TEST(CSurface, JudgesByTheSettingsOfTheMoment) {
    const float steep[] = {-20, -40, 20, 40};
    const float factors[] = {1, 2, 3, 4, 1, 1, 1, 0};
    const double turned[] = {0, -1, 0, 1, 0, 0, 0, 0, 1};
    const auto byFactors = [&](kiv_sensor* s) {
        return kiv_sensor_set_scale_factors(s, factors, 8);
    };
    const struct {
        const char* name;
        std::function<int(kiv_sensor*)> set;
        bool changesTrust, changesUncertainty; // in the machine frame
    } rows[] = {
        {"nothing", [](kiv_sensor*) { return 0; }, false, false},
        {"frame", [](kiv_sensor* s) { return kiv_sensor_set_frame(s, KIV_FRAME_LOCAL); }, true,
         true},
        {"table", [&](kiv_sensor* s) { return kiv_sensor_set_tilt_y_table(s, steep, 2); }, true,
         true},
        {"offset", [](kiv_sensor* s) { return kiv_sensor_set_encoder_offset(s, 1, 0); }, true,
         true},
        {"local", [&](kiv_sensor* s) { return kiv_sensor_set_local_matrix(s, turned); }, false,
         false},
        // Until the mount mode is set the model computes with those that it has, and stays.
        {"factors", byFactors, false, false},
        {"factors, mode",
         [&](kiv_sensor* s) { return byFactors(s) + kiv_sensor_set_mount_mode(s, 4); }, true, true},
        {"mode", [](kiv_sensor* s) { return kiv_sensor_set_mount_mode(s, 4); }, false, false},
        {"uncertainty", [](kiv_sensor* s) { return kiv_sensor_set_uncertainty(s, "level_y", 0.5); },
         false, true},
        {"clear", kiv_sensor_clear_uncertainties, false, true},
        {"calibration", giveCalibration, false, false},
        {"calibration, frame",
         [](kiv_sensor* s) {
             return giveCalibration(s) + kiv_sensor_set_frame(s, KIV_FRAME_LOCAL);
         },
         true, true},
    };
    const auto parameters = loaded(example);
    std::vector<kiv_reading> readings(4, goodOne());
    for (std::size_t i = 0; i < readings.size(); ++i)
        readings[i].vector[2] += 300 * static_cast<float>(i);
    const auto made = [&] {
        Sensor sensor = sensorOf(parameters);
        giveUncertainties(sensor, true);
        return sensor;
    };
    const Sensor unset = made();
    const auto start = [&](const Sensor& sensor) {
        EXPECT_EQ(kiv_sensor_capture_reference(sensor.get(), &readings[1]), 0);
        return runMany(sensor, readings);
    };
    const Results before = start(unset);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Sensor first = made(), late = made(), judged = made();
        EXPECT_EQ(row.set(first.get()), 0);
        const Results expected = start(first);
        Results ignored(readings.size());
        EXPECT_EQ(kiv_sensor_update_many(late.get(), readings.data(), readings.size(),
                                         ignored.results.data(), nullptr, nullptr),
                  0);
        runMany(judged, readings);
        for (const Sensor* sensor : {&late, &judged}) {
            EXPECT_EQ(row.set(sensor->get()), 0);
            EXPECT_TRUE(start(*sensor) == expected);
        }
        kiv_sensor* copied = nullptr;
        ASSERT_EQ(kiv_sensor_copy(judged.get(), &copied), 0);
        EXPECT_TRUE(runMany(Sensor(copied), readings) == expected);
        EXPECT_EQ(!sameBytes(expected.trust, before.trust), row.changesTrust);
        EXPECT_EQ(!sameBytes(expected.uncertainties, before.uncertainties), row.changesUncertainty);
    }
}

// Also after a setting; it is one that spoils the rows of the local frame.
TEST(CSurface, AReferenceThatWasNotJudgedCounts) {
    const auto parameters = loaded(example);
    std::vector<kiv_reading> readings(3, goodOne());
    readings[0].level_y = 9.75F; // outside its limits
    readings[1].azimuth = 70;
    const Sensor whole = sensorOf(parameters, KIV_FRAME_LOCAL);
    const Sensor part = sensorOf(parameters, KIV_FRAME_LOCAL);
    for (const Sensor* sensor : {&whole, &part})
        giveUncertainties(*sensor, false);
    const Results all = runMany(whole, readings);
    kiv_result ignored;
    EXPECT_EQ(kiv_sensor_update(part.get(), readings.data(), &ignored), 0);
    EXPECT_EQ(kiv_sensor_set_frame(part.get(), KIV_FRAME_LOCAL), 0);
    const Results rest = runMany(part, readings, 1);
    EXPECT_EQ(std::memcmp(rest.trust.data(), &all.trust[1], 2 * sizeof all.trust[1]), 0);
    EXPECT_EQ(std::memcmp(rest.uncertainties.data(), &all.uncertainties[1],
                          2 * sizeof all.uncertainties[1]),
              0);
    EXPECT_EQ(rest.trust[0].trust, KIV_TRUST_REFERENCE);
    EXPECT_GT(rest.uncertainties[0].reference_rz, 0);
}

TEST(CSurface, RefusesUncertaintiesAsTheToolDoes) {
    const auto parameters = loaded(example);
    const Sensor sensor = sensorOf(parameters);
    giveUncertainties(sensor, false);
    const std::vector<kiv_reading> readings(2, goodOne());
    runMany(sensor, readings);
    const Results before = runMany(sensor, readings);
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const std::pair<const char*, double> rows[] = {
        {"level_y", -1e-9}, {"level_y", nan}, {"level_y", infinity},   {"level_y", 1e6 + 1},
        {"level", 0.1},     {"", 0.1},        {"vector_across", 0.1},  {"vector_along", 0},
        {"level_x", 0.1},   {"level_x", 0},   {"tilt_offset_x_deg", 1}};
    for (const auto& [name, value] : rows) {
        EXPECT_EQ(kiv_sensor_set_uncertainty(sensor.get(), name, value), 20) << name << value;
        EXPECT_TRUE(runMany(sensor, readings) == before) << name << value;
    }
    EXPECT_EQ(kiv_sensor_clear_uncertainties(sensor.get()), 0);
    EXPECT_EQ(kiv_sensor_set_uncertainty(sensor.get(), "vector_across", 1e6), 0);
}

TEST(CSurface, GivesTheCalibrationsPartWhereThereAreAngles) {
    const auto parameters = loaded(example);
    const Sensor sensor = sensorOf(parameters);
    const std::vector<kiv_reading> readings = someReadings();
    const auto parts = [&] {
        const Results r = runMany(sensor, readings);
        for (std::size_t i = 0; i < readings.size(); ++i)
            EXPECT_EQ(std::isnan(r.calibration[i].rz), r.states[i] != KIV_STATE_OK) << i;
        return r.calibration[11].rz;
    };
    EXPECT_EQ(parts(), 0);
    EXPECT_EQ(giveCalibration(sensor.get()), 0);
    EXPECT_GT(parts(), 0.001F);
    const char* const row[] = {"tilt_y_calibration_table.40"};
    const float table[] = {-10, -10, 10, 10};
    EXPECT_EQ(kiv_sensor_set_calibration(sensor.get(), row, 1, covariance), 0);
    EXPECT_EQ(kiv_sensor_set_tilt_y_table(sensor.get(), table, 2), 0); // without that row
    EXPECT_EQ(parts(), 0);
    EXPECT_EQ(kiv_sensor_set_calibration(sensor.get(), nullptr, 0, nullptr), 0);
    EXPECT_EQ(parts(), 0);
}

// In the manner of kiv info --json.
Json valuesOf(const kiv_parameters* p, const std::string& block) {
    const char* name = block.c_str();
    std::int32_t kind = -1, integer = 0;
    std::size_t count = 0;
    EXPECT_EQ(kiv_block_kind(name, &kind), 0);
    const char* word = nullptr;
    if (kind == KIV_BLOCK_INTEGER)
        return kiv_parameters_integer(p, name, &integer) == 0 ? Json(integer) : Json();
    if (kind == KIV_BLOCK_WORD)
        return kiv_parameters_word(p, name, &word) == 0 ? Json(word) : Json();
    EXPECT_EQ(kiv_parameters_number_count(p, name, &count), 0);
    std::vector<float> numbers(count);
    EXPECT_EQ(kiv_parameters_numbers(p, name, numbers.data(), count - 1), 20);
    EXPECT_EQ(kiv_parameters_numbers(p, name, numbers.data(), count), 0);
    const auto rows = [&](std::size_t columns) {
        Json made = Json::array();
        for (std::size_t i = 0; i < count; i += columns)
            made.push_back(std::vector<float>(&numbers[i], &numbers[i] + columns));
        return made;
    };
    if (kind == KIV_BLOCK_MATRIX)
        return rows(3);
    if (kind == KIV_BLOCK_ENCODER_TABLE)
        return {{"rows_deg", rows(2)}};
    Json named;
    if (kind == KIV_BLOCK_TILT_TABLE) {
        named["rows_deg"] = rows(2);
        numbers.resize(3);
        EXPECT_EQ(kiv_parameters_limits(p, name, numbers.data()), 0);
    }
    for (std::size_t i = 0; const char* value = kiv_block_value_name(name, i); ++i)
        named[value] = numbers[i];
    if (kind == KIV_BLOCK_TILT_TABLE && kiv_parameters_word(p, name, &word) == 0)
        named["closing_word"] = word;
    return !named.is_null() ? named : count == 1 ? Json(numbers[0]) : Json(numbers);
}

TEST(CSurface, ReadsTheBlocksAsTheToolPrintsThem) {
    const auto parameters = loaded(example);
    Json all;
    for (std::size_t i = 0; const char* name = kiv_block_name(i); ++i)
        all[name] = valuesOf(parameters.get(), name);
    EXPECT_EQ(all, Json::parse(tool({"info", "--json", example}).out));
    std::int32_t integer = 0;
    float limits[3];
    EXPECT_EQ(kiv_parameters_integer(parameters.get(), "qvc", &integer), 20);
    EXPECT_EQ(kiv_parameters_integer(parameters.get(), "mode", &integer), 20);
    EXPECT_EQ(kiv_parameters_limits(parameters.get(), "qvc", limits), 20);
}

TEST(CSurface, TellsEveryFaultAndKeepsWhatWasLoaded) {
    using kiv::Block;
    const ParameterFolder folder;
    const std::string path = folder.path() + "/\xC3\xA4\xE4\xBD\x8D Tg.prm"; // UTF-8
    const fs::path native(std::u8string(path.begin(), path.end()));
    std::ofstream(native, std::ios::binary) << parameterText();
    const auto parameters = loaded(path);
    const std::string bad =
        parameterText({.values = {{Block::tiltOffset, "1 x"}, {Block::admOffset, "y"}},
                       .titles = {{Block::qvc, "QVX"}}});
    EXPECT_EQ(kiv_parameters_load_text(parameters.get(), bad.data(), bad.size()), 553);
    std::vector<std::string> faults;
    std::size_t count = 0, size = 0;
    EXPECT_EQ(kiv_parameters_fault_count(parameters.get(), &count), 0);
    std::int64_t line = 0, column = 0;
    const char *expected = nullptr, *found = nullptr, *text = nullptr;
    for (std::size_t i = 0; i < count; ++i) {
        EXPECT_EQ(kiv_parameters_fault(parameters.get(), i, &line, &column, &expected, &found), 0);
        faults.push_back(std::to_string(line) + ':' + std::to_string(column) + ": expected "
                         + expected + ", found " + found);
    }
    std::ofstream(folder.file(), std::ios::binary) << bad;
    EXPECT_EQ(kiv_parameters_fault(parameters.get(), count, &line, &column, &expected, &found), 20);
    std::vector<std::string> shown = lines(tool({"check", folder.file()}).err);
    std::erase_if(shown, [](const auto& l) { return l.ends_with("(warning)"); });
    for (std::string& l : shown)
        l.erase(0, folder.file().size() + 1);
    EXPECT_GE(count, 3U);
    EXPECT_EQ(faults, shown);

    EXPECT_EQ(kiv_parameters_text(parameters.get(), &text, &size), 0);
    EXPECT_EQ(std::string(text, size), parameterText());
    std::ofstream(folder.file(), std::ios::binary) << parameterText();
    shown = lines(tool({"check", folder.file()}).err);
    EXPECT_EQ(kiv_parameters_warning_count(parameters.get(), &count), 0);
    EXPECT_GE(count, 1U);
    ASSERT_EQ(count, shown.size());
    for (std::size_t i = 0; i < count; ++i) {
        EXPECT_EQ(kiv_parameters_warning(parameters.get(), i, &line, &column, &expected, &found),
                  0);
        EXPECT_EQ(folder.file() + ':' + std::to_string(line) + ':' + std::to_string(column)
                      + ": expected " + expected + ", found " + found + " (warning)",
                  shown[i]);
    }
    EXPECT_EQ(kiv_parameters_warning(parameters.get(), count, &line, &column, &expected, &found),
              20);
    EXPECT_EQ(kiv_parameters_load(parameters.get(), folder.path().c_str()), 550);
    EXPECT_EQ(kiv_parameters_fault_count(parameters.get(), &count), 0);
    EXPECT_EQ(count, 0U);
    std::ofstream(folder.path() + "/Tg6.prm") << parameterText();
    EXPECT_EQ(kiv_parameters_load(parameters.get(), (folder.path() + "\\Tg6.prm").c_str()), 553);

    // Over itself, with every file operation failing in turn.
    const std::string rewritten = [&] {
        const auto other = loaded(path);
        EXPECT_EQ(kiv_parameters_rewrite(other.get(), path.c_str()), 0);
        return contentOf(native).value_or("");
    }();
    std::set<kiv::platform::FileOperation> kinds;
    bool failed = true;
    for (int k = 1; failed; ++k) {
        std::ofstream(native, std::ios::binary) << "old";
        const FailingOperation failing(k);
        const int code = kiv_parameters_rewrite(parameters.get(), path.c_str());
        failed = FailingOperation::operation().has_value();
        if (failed)
            kinds.insert(*FailingOperation::operation());
        EXPECT_EQ(code, failed ? KIV_STATUS_CANNOT_OPEN : KIV_STATUS_OK) << k;
        EXPECT_EQ(contentOf(native), failed ? "old" : rewritten) << k;
        EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 3) << k; // none more
    }
    EXPECT_EQ(kinds.size(), 7U); // status, create, write, flush, sync, close, rename
}

TEST(CSurface, ARewriteKeepsWhatTheFileIs) {
    const ParameterFolder folder;
    const auto parameters = loaded(example);
    const fs::path file = folder.file(), link = folder.path() + "/link", name = file.string() + "2";
    const auto rewrite = [&](const fs::path& path) {
        return kiv_parameters_rewrite(parameters.get(), path.string().c_str());
    };
    std::error_code noLinks;
    fs::create_symlink("Tg5.prm", folder.path() + "/inner", noLinks);
    fs::create_symlink(fs::absolute(folder.path() + "/inner"), link, noLinks);
    EXPECT_EQ(rewrite(noLinks ? file : link), 0); // where the link leads there is no file yet
    EXPECT_TRUE(noLinks || fs::is_symlink(link));
    fs::permissions(file, fs::perms(0640));
    const auto mode = fs::status(file).permissions();
    std::ofstream(file, std::ios::app) << "old";
    EXPECT_EQ(rewrite(noLinks ? file : link), 0);
    EXPECT_FALSE(contentOf(file)->ends_with("old"));
    EXPECT_EQ(fs::status(file).permissions(), mode);

    const std::string before = contentOf(file).value_or("") + "old";
    std::ofstream(file, std::ios::app) << "old";
    fs::create_hard_link(file, name);
    EXPECT_EQ(rewrite(file), 550);
    EXPECT_TRUE(
        std::string(kiv_last_error()).ends_with(": expected a file with one name, found 2"));
    fs::remove(name);
    fs::permissions(file, fs::perms(0444));
    EXPECT_EQ(rewrite(file), 550);
    EXPECT_TRUE(std::string(kiv_last_error()).ends_with("found a read-only one"));
    fs::permissions(file, fs::perms(0644));
    EXPECT_EQ(contentOf(file), before);
    EXPECT_EQ(rewrite(folder.path()), 550);
}

// Each pointer null in its turn.
template <typename... P, std::size_t... I>
void refuseNulls(const char* name, std::size_t optional, int (*f)(P...), std::tuple<P...> given,
                 std::index_sequence<I...>) {
    const auto tryOne = [&](auto place) {
        constexpr std::size_t i = decltype(place)::value;
        if constexpr (std::is_pointer_v<std::tuple_element_t<i, std::tuple<P...>>>) {
            auto arguments = given;
            std::get<i>(arguments) = nullptr;
            EXPECT_EQ(std::apply(f, arguments), i >= optional ? 0 : 20) << name << ", place " << i;
            EXPECT_TRUE(
                i >= optional
                || std::string(kiv_last_error()).ends_with(": expected a pointer, found null"));
        }
    };
    (tryOne(std::integral_constant<std::size_t, I>()), ...);
    EXPECT_NE(std::apply(f, given), 20) << name;
}

#define REFUSES_NULLS(f, ...) REFUSES_NULLS_BEFORE(9, f, __VA_ARGS__)
#define REFUSES_NULLS_BEFORE(optional, f, ...)                                                     \
    [&]<typename... P>(int (*function)(P...)) {                                                    \
        refuseNulls(#f, optional, function, std::tuple<P...>(__VA_ARGS__),                         \
                    std::index_sequence_for<P...>());                                              \
    }(f)

TEST(CSurface, RefusesANullInEveryPlace) {
    const ParameterFolder folder;
    const auto parameters = loaded(example);
    const auto sensor = sensorOf(parameters);
    kiv_parameters* const p = parameters.get();
    kiv_sensor* const s = sensor.get();
    const kiv_reading reading = goodOne();
    kiv_reading copied;
    kiv_result result;
    kiv_trust trust;
    kiv_uncertainty uncertainty;
    kiv_calibration_uncertainty calibration;
    kiv_parameters* newP = nullptr;
    kiv_sensor* newS = nullptr;
    double d[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1}, d2[9] = {1, 1, 1};
    float f[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    std::int64_t line, column;
    std::int32_t integer;
    std::size_t size;
    const char *text, *found;
    std::uint8_t state;
    bool has;
    const std::string target = folder.file();

    REFUSES_NULLS(kiv_parameters_new, &newP);
    kiv_parameters_free(newP);
    REFUSES_NULLS(kiv_parameters_copy, p, &newP);
    kiv_parameters_free(newP);
    REFUSES_NULLS(kiv_sensor_new, p, &newS);
    kiv_sensor_free(newS);
    REFUSES_NULLS(kiv_sensor_copy, s, &newS);
    kiv_sensor_free(newS);
    kiv_parameters_free(nullptr);
    kiv_sensor_free(nullptr);
    REFUSES_NULLS(kiv_parameters_load_text, p, "x", std::size_t{1});
    REFUSES_NULLS(kiv_parameters_fault_count, p, &size);
    REFUSES_NULLS(kiv_parameters_fault, p, std::size_t{0}, &line, &column, &text, &found);
    REFUSES_NULLS(kiv_parameters_warning_count, p, &size);
    REFUSES_NULLS(kiv_parameters_load, p, example.c_str());
    REFUSES_NULLS(kiv_parameters_text, p, &text, &size);
    REFUSES_NULLS(kiv_block_kind, "qvc", &integer);
    REFUSES_NULLS(kiv_parameters_integer, p, "mounting_mode", &integer);
    REFUSES_NULLS(kiv_parameters_word, p, "device_owner", &text);
    REFUSES_NULLS(kiv_parameters_number_count, p, "qvc", &size);
    REFUSES_NULLS(kiv_parameters_numbers, p, "qvc", f, std::size_t{9});
    REFUSES_NULLS(kiv_parameters_limits, p, "tilt_x_calibration_table", f);
    REFUSES_NULLS(kiv_parameters_rewrite, p, target.c_str());
    REFUSES_NULLS(kiv_sensor_set_frame, s, KIV_FRAME_MACHINE);
    REFUSES_NULLS(kiv_sensor_frame, s, &integer);
    REFUSES_NULLS(kiv_sensor_set_mount_mode, s, 4);
    REFUSES_NULLS(kiv_sensor_mount_mode, s, &integer);
    for (const auto set : {kiv_sensor_set_azimuth_table, kiv_sensor_set_elevation_table,
                           kiv_sensor_set_tilt_x_table, kiv_sensor_set_tilt_y_table})
        REFUSES_NULLS(set, s, f, std::size_t{2});
    for (const auto set : {kiv_sensor_set_level1_parameters, kiv_sensor_set_level2_parameters,
                           kiv_sensor_set_qvc_parameters, kiv_sensor_set_scale_factors})
        REFUSES_NULLS(set, s, f, std::size_t{6});
    for (const auto set :
         {kiv_sensor_set_local_matrix, kiv_sensor_set_machine_matrix, kiv_sensor_set_known_vector})
        REFUSES_NULLS(set, s, d);
    REFUSES_NULLS(kiv_sensor_set_encoder_offset, s, 0.0F, 0.0F);
    REFUSES_NULLS(kiv_sensor_set_tilt_offset, s, 0.0F, 0.0F);
    REFUSES_NULLS(kiv_sensor_set_thermal_factor, s, 0.0F, 1.0F, 0.0F, 1.0F);
    REFUSES_NULLS(kiv_sensor_capture_reference, s, &reading);
    REFUSES_NULLS(kiv_sensor_update, s, &reading, &result);
    REFUSES_NULLS_BEFORE(4, kiv_sensor_update_many, s, &reading, std::size_t{1}, &result, d,
                         &state);
    REFUSES_NULLS_BEFORE(3, kiv_sensor_judge, s, &reading, &result, &trust, &uncertainty);
    REFUSES_NULLS_BEFORE(4, kiv_sensor_judge_many, s, &reading, std::size_t{1}, &result, d, &state,
                         &trust, &uncertainty);
    REFUSES_NULLS_BEFORE(4, kiv_sensor_judge_calibrated, s, &reading, std::size_t{1}, &result, d,
                         &state, &trust, &uncertainty, &calibration);
    REFUSES_NULLS(kiv_sensor_set_uncertainty, s, "x", 1.0);
    REFUSES_NULLS(kiv_sensor_set_calibration, s, calibrated, std::size_t{3}, covariance);
    REFUSES_NULLS(kiv_sensor_clear_uncertainties, s);
    REFUSES_NULLS(kiv_sensor_matrix, s, d);
    REFUSES_NULLS(kiv_sensor_has_reference, s, &has);
    REFUSES_NULLS(kiv_sensor_reference_reading, s, &copied);
    REFUSES_NULLS(kiv_sensor_reference_index, s, &line);
    REFUSES_NULLS(kiv_home_angles, d, d2, d, d2, d, d);
    EXPECT_EQ(kiv_block_value_name(nullptr, 0), nullptr);

    EXPECT_EQ(kiv_state_name(6), nullptr);
    EXPECT_EQ(kiv_state_name(-1), nullptr);
    EXPECT_EQ(kiv_trust_name(14), nullptr);
    EXPECT_EQ(kiv_trust_name(KIV_TRUST_NONE), nullptr);
}

TEST(CSurface, TellsWhyACallWasRefused) {
    const ParameterFolder folder;
    const auto parameters = loaded(example);
    const auto sensor = sensorOf(parameters);
    kiv_parameters *const p = parameters.get(), *made = nullptr;
    kiv_sensor* const s = sensor.get();
    ASSERT_EQ(kiv_parameters_new(&made), 0);
    const Parameters empty(made);
    const std::string missing = folder.path() + "/none.prm", longName(5000, 'x');
    kiv_sensor* newSensor = nullptr;
    kiv_reading reading = goodOne();
    reading.level_y = std::numeric_limits<float>::infinity();
    std::size_t size;
    std::int64_t index;
    const char* text;
    float f[9] = {};
    double d[9];
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    const auto give = [&](std::vector<const char*> names, std::vector<double> elements) {
        return kiv_sensor_set_calibration(s, names.data(), names.size(), elements.data());
    };
    const struct {
        int code;
        std::string detail;
        std::function<int()> call;
    } rows[] = {
        {550, missing + ": " + kiv::platform::systemErrorText(2),
         [&] { return kiv_parameters_load(p, missing.c_str()); }},
        {550, folder.path() + ": expected a regular file",
         [&] { return kiv_parameters_load(p, folder.path().c_str()); }},
        {553, "text:1:1: expected the title \"Serial Number\", found end of file",
         [&] { return kiv_parameters_load_text(p, nullptr, 0); }},
        {20, "index: expected one below the count, 1, found 1",
         [&] { return kiv_parameters_fault(p, 1, &index, &index, &text, &text); }},
        {551, "parameters: expected a file to be loaded, found none",
         [&] { return kiv_sensor_new(empty.get(), &newSensor); }},
        {551, "parameters: expected a file to be loaded, found none",
         [&] { return kiv_parameters_text(empty.get(), &text, &size); }},
        {551, "parameters: expected a file to be loaded, found none",
         [&] { return kiv_parameters_number_count(empty.get(), "qvc", &size); }},
        {551, "parameters: expected a file to be loaded, found none",
         [&] { return kiv_parameters_rewrite(empty.get(), missing.c_str()); }},
        {20, "block: expected a name that kiv_block_name gives, found \"" + longName.substr(0, 962),
         [&] { return kiv_parameters_number_count(p, longName.c_str(), &size); }},
        {20, "block: expected one with limits, found qvc",
         [&] { return kiv_parameters_limits(p, "qvc", f); }},
        {20, "capacity: expected at least 6, the count of qvc, found 5",
         [&] { return kiv_parameters_numbers(p, "qvc", f, 5); }},
        {20, "frame: expected 0 (local) or 1 (machine), found 2",
         [&] { return kiv_sensor_set_frame(s, 2); }},
        {20, "rows: expected at least 1, found 0",
         [&] { return kiv_sensor_set_tilt_x_table(s, f, 0); }},
        {20, "rows: expected at most 536870911, found " + std::to_string(SIZE_MAX / 4 + 2),
         [&] { return kiv_sensor_set_tilt_x_table(s, f, SIZE_MAX / 4 + 2); }},
        {20, "rows: expected at most 536870911, found " + std::to_string(SIZE_MAX),
         [&] { return kiv_sensor_set_azimuth_table(s, f, SIZE_MAX); }},
        {20, "count: expected at most 6, found 7",
         [&] { return kiv_sensor_set_qvc_parameters(s, f, 7); }},
        {20, "table: row 1, column 1 (from 0): expected a finite number, found nan",
         [&] {
             return kiv_sensor_set_azimuth_table(s, std::data({0.F, 0.F, 9.F, nan}), 2);
         }},
        {20, "table: row 0, column 0 (from 0): expected a finite number, found nan",
         [&] {
             return kiv_sensor_set_tilt_y_table(s, std::data({nan, 0.F}), 1);
         }},
        {20, "table: row 1 (from 0): expected a reading above 2, that of the row before, found 2",
         [&] {
             return kiv_sensor_set_tilt_x_table(s, std::data({2.F, 0.F, 2.F, 1.F}), 2);
         }},
        {20, "table: row 2 (from 0): expected a reading below 1, that of the row before, found 3",
         [&] {
             return kiv_sensor_set_tilt_y_table(s, std::data({2.F, 0.F, 1.F, 1.F, 3.F, 2.F}), 3);
         }},
        {20, "values[1]: expected a finite number, found nan",
         [&] {
             return kiv_sensor_set_scale_factors(s, std::data({1.F, nan}), 2);
         }},
        {20, "elevation: expected a finite number, found nan",
         [&] { return kiv_sensor_set_encoder_offset(s, 0, nan); }},
        {20, "mode: expected the mount mode of the parameters, 4, whose model stays, found 3",
         [&] { return kiv_sensor_set_mount_mode(s, 3); }},
        {20, "m: expected a rotation, found a reflection (determinant -1)",
         [&] {
             return kiv_sensor_set_local_matrix(s,
                                                std::data({1., 0., 0., 0., 1., 0., 0., 0., -1.}));
         }},
        {20, "m: expected a rotation, found rows that miss length 1 and right angles by 1.1e-05",
         [&] {
             return kiv_sensor_set_machine_matrix(
                 s, std::data({1., 1.1e-5, 0., 0., 1., 0., 0., 0., 1.}));
         }},
        {20,
         "names[1]: expected a parameter that the angles depend on, as angle_offset.azimuth_deg, "
         "found \"scale_factor.8\"",
         [&] {
             return give({"scale_factor.0", "scale_factor.8"}, {1, 0, 0, 1});
         }},
        {20, "names[1]: expected each name once, found qvc.x again",
         [&] {
             return give({"qvc.x", "qvc.x"}, {1, 0, 0, 1});
         }},
        {20, "names[1]: expected a pointer, found null",
         [&] {
             return give({"qvc.x", nullptr}, {1, 0, 0, 1});
         }},
        {20, "covariance: row 1, column 0 (from 0): expected a finite number, found nan",
         [&] {
             return give({"qvc.x", "qvc.y"}, {1, 0, nan, 1});
         }},
        {20, "covariance: row 1, column 1 (from 0): expected a finite number, at least 0, found -1",
         [&] {
             return give({"qvc.x", "qvc.y"}, {1, 0, 0, -1});
         }},
        {20,
         "covariance: row 1, column 0 (from 0): expected 0.5 as on the other side of the diagonal, "
         "found 0.4",
         [&] {
             return give({"qvc.x", "qvc.y"}, {1, 0.5, 0.4, 1});
         }},
        {20,
         "covariance: expected a positive semidefinite matrix, found one whose row 1 (from 0) does "
         "not go with those before it",
         [&] {
             return give({"qvc.x", "qvc.y"}, {1, 1.01, 1.01, 1});
         }},
        {20,
         "covariance: expected a positive semidefinite matrix, found one whose row 1 (from 0) does "
         "not go with those before it",
         [&] {
             return give({"qvc.x", "qvc.y"}, {1, 0.1, 0.1, 0});
         }},
        {554,
         "reading: expected one that an update makes the reference, found no number in level_y",
         [&] { return kiv_sensor_capture_reference(s, &reading); }},
        {554, "sensor: expected one with a reference, found none",
         [&] { return kiv_sensor_reference_index(s, &index); }},
        {554, "sensor: expected a last reading with status 2, found none",
         [&] { return kiv_sensor_matrix(s, d); }},
    };
    const Sensor untouched = sensorOf(parameters);
    for (const auto& row : rows) {
        EXPECT_EQ(row.call(), row.code);
        EXPECT_EQ(kiv_last_error(), row.detail);
    }
    EXPECT_EQ(kiv_sensor_update_many(s, nullptr, 0, nullptr, nullptr, nullptr), 0);
    EXPECT_STREQ(kiv_last_error(), rows[std::size(rows) - 1].detail.c_str());
    std::thread([] { EXPECT_STREQ(kiv_last_error(), ""); }).join();
    const std::vector<kiv_reading> readings(2, goodOne());
    EXPECT_TRUE(runMany(sensor, readings) == runMany(untouched, readings));
}

// The setters against those of the class, on sensors that differ in everything else.
TEST(CSurface, SettersReachTheSensor) {
    const auto parameters = loaded(example);
    const auto sensor = sensorOf(parameters);
    CKiv classes;
    prepare(classes, 4);
    const float rows[] = {-20, -20, -5, -5, 5, 5, 20, 20};
    const double identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    const float factors[] = {0, 0, 0, 0, 1, 1, 1, 0};
    kiv_sensor* const s = sensor.get();
    const int codes[] = {kiv_sensor_set_tilt_x_table(s, rows, 4),
                         kiv_sensor_set_tilt_y_table(s, rows, 4),
                         kiv_sensor_set_azimuth_table(s, rows, 0),
                         kiv_sensor_set_elevation_table(s, rows, 0),
                         kiv_sensor_set_thermal_factor(s, 0, 1, 0, 1),
                         kiv_sensor_set_local_matrix(s, identity),
                         kiv_sensor_set_machine_matrix(s, identity),
                         kiv_sensor_set_scale_factors(s, factors, 8),
                         kiv_sensor_set_encoder_offset(s, 0, 0),
                         kiv_sensor_set_tilt_offset(s, 0, 0),
                         kiv_sensor_set_mount_mode(s, 4)};
    for (const int code : codes)
        EXPECT_EQ(code, 0);
    kiv_reading reading = goodOne();
    for (int i = 0; i < 3; ++i) {
        kiv_result result;
        KIV_INFO info;
        EXPECT_EQ(kiv_sensor_update(s, &reading, &result), 0);
        classes.updateKIVData(std::bit_cast<KIV_RAWINFO>(reading), info);
        EXPECT_EQ(std::memcmp(&info, &result, sizeof info), 0) << i;
        reading.azimuth += 7;
        reading.level_y += 1;
    }
    // The parameters' own tilt tables, set again, change nothing at any tilt.
    std::vector<kiv_reading> tilted(40, goodOne());
    for (std::size_t i = 0; i < tilted.size(); ++i)
        tilted[i].level_x = tilted[i].level_y = 0.5F * static_cast<float>(i) - 9.9F;
    const Sensor untouched = sensorOf(parameters), again = sensorOf(parameters);
    for (const auto& [block, set] :
         {std::pair("tilt_x_calibration_table", &kiv_sensor_set_tilt_x_table),
          std::pair("tilt_y_calibration_table", &kiv_sensor_set_tilt_y_table)}) {
        std::size_t count = 0;
        EXPECT_EQ(kiv_parameters_number_count(parameters.get(), block, &count), 0);
        std::vector<float> table(count);
        EXPECT_EQ(kiv_parameters_numbers(parameters.get(), block, table.data(), count), 0);
        EXPECT_EQ(set(again.get(), table.data(), count / 2), 0);
    }
    EXPECT_TRUE(runMany(again, tilted) == runMany(untouched, tilted));
    // The three-vector model starts from the QVC parameters as set, whatever updates made of them.
    const ParameterFolder folder;
    std::ofstream(folder.file(), std::ios::binary) << exampleInMode(8);
    const Sensor threeVectors = sensorOf(loaded(folder.file()));
    const std::vector<kiv_reading> readings(2, goodOne());
    runMany(threeVectors, readings);
    const Results before = runMany(threeVectors, readings);
    EXPECT_EQ(kiv_sensor_set_qvc_parameters(threeVectors.get(), factors, 0), 0);
    EXPECT_EQ(kiv_sensor_set_mount_mode(threeVectors.get(), 8), 0);
    EXPECT_TRUE(runMany(threeVectors, readings) == before);
    const double x[] = {1, 0, 0}, direction[] = {0.8, 0.5, 0.1}, angles[] = {1, 2}, tilt[] = {3, 4};
    double h = 0, v = 0, expectedH = 0, expectedV = 0;
    EXPECT_EQ(kiv_home_angles(x, direction, angles, tilt, &h, &v), 0);
    classes.Calc_HV0({1, 0, 0}, {0.8, 0.5, 0.1}, {1, 2}, {3, 4, 0}, &expectedH, &expectedV);
    EXPECT_TRUE(h == expectedH && v == expectedV);
    const double zero[3] = {};
    EXPECT_EQ(kiv_home_angles(zero, direction, angles, tilt, &h, &v), 554);
}

TEST(CSurface, SurvivesEveryRefusedAllocation) {
    const ParameterFolder folder;
    const auto parameters = loaded(example);
    const auto sensor = sensorOf(parameters);
    kiv_parameters* const p = parameters.get();
    kiv_sensor* const s = sensor.get();
    const std::string text = parameterText(), target = folder.file();
    const kiv_reading reading = goodOne();
    std::vector<float> rows(2 * 800);
    for (std::size_t i = 0; i < rows.size(); i += 2)
        rows[i] = rows[i + 1] = static_cast<float>(i) * 0.125F;
    double h = 0, v = 0;
    const double d[] = {1, 1, 0};
    kiv_result first, again;
    ASSERT_EQ(kiv_sensor_update(s, &reading, &first), 0);
    kiv_trust trust;
    kiv_uncertainty uncertainty;
    kiv_calibration_uncertainty calibration;
    for (const bool local : {true, false}) {
        ASSERT_EQ(kiv_sensor_set_frame(s, local ? KIV_FRAME_LOCAL : KIV_FRAME_MACHINE), 0);
        ASSERT_EQ(giveCalibration(s), 0);
        const auto calls = allocationCount();
        ASSERT_EQ(kiv_sensor_judge_calibrated(s, &reading, 1, &first, nullptr, nullptr, &trust,
                                              &uncertainty, &calibration),
                  0);
        EXPECT_EQ(allocationCount(), calls);
    }

    const auto made = [](auto* handle, int code) {
        if (code == 0)
            Free()(handle);
        return code;
    };
    const std::pair<const char*, std::function<int()>> operations[] = {
        {"new",
         [&, q = p]() mutable {
             int c = kiv_parameters_new(&q);
             return made(q, c);
         }},
        {"copy",
         [&, q = p]() mutable {
             int c = kiv_parameters_copy(p, &q);
             return made(q, c);
         }},
        {"sensor",
         [&, q = s]() mutable {
             int c = kiv_sensor_new(p, &q);
             return made(q, c);
         }},
        {"sensor copy",
         [&, q = s]() mutable {
             int c = kiv_sensor_copy(s, &q);
             return made(q, c);
         }},
        {"azimuth", [&] { return kiv_sensor_set_azimuth_table(s, rows.data(), 800); }},
        {"tilt", [&] { return kiv_sensor_set_tilt_y_table(s, rows.data(), 800); }},
        {"uncertainty", [&] { return kiv_sensor_set_uncertainty(s, "level_y", 0.5); }},
        {"clear", [&] { return kiv_sensor_clear_uncertainties(s); }},
        {"calibration", [&] { return giveCalibration(s); }},
        {"frame", [&] { return kiv_sensor_set_frame(s, KIV_FRAME_MACHINE); }},
        {"capture", [&] { return kiv_sensor_capture_reference(s, &reading); }},
        {"home", [&] { return kiv_home_angles(d, d, d, d, &h, &v); }},
        {"rewrite", [&] { return kiv_parameters_rewrite(p, target.c_str()); }},
        {"load", [&] { return kiv_parameters_load(p, target.c_str()); }},
        {"text", [&] { return kiv_parameters_load_text(p, text.data(), text.size()); }},
        {"fault", [&] { return kiv_parameters_load_text(p, "x", 1) == 553 ? 0 : 21; }},
    };
    for (const auto& [name, operation] : operations) {
        SCOPED_TRACE(name);
        const std::string source = contentOf(example).value_or("");
        int code = 21;
        for (std::size_t n = 1; code == 21 && n < 2000; ++n) {
            failAllocation(n);
            code = operation();
            failAllocation(0);
            if (code == 0)
                continue;
            ASSERT_EQ(kiv_sensor_update(s, &reading, &again), 0);
            EXPECT_EQ(std::memcmp(&again, &first, sizeof first), 0) << n;
        }
        EXPECT_EQ(code, 0);
        ASSERT_EQ(kiv_sensor_update(s, &reading, &first), 0); // with what was set
    }
    const char* whole = nullptr;
    std::size_t size = 0;
    EXPECT_EQ(kiv_parameters_text(p, &whole, &size), 0);
    EXPECT_EQ(std::string(whole, size), text);
}

TEST(CSurface, TellsVersionAndTexts) {
    EXPECT_EQ(kiv_version() + std::string("\n"), tool({"--version"}).out);
    EXPECT_EQ(kiv_version_number(),
              10000 * KIV_VERSION_MAJOR + 100 * KIV_VERSION_MINOR + KIV_VERSION_PATCH);
    std::set<std::string> texts;
    for (const int code : {0, 20, 21, 550, 551, 553, 554, 1})
        texts.insert(kiv_status_text(code));
    EXPECT_EQ(texts.size(), 8U);
    for (std::size_t i = 0; i < kiv::trustWords.size(); ++i)
        EXPECT_STREQ(kiv_trust_name(static_cast<int>(i)), kiv::trustWords[i].word);
    for (std::size_t i = 0; i < kiv::rowStateNames.size(); ++i)
        EXPECT_STREQ(kiv_state_name(static_cast<int>(i)), kiv::rowStateNames[i]);
}

} // namespace
