// What recordings tell on themselves: sound ones nothing, spoiled ones what was done to them.
// tests/proofs/witnesses counts many more.

#include <array>
#include <cmath>
#include <fstream>
#include <functional>
#include <numbers>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/rows/Readings.h"
#include "tests/ParameterRecord.h"
#include "tests/ToolRunner.h"

namespace {

using namespace kiv;
using test::tool;

// A recording in cells: time_s, then the columns of readings.
class Rows {
public:
    Rows(const std::string& parameterFile, const char* trajectory, bool noisy) {
        std::vector<std::string> arguments{"simulate", parameterFile,  "--rows",
                                           "800",      "--trajectory", trajectory};
        if (noisy)
            arguments.insert(arguments.end(), {"--noise-vector", "0.05", "--noise-encoder", "0.002",
                                               "--noise-level", "0.002"});
        for (const std::string& line : test::lines(tool(arguments).out)) {
            std::istringstream in(line);
            all.emplace_back();
            for (std::string cell; std::getline(in, cell, ',');)
                all.back().push_back(cell);
        }
    }

    std::string& cell(std::size_t line, std::string_view column) {
        const std::vector<std::string>& names = all[0];
        const auto place = std::find(names.begin(), names.end(), column) - names.begin();
        return all[line - 1][static_cast<std::size_t>(place)];
    }
    // The lines from the first to the one before the last.
    void change(std::string_view column, std::size_t first, std::size_t last,
                const std::function<double(double)>& value) {
        for (std::size_t line = first; line < last; ++line)
            cell(line, column) = std::to_string(value(std::stod(cell(line, column))));
    }
    void write(std::string_view column, std::size_t first, std::size_t last,
               const std::string& text) {
        for (std::size_t line = first; line < last; ++line)
            cell(line, column) = text;
    }
    void repeat(std::size_t line) { all.insert(all.begin() + 500, all[line - 1]); }

    std::string text() const {
        std::string text;
        for (const auto& row : all) {
            for (const std::string& each : row)
                text.append(each).push_back(',');
            text.back() = '\n';
        }
        return text;
    }

private:
    std::vector<std::vector<std::string>> all;
};

// In a mount mode.
struct Sensor {
    explicit Sensor(int mode) : file(folder.path() + "/Tg5.prm") {
        std::ofstream(file, std::ios::binary) << test::exampleInMode(mode);
    }

    std::string witnesses(const Rows& rows) const {
        const std::string json = tool({"check", "--json", file, "-"}, rows.text()).out;
        const std::size_t start = json.find("\"witnesses\":");
        return start == json.npos ? json
                                  : json.substr(start + 12, json.find(']', start) - start - 11);
    }

    test::ParameterFolder folder;
    std::string file;
};

TEST(Witnesses, ASoundRecordingHasNone) {
    constexpr std::array<const char*, 4> trajectories{"still", "turn", "swing", "random"};
    for (int mode = 1; mode <= 10; ++mode) {
        const Sensor sensor(mode);
        for (const bool noisy : {false, true}) {
            const auto number = static_cast<std::size_t>(mode) + (noisy ? 2 : 0);
            Rows rows(sensor.file, trajectories[number % 4], noisy);
            if (mode % 3 == 0) // quantised
                for (const char* level : {"level_x", "level_y"})
                    rows.change(level, 2, 802, [](double v) { return std::round(v * 100) / 100; });
            rows.change("time_s", 300, 802, [](double t) { return t + 100; }); // a pause
            rows.cell(401, "time_s") = rows.cell(400, "time_s");
            for (const char* column : {"x", "y", "z", "elevation_deg"}) { // lost
                rows.write(column, 600, 610, "-9999");
                rows.write("status", 600, 610, "1");
            }
            for (int stop = 0; stop < 150; ++stop)
                rows.repeat(500);
            if (noisy) // all hop
                for (const char* column : {"x", "azimuth_deg", "elevation_deg"})
                    rows.change(column, 700, 952, [](double v) { return v - 6; });
            EXPECT_EQ(sensor.witnesses(rows), "[]") << mode << ' ' << trajectories[number % 4];
        }
    }
}

TEST(Witnesses, EachKindIsToldOnceWithItsFirstLine) {
    struct Case {
        const char* trajectory;
        std::function<void(Rows&)> spoil;
        const char* told; // kind, column, line, rows
    };
    const auto scale = [](double by) { return [by](double v) { return v * by; }; };
    const auto plus = [](double more) { return [more](double v) { return v + more; }; };
    const std::array<Case, 13> cases{{
        {"swing", [](Rows& r) { r.write("level_y", 200, 500, "1.25"); }, "stuck level_y 200 300"},
        {"swing", [](Rows& r) { r.write("level_y", 2, 802, "1.25"); }, "stuck level_y 2 800"},
        {"turn", [](Rows& r) { r.write("azimuth_deg", 2, 802, "1.25"); },
         "stuck azimuth_deg 2 800"},
        {"turn", [&](Rows& r) { r.change("elevation_deg", 400, 401, plus(7)); },
         "spike elevation_deg 400 1"},
        {"turn", [&](Rows& r) { r.change("x", 400, 401, scale(1.3)); }, "spike vector 400 1"},
        {"turn",
         [&](Rows& r) {
             for (const char* column : {"x", "y", "z"})
                 r.change(column, 400, 802, scale(1.2));
         },
         "other_target vector 400 1"},
        {"random", [&](Rows& r) { r.change("azimuth_deg", 2, 802, scale(std::numbers::pi / 180)); },
         "radians azimuth_deg 2 800"},
        {"swing", [&](Rows& r) { r.change("elevation_deg", 300, 310, plus(90)); },
         "beyond_range elevation_deg 300 10"},
        {"swing", [&](Rows& r) { r.change("time_s", 300, 802, plus(-1)); }, "clock time_s 300 1"},
        {"swing",
         [](Rows& r) {
             for (const std::size_t line : {300U, 500U})
                 for (const char* column : {"status", "x", "y", "z", "azimuth_deg", "level_x"})
                     r.write(column, line, line + 1, column);
         },
         "joined null 300 2"},
        {"swing", [](Rows& r) { r.write("temperature", 300, 320, "-999"); },
         "filler temperature 300 20"},
        {"swing",
         [](Rows& r) {
             for (const char* column : {"x", "y", "z"})
                 r.write(column, 300, 301, "1e30");
         },
         "filler vector 300 1"},
        {"swing", [](Rows& r) { r.write("level_y", 300, 301, "-9999"); }, "filler level_y 300 1"},
    }};
    const Sensor sensor(4);
    for (const Case& each : cases) {
        Rows rows(sensor.file, each.trajectory, true);
        each.spoil(rows);
        std::istringstream words(each.told);
        std::string kind, column, line, count;
        words >> kind >> column >> line >> count;
        std::string expected = R"([{"kind":")";
        expected.append(kind).append(R"(","column":)");
        if (column == "null")
            expected.append(column);
        else
            expected.append("\"").append(column).append("\"");
        expected.append(R"(,"table":"standard input","line":)").append(line);
        expected.append(R"(,"rows":)").append(count).append("}]");
        EXPECT_EQ(sensor.witnesses(rows), expected) << each.told;
    }
}

TEST(Witnesses, AreTheSameOnAnyNumberOfThreadsAndCount) {
    const Sensor sensor(1);
    Rows rows(sensor.file, "turn", true);
    rows.change("time_s", 300, 802, [](double t) { return t + 86394.025; });
    rows.change("time_s", 600, 802, [](double t) { return t - 86400; });
    const std::string soundBut = sensor.folder.path() + "/clock.csv";
    std::ofstream(soundBut) << rows.text();
    Rows filled = rows;
    filled.write("azimuth_deg", 257, 260, "-999"); // the angles of the other rows fit
    std::ofstream(soundBut) << filled.text();
    rows.change("level_x", 400, 401, [](double v) { return v + 5; });
    const std::string table = sensor.folder.path() + "/readings.csv";
    std::ofstream(table) << rows.text();
    const std::string told = table + ":400: spike: level_x ",
                      midnight = table
                                 + ":600: clock: time_s starts "
                                   "again at midnight";
    std::string first;
    for (const char* jobs : {"1", "4"}) {
        const auto result = tool({"run", sensor.file, table, "-q", "-o",
                                  sensor.folder.path() + "/out.csv", "-j", jobs, "--summary", "-"});
        EXPECT_NE(result.err.find(told), std::string::npos) << result.err;
        EXPECT_NE(result.err.find(midnight), std::string::npos) << result.err;
        first = first.empty() ? result.out : first;
        EXPECT_EQ(result.out, first);
    }
    EXPECT_NE(first.find("\"kind\": \"spike\""), std::string::npos);
    EXPECT_NE(tool({"report", sensor.file, table, "-q"}).out.find("<th scope=\"row\">spike</th>"),
              std::string::npos);
    EXPECT_EQ(tool({"check", sensor.file, soundBut}).code, 0);
    EXPECT_EQ(tool({"check", "--strict", sensor.file, soundBut}).code, 1);
}

TEST(Witnesses, CountForAStrictRun) {
    const Sensor sensor(4);
    Rows rows(sensor.file, "turn", false);
    const std::string table = sensor.folder.path() + "/readings.csv", out = table + ".out";
    for (const int code : {0, 1}) {
        std::ofstream(table) << rows.text();
        EXPECT_EQ(tool({"run", "--strict", sensor.file, table, "-q", "-o", out}).code, code);
        rows.change("time_s", 300, 802, [](double t) { return t - 1; });
    }
}

} // namespace
