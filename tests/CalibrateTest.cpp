// kiv calibrate finds the values that readings were made with. tests/proofs/calibration has the
// whole Monte Carlo; these are a few seeds of it.

#include <cmath>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <Eigen/Cholesky>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "host/base/Interrupt.h"
#include "support/AngleConstants.h"
#include "tests/ParameterRecord.h"
#include "tests/ToolRunner.h"

namespace {

using namespace kiv;
using nlohmann::json;
namespace fs = std::filesystem;

std::string textIn(const fs::path& file) {
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

// A folder with the parameter file that readings are made with, the same with other values, and
// readings.
class Bench {
public:
    explicit Bench(int mode) : folder(own.path()) {
        for (const char* name : {"true", "old"}) {
            fs::create_directories(folder / name);
            std::ofstream(folder / name / "Tg5.prm", std::ios::binary) << test::exampleInMode(mode);
        }
    }
    void change(const std::string& from, const std::string& to) {
        std::string text = textIn(old());
        const std::size_t at = text.find(from);
        ASSERT_NE(at, text.npos) << from;
        std::ofstream(old(), std::ios::binary) << text.replace(at, from.size(), to);
    }

    void measure(int rows, const std::string& seed = "1") {
        EXPECT_EQ(
            call({"simulate", (folder / "true/Tg5.prm").string(), "-o", readings(), "--trajectory",
                  "random", "--tilt", "5", "--rows", std::to_string(rows), "--noise-vector", "0.05",
                  "--noise-encoder", "0.001", "--noise-level", "0.002", "--seed", seed}),
            "");
    }

    // Messages; the result is read where there is none.
    std::string calibrate(const std::vector<std::string>& more = {}) {
        std::vector<std::string> arguments{
            "calibrate",   old(),   readings(),  "-o",    fresh(),      "--result", resultFile(),
            "--u-encoder", "0.001", "--u-level", "0.002", "--u-vector", "0.05",     "--replace"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const std::string messages = call(arguments);
        if (code == host::allGood)
            result = json::parse(textIn(resultFile()));
        return messages;
    }

    double value(const std::string& name, const char* what = "value") const {
        return result["parameters"][name][what];
    }

    // error' covariance^-1 error over the number of parameters.
    double chiSquared(const std::vector<std::pair<std::string, double>>& truth) const {
        const auto n = static_cast<Eigen::Index>(truth.size());
        Eigen::VectorXd error(n);
        Eigen::MatrixXd correlation(n, n);
        for (Eigen::Index i = 0; i < n; ++i) {
            const auto at = static_cast<std::size_t>(i);
            EXPECT_EQ(result["correlation"]["names"][at], truth[at].first);
            error[i] = (value(truth[at].first) - truth[at].second) / value(truth[at].first, "u");
            for (Eigen::Index k = 0; k < n; ++k)
                correlation(i, k) =
                    result["correlation"]["matrix"][at][static_cast<std::size_t>(k)];
        }
        return error.dot(correlation.ldlt().solve(error)) / static_cast<double>(n);
    }

    std::string call(const std::vector<std::string>& arguments) {
        const auto run = test::tool(arguments);
        code = run.code;
        return run.err;
    }
    std::set<fs::path> files() const {
        return {fs::recursive_directory_iterator(folder), fs::recursive_directory_iterator()};
    }
    std::string old() const { return (folder / "old/Tg5.prm").string(); }
    std::string fresh() const { return (folder / "Tg5.prm").string(); }
    std::string readings() const { return (folder / "readings.csv").string(); }
    std::string resultFile() const { return (folder / "result.json").string(); }

    json result;
    int code = 0;

private:
    test::ParameterFolder own;
    fs::path folder;
};

struct ModeRow {
    int mode;
    const char* from; // changed in the old file
    const char* to;
    std::vector<std::pair<std::string, double>> truth; // of all that is found
};

const std::vector<ModeRow> modeRows{
    {2,
     "0.12\t-0.08",
     "0.3\t0.2",
     {{"angle_offset.azimuth_deg", 12.5},
      {"angle_offset.elevation_deg", -3.25},
      {"thermal_compensation_factor.x_intercept", 0.992},
      {"thermal_compensation_factor.y_intercept", 1.006},
      {"tilt_sensor_offset.x_deg", 0.12},
      {"tilt_sensor_offset.y_deg", -0.08},
      {"scale_factor.0", 0.2}}},
    {3,
     "Factor\n0.12\n0.05\n0.8\n-1.1",
     "Factor\n0.4\n0.5\n0.8\n-0.8",
     {{"angle_offset.azimuth_deg", 12.5},
      {"angle_offset.elevation_deg", -3.25},
      {"scale_factor.0", 0.12},
      {"scale_factor.1", 0.05},
      {"scale_factor.3", -1.1},
      {"scale_factor.6", 1}}},
    {6,
     "12.5\t-3.25",
     "-17.5\t-3",
     {{"angle_offset.azimuth_deg", 12.5},
      {"angle_offset.elevation_deg", -3.25},
      {"scale_factor.0", 0.12},
      {"scale_factor.1", 0.05},
      {"scale_factor.6", 1}}},
    {7,
     "-30\t0.4\t0.1\t1.01",
     "-29.7\t0.4\t-0.1\t1.014",
     {{"angle_offset.azimuth_deg", 12.5},
      {"qvc.axis_x_deg", 0.3},
      {"qvc.axis_z_deg", -0.2},
      {"qvc.start_deg", 1.5},
      {"level_x.axis_y_deg", -30},
      {"level_x.zero_offset_deg", 0.1},
      {"level_x.gain", 1.01}}},
    {10,
     "0.3\t-0.2\t1.5",
     "0\t0\t1.2",
     {{"angle_offset.azimuth_deg", 12.5},
      {"qvc.axis_x_deg", 0.3},
      {"qvc.axis_z_deg", -0.2},
      {"qvc.start_deg", 1.5},
      {"level_x.axis_y_deg", -30},
      {"level_x.zero_offset_deg", 0.1},
      {"level_x.gain", 1.01},
      {"level_y.axis_y_deg", -65},
      {"level_y.zero_offset_deg", -0.2},
      {"level_y.gain", 0.99}}},
};

TEST(Calibrate, FindsTheValuesWithinTheirUncertainty) {
    for (const ModeRow& row : modeRows) {
        SCOPED_TRACE("mode " + std::to_string(row.mode));
        Bench bench(row.mode);
        bench.change(row.from, row.to);
        bench.measure(250);
        ASSERT_EQ(bench.calibrate(), "");
        EXPECT_GT(bench.result["rms_over_noise"], 0.9);
        EXPECT_LT(bench.result["rms_over_noise"], 1.1);
        const double chi = bench.chiSquared(row.truth);
        EXPECT_GT(chi, 0.1);
        EXPECT_LT(chi, 2.5);
        EXPECT_LT(bench.result["held_out"]["rms_new_deg"], 0.05);
        EXPECT_EQ(bench.call({"check", "--strict", bench.fresh()}), "");
        // The result belongs to the new file, and gives its angles a part of their uncertainty.
        const auto run = test::tool(
            {"run", "-q", bench.fresh(), bench.readings(), "--uncertainties", bench.resultFile()});
        EXPECT_NE(run.out.find("u_calibration_rx_deg"), run.out.npos) << run.err;
    }
}

TEST(Calibrate, DoesNotDependOnJobsAndTheKindOfInput) {
    Bench bench(4);
    bench.measure(1500);
    ASSERT_EQ(bench.calibrate({"-j", "1"}), "");
    const std::string alone = textIn(bench.resultFile());
    const std::string file = textIn(bench.fresh());
    ASSERT_EQ(bench.calibrate({"-j", "7"}), "");
    EXPECT_EQ(textIn(bench.resultFile()), alone);
    EXPECT_EQ(textIn(bench.fresh()), file);
}

TEST(Calibrate, FindsTheColumnsOfEachTable) {
    Bench bench(4);
    bench.measure(100, "2");
    std::istringstream lines(textIn(bench.readings()));
    const std::string other = bench.readings() + ".other";
    std::ofstream moved(other, std::ios::binary);
    for (std::string line; std::getline(lines, line);) { // y to the end of the line
        const std::size_t y = line.find(',', line.find(',', line.find(',') + 1) + 1);
        const std::size_t z = line.find(',', y + 1);
        moved << line.substr(0, y) << line.substr(z) << line.substr(y, z - y) << '\n';
    }
    moved.close();
    bench.measure(100);
    EXPECT_EQ(bench.calibrate({other}), "");
    EXPECT_EQ(bench.result["rows"]["used"].get<int>() + bench.result["rows"]["held_out"].get<int>(),
              200);
}

// Adds to the corrections of the azimuth table, as the file has them, a change by the angle.
std::string withAzimuths(const std::string& text, double (*change)(double degrees)) {
    std::istringstream in(text);
    std::ostringstream out;
    out.precision(9);
    double angle = 0, correction = 0;
    for (std::string line; std::getline(in, line);) {
        out << line << '\n';
        if (line != "AZ Calibration Table" || !std::getline(in, line))
            continue;
        out << line << '\n';
        for (int rows = std::stoi(line); rows > 0; --rows, std::getline(in, line)) {
            in >> angle >> correction;
            out << angle << '\t' << correction + change(angle) << '\n';
        }
    }
    return out.str();
}

// The old tables have errors of the shape that is asked for, besides those of their rows.
TEST(Calibrate, FindsSmoothErrorsOfTables) {
    Bench bench(4);
    const std::string wrong = withAzimuths(textIn(bench.old()), [](double degrees) {
        const double angle = degrees * degToRad;
        return 0.05 * std::sin(angle) - 0.03 * std::cos(2 * angle);
    });
    bench.measure(400);
    std::ofstream(bench.old(), std::ios::binary) << wrong;
    ASSERT_EQ(
        bench.calibrate({"--estimate", "usual,az_calibration_table,tilt_y_calibration_table"}), "");
    const std::pair<const char*, double> truth[] = {
        {"az_calibration_table.sine_1_deg", -0.05},    {"az_calibration_table.cosine_1_deg", 0},
        {"az_calibration_table.sine_2_deg", 0},        {"az_calibration_table.cosine_2_deg", 0.03},
        {"tilt_y_calibration_table.quadratic_deg", 0}, {"tilt_y_calibration_table.cubic_deg", 0}};
    for (const auto& [name, value] : truth) {
        EXPECT_NEAR(bench.value(name), value, 4 * bench.value(name, "u")) << name;
        EXPECT_LT(bench.value(name, "u"), 0.02) << name;
    }
    // The new file has them, and the angles an uncertainty of them.
    EXPECT_LT(bench.result["held_out"]["rms_new_deg"], 0.003);
    EXPECT_GT(bench.result["held_out"]["rms_old_deg"], 0.02);
    const auto run = test::tool({"run", "-q", bench.fresh(), bench.readings(), "--uncertainties",
                                 bench.resultFile(), "--results", "u_calibration_rz_deg"});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_FALSE(run.out.ends_with(",\n")); // the last cell
}

// What a row lacks, and what is said of it.
struct RefusalRow {
    int mode;
    int rows;
    std::vector<std::string> options;
    const char* found;
};

const std::vector<RefusalRow> refusalRows{
    {4, 39, {}, "found 39 that can be used"},
    {4,
     100,
     {"--estimate", "scale_factor.1,scale_factor.6,thermal_compensation_factor.y_slope,"
                    "thermal_compensation_factor.y_intercept"},
     "1 thermal_compensation_factor.y_intercept together"},
    {6, 100, {"--estimate", "scale_factor.3"}, "no reading depends on scale_factor.3"},
    {1, 100, {"--estimate", "scale_factor.1"}, "no reading depends on scale_factor.1"},
    {8,
     100,
     {"--estimate", "angle_offset.azimuth_deg,angle_offset.elevation_deg,qvc.axis_x_deg,"
                    "qvc.axis_z_deg,qvc.start_deg,level_x.axis_y_deg,level_x.axis_z_deg"},
     "angle_offset.elevation_deg"},
    {4,
     100,
     {"--poses", "relative", "--estimate", "angle_offset.azimuth_deg"},
     "angle_offset.azimuth_deg and turns of the poses"},
    {4, 100, {"--poses", "stations"}, "none named placement, station"},
    {4, 100, {"--hold", "angle_offset.elevation_deg"}, "expected residuals as large as"},
    {4, 100, {"--u-pose", "0.1"}, "give smaller uncertainties"},
    {4, 100, {"--prior", "scale_factor.2=-0.8,0.01"}, "a prior of scale_factor.2 that agrees"},
    {4, 100, {"--prior", "level_x.gain=1,0.001"}, "no reading depends on level_x.gain"},
    {4, 100, {"--robust", "--hold", "angle_offset.elevation_deg"}, "of 100 rows that do not fit"},
    {4,
     100,
     {"--estimate", "scale_factor.2", "--u-pose", "20"},
     "tell a parameter better than the old file does"},
};

TEST(Calibrate, RefusesWithACause) {
    for (const RefusalRow& row : refusalRows) {
        SCOPED_TRACE(row.found);
        Bench bench(row.mode);
        bench.measure(row.rows);
        if (row.mode == 4)
            bench.change("12.5\t-3.25", "12.5\t-3");
        const std::string messages = bench.calibrate(row.options);
        EXPECT_NE(messages.find(row.found), messages.npos) << messages;
        EXPECT_FALSE(fs::exists(bench.fresh()) || fs::exists(bench.resultFile()));
    }
}

// From the values that the rows were made with the cost shows no step.
TEST(Calibrate, SettlesWhereRoundingHidesTheLastSteps) {
    Bench bench(4);
    bench.measure(60, "13");
    EXPECT_EQ(bench.calibrate(), "");
}

// The outputs are there together or not at all, and no copy is left beside them.
TEST(Calibrate, LeavesNoHalfSet) {
    Bench bench(4);
    bench.measure(100);
    std::ofstream(bench.resultFile()) << "of another program";
    const auto rights = fs::status(bench.resultFile()).permissions();
    fs::permissions(bench.resultFile(), fs::perms::owner_read);
    const auto files = bench.files();
    EXPECT_NE(bench.calibrate().find("result.json: "), std::string::npos);
    EXPECT_EQ(bench.files(), files);
    EXPECT_EQ(textIn(bench.resultFile()), "of another program");
    fs::permissions(bench.resultFile(), rights);
#ifdef GTEST_HAS_DEATH_TEST
    const auto interruptedRun = [&] {
        host::Interrupt::install();
        std::raise(SIGINT);
        bench.calibrate();
        std::exit(bench.files() == files ? bench.code : 1);
    };
    EXPECT_EXIT(interruptedRun(), ::testing::ExitedWithCode(host::interrupted), "");
#endif
}

// The pose of every twentieth row is wrong by 0.3 degrees.
TEST(Calibrate, FindsRowsWithAWrongPose) {
    Bench bench(8);
    bench.measure(300);
    std::string changed;
    std::size_t n = 0;
    for (const std::string& line : test::lines(textIn(bench.readings()))) {
        const std::size_t cell = line.rfind(',') + 1;
        changed += n++ % 20 == 5
                       ? line.substr(0, cell) + std::to_string(std::stod(line.substr(cell)) + 0.3)
                       : line;
        changed += '\n';
    }
    std::ofstream(bench.readings()) << changed;
    ASSERT_EQ(bench.calibrate({"--robust"}), "");
    const json& rejected = bench.result["rows"]["rejected"];
    EXPECT_EQ(rejected.size(), 15U);
    for (const json& row : rejected)
        EXPECT_EQ(static_cast<int>(row["line"]) % 20, 6);
}

} // namespace
