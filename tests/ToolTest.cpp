// The command-line host as its users see it: arguments and files in; output, messages, exit code
// out.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "host/base/Interrupt.h"
#include "host/parameters/ParameterFile.h"
#include "host/rows/LineBlocks.h"
#include "simulator/Pose.h"
#include "support/platform/File.h"
#include "tests/FileFaults.h"
#include "tests/ToolRunner.h"

namespace {

using namespace kiv;
using test::example;
using test::lines;
using test::tool;
using test::ToolResult;

TEST(Tool, GivesTheSystemsReason) {
    const std::string full = "/dev/full", broken = "/proc/self/mem",
                      readings = KIV_EXAMPLES "/readings.csv";
    if (!std::filesystem::exists(full) || !std::filesystem::exists(broken))
        GTEST_SKIP() << "no files that are always full or broken";
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"run", example, readings, "-o", full},
          {"report", example, readings, "-o", full},
          {"simulate", example, "-o", full},
          {"run", example, broken},
          {"run", example, readings, "--uncertainties", broken},
          {"check", broken}}) {
        const ToolResult result = tool(arguments);
        const bool writes = arguments.back() == full;
        EXPECT_EQ(result.code, 2) << arguments[0];
        EXPECT_TRUE(result.err.starts_with(writes ? full : broken)) << result.err;
        EXPECT_NE(
            result.err.find(writes ? ": No space left on device; " : ": Input/output error; "),
            std::string::npos)
            << result.err;
    }
}

TEST(Tool, APageAndASummaryTakeTheirFilesPlaceWhole) {
    namespace fs = std::filesystem;
    if (!fs::exists("/dev/full"))
        GTEST_SKIP() << "no links and modes as here";
    const fs::path file = ::testing::TempDir() + "kiv_whole", link = file.string() + "_link",
                   other = file.string() + "_other";
    const std::string readings = KIV_EXAMPLES "/readings.csv";
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"report", example, readings, "-o", link.string()},
          {"run", example, readings, "--summary", link.string()},
          {"verify", "-o", link.string()}}) {
        SCOPED_TRACE(arguments[0]);
        std::ofstream(file) << "old";
        fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
        fs::create_symlink(file.filename(), link);
        fs::create_hard_link(file, other);
        const ToolResult refused = tool(arguments);
        EXPECT_EQ(refused.code, 2);
        EXPECT_EQ(refused.err, link.string() + ": expected a file with one name, found 2\n");
        EXPECT_EQ(test::contentOf(file.string()), "old");
        fs::remove(other);
        std::ifstream reader(file);
        EXPECT_EQ(tool(arguments).code, 0);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}), "old");
        EXPECT_GT(fs::file_size(file), 100U);
        EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
        EXPECT_TRUE(fs::is_symlink(link));
        fs::remove(link);
        fs::remove(file);
    }
}

TEST(Tool, AFileThatShrinksBreaksReadingOff) {
    for (const std::size_t missing : {0U, 1U}) {
        const std::string text = "a\nb\n";
        std::istringstream in(text);
        host::LineBlockReader reader(in, "a.csv", 100, text.size() + missing);
        host::LineBlock block;
        EXPECT_TRUE(reader.next(block) && block.text == text);
        EXPECT_EQ(reader.next(block), missing > 0);
        EXPECT_EQ(block.brokenOff, missing > 0);
        EXPECT_EQ(block.said.starts_with("a.csv:3:1: The file has become shorter"), missing > 0);
    }
}

// Takes what it is given, but for good.
class FullDisk final : public std::stringbuf {
    int sync() override { return -1; }
};

TEST(Tool, StandardOutputThatCannotBeWrittenIsAnError) {
    for (const std::vector<const char*>& arguments : {std::vector<const char*>{"kiv", "--help"},
                                                      {"kiv", "help", "run"},
                                                      {"kiv", "info", example.c_str()},
                                                      {"kiv", "verify"}}) {
        std::istringstream in;
        FullDisk disk;
        std::ostream full(&disk);
        std::ostringstream err;
        const auto count = static_cast<int>(arguments.size());
        EXPECT_EQ(host::runTool(count, arguments.data(), {in, full, err}), 2) << arguments[1];
        EXPECT_EQ(err.str(), "standard output: the system gives no reason; not all of the output "
                             "is there\n");
    }
}

TEST(Tool, SaysWhatAFileIsThatIsNoText) {
    const std::string stored = "PK\x03\x04" + std::string(26, '.');
    const struct {
        std::string bytes;
        const char* found;
    } rows[] = {
        {std::string("\x1F\x8B\x08\0abc\n", 8), "a file compressed by gzip;"},
        {std::string("\xFF\xFEs\0t\0\n\0", 8), "text in UTF-16;"},
        {std::string("s\0t\0\n\0", 6), "text in UTF-16;"},
        {stored + test::header + "0," + test::good, "a zip archive;"},
        {stored + "[Content_Types].xml", "a spreadsheet's own file;"},
    };
    const test::ParameterFolder folder;
    for (const auto& row : rows) {
        std::ofstream(folder.file(), std::ios::binary) << row.bytes;
        const ToolResult results[] = {tool({"run", example, "-"}, row.bytes),
                                      tool({"simulate", folder.file()})};
        for (const ToolResult& result : results) {
            EXPECT_EQ(result.code, 2) << row.found;
            EXPECT_EQ(lines(result.err).size(), 1U) << result.err;
            EXPECT_NE(result.err.find(std::string("found ") + row.found), std::string::npos)
                << result.err;
        }
    }
}

TEST(Tool, RefusesALineThatIsTooLong) {
    for (const char* end : {"\n", "\r\n"}) {
        std::string table = test::header;
        for (const std::size_t more : {0U, 1U, 2U, 3U, 1U << 20, 0U})
            table += std::string((1 << 20) + more - test::good.size(), 'x') + ','
                     + test::good.substr(0, test::good.size() - 1) + end;
        const ToolResult result = tool({"run", example, "-", "-q"}, table);
        EXPECT_NE(result.err.find("6 rows: 1 ok, 1 reference (line 2), 4 refused"),
                  std::string::npos)
            << result.err.substr(0, 900);
    }
    const ToolResult names = tool({"run", example, "-"}, std::string(1 << 21, 'x') + '\n');
    EXPECT_NE(names.err.find(":1:1: expected a line of at most 1048576 bytes"), std::string::npos)
        << names.err.substr(0, 900);
}

// Of a value or row that may be cut; only --strict counts it.
TEST(Tool, SaysWhereALastLineEndIsMissing) {
    const test::ParameterFolder folder;
    const std::string text = test::contentOf(example).value_or("");
    const std::string table = folder.path() + "/readings.csv",
                      cut = "which may be cut, found end of file (warning)\n";
    std::ofstream(folder.file(), std::ios::binary) << text.substr(0, text.size() - 2);
    std::ofstream(table, std::ios::binary)
        << test::header << "0," << test::good << "1,2,4000,1500,450,12.5,3,1,-2,20,0.1,0";
    const struct {
        std::vector<std::string> arguments;
        std::size_t warnings;
        int code;
    } rows[] = {
        {{"check", folder.file()}, 1, 0},      {{"check", "--strict", folder.file()}, 1, 1},
        {{"info", folder.file()}, 1, 0},       {{"simulate", folder.file()}, 1, 0},
        {{"run", folder.file(), table}, 2, 0}, {{"report", folder.file(), table}, 2, 0},
        {{"rewrite", folder.file()}, 1, 0},    {{"check", "--strict", folder.file()}, 0, 0},
        {{"run", folder.file(), table}, 1, 0}, {{"run", "--strict", folder.file(), table}, 1, 1},
    };
    for (const auto& row : rows) {
        const ToolResult result = tool(row.arguments);
        EXPECT_EQ(result.code, row.code) << row.arguments[0];
        std::size_t warnings = 0;
        for (auto at = result.err.find(cut); at != result.err.npos;
             at = result.err.find(cut, at + 1))
            ++warnings;
        EXPECT_EQ(warnings, row.warnings) << row.arguments[0] << result.err;
        EXPECT_EQ(result.err.find("csv:3:39: ") != result.err.npos, row.arguments.back() == table);
    }
}

// The tool ends where it waits.
TEST(Tool, InterruptLeavesCompleteRows) {
#ifndef GTEST_HAS_DEATH_TEST
    GTEST_SKIP() << "no test in a process of its own";
#else
    const std::string path = ::testing::TempDir() + "kiv_interrupted.csv";
    const std::string summary = ::testing::TempDir() + "kiv_interrupted.json";
    const char* const arguments[] = {"kiv", "run",        example.c_str(), "-",
                                     "-o",  path.c_str(), "--summary",     summary.c_str()};
    const std::string header = test::header, row = "0," + test::good, begun = row.substr(0, 9);
    const std::pair<std::string, std::size_t> starts[] = {{"", 0},
                                                          {header.substr(0, 9), 0},
                                                          {header, 1},
                                                          {header + begun, 1},
                                                          {header + row + row + row, 4},
                                                          {header + row + row + begun, 3}};
    for (const auto& [start, rows] : starts) {
        SCOPED_TRACE(start);
        const auto run = [&, text = start] {
            host::Interrupt::install();
            test::InterruptedReadings readings(text + row + row + row, text.size(), false);
            std::istream in(&readings);
            std::ostringstream ignored;
            std::exit(host::runTool(8, arguments, {in, ignored, ignored}));
        };
        std::ofstream(summary) << "of an earlier run";
        EXPECT_EXIT(run(), ::testing::ExitedWithCode(130), "");
        // Where there is no fork, the process of a later case comes by here and finds no file.
        const std::string results = test::contentOf(path).value_or("");
        const std::vector<std::string> written = lines(results);
        EXPECT_EQ(written.size(), rows);
        EXPECT_EQ(test::contentOf(summary) == "", rows > 0);
        EXPECT_TRUE(results.empty() || results.ends_with('\n')) << results;
        if (written.size() > 2) { // the last cells of a row
            EXPECT_NE(written.back().find(",0,good,0."), std::string::npos) << results;
        }
        std::filesystem::remove(path);
        std::filesystem::remove(summary);
    }
#endif
}

TEST(Tool, ParameterFileNamesGiveTheSensor) {
    const struct {
        const char* path;
        const char* folder;
        std::int32_t id;
    } good_names[] = {
        {"Tg5.prm", "", 5},       {"/a/b/Tg0.prm", "/a/b/", 0},
        {"a/Tg-1.prm", "a/", -1}, {"Tg2147483647.prm", "", 2147483647},
        {"/Tg7.prm", "/", 7},
    };
    for (const auto& row : good_names) {
        const auto name = host::parseParameterFileName(row.path);
        ASSERT_TRUE(name) << row.path;
        EXPECT_EQ(name->folder, row.folder);
        EXPECT_EQ(name->id, row.id);
    }
    for (const char* path :
         {"Tg.prm", "Tg05.prm", "Tg-0.prm", "Tg+5.prm", "Tg5.prm.bak", "Tg5a.prm",
          "Tg2147483648.prm", "Tg 5.prm", "xTg5.prm", "", "Tg5.prm/"})
        EXPECT_FALSE(host::parseParameterFileName(path)) << path;
    for (const char* path : {"tg5.prm", "Tg5.PRM", "Tg5.prm. "})
        EXPECT_EQ(bool(host::parseParameterFileName(path)), platform::namesAreLoose) << path;
}

const char* const poses = "x,y,z,yaw_deg,pitch_deg,roll_deg,point\n"
                          "4000,1500,450,20,0.5,ROLL,a\n4000,-1500,700,-30,-3,ROLL,b\n"
                          "-900,5000,400,170,2,ROLL,c\n-3000,-4000,300,-100,1,ROLL,d\n";

TEST(Tool, SimulatedReadingsRunBackToTheirPosesInEveryMode) {
    // Degrees: twice the tilt times the level's tangent times the slope of the line of sight; the
    // stop test; single precision.
    const char* const allowed[] = {"0.2", "0.003", "3e-5", "3e-5", "3e-5"};
    const test::ParameterFolder folder;
    const std::string readings = folder.path() + "/readings.csv";
    for (int mode = 1; mode <= 10; ++mode) {
        std::ofstream(folder.file(), std::ios::binary) << test::exampleInMode(mode);
        for (const std::string source : {"still", "turn", "swing", "random", "poses"}) {
            SCOPED_TRACE("mode " + std::to_string(mode) + ' ' + source);
            std::vector<std::string> arguments{"simulate", folder.file(), "-o", readings};
            std::string input;
            if (source == "poses") {
                arguments.insert(arguments.end(), {"--poses", "-"});
                input = std::regex_replace(std::string(poses), std::regex("ROLL"),
                                           mode == 7 || mode == 9 ? "179" : "-1");
            } else {
                arguments.insert(arguments.end(), {"--trajectory", source, "--rows", "300"});
            }
            const ToolResult made = tool(arguments, input);
            ASSERT_TRUE(made.code == 0 && made.err.empty()) << made.err;
            const std::string results = readings + ".results";
            const ToolResult local =
                tool({"run", folder.file(), readings, "--summary", "-", "-o", results, "--frame",
                      "local", "--u-vector", "1", "--u-encoder", "1", "--u-level", "1"});
            const bool twoLevels = mode <= 2 || mode >= 9;
            const auto summary = nlohmann::json::parse(local.out);
            EXPECT_EQ(summary["uncertainties"].size(), twoLevels ? 7U : 6U);
            EXPECT_EQ(summary["spare_reading"].is_null(), !twoLevels);
            EXPECT_EQ(local.err.starts_with("kiv: --frame local has no effect"), mode >= 7);
            EXPECT_EQ(local.out.find(R"("frame": "local")") == std::string::npos, mode >= 7);
            const ToolResult result = tool({"run", folder.file(), readings, "--summary", "-", "-o",
                                            results, "--tolerance", allowed[(mode - 1) / 2]});
            EXPECT_EQ(result.code, 0) << result.err;
            EXPECT_NE(result.out.find(source == "poses" ? R"("compared_rows": 3)"
                                                        : R"("compared_rows": 299)"),
                      std::string::npos);
        }
    }
}

// Of an upright sensor each channel moves either the heading or the tilt of the result.
TEST(Tool, SimulatedNoiseSpreadsTheResults) {
    constexpr double allowed = 0.065; // of the deviation: four times what 2000 rows leave open
    const auto simulated = [](const std::vector<std::string>& noise) {
        std::vector<std::string> arguments{"simulate", example, "--trajectory", "still",
                                           "--tilt",   "0",     "--rows",       "2000"};
        arguments.insert(arguments.end(), noise.begin(), noise.end());
        return tool(arguments).out;
    };
    double x = 0, y = 0, z = 0;
    ASSERT_EQ(std::sscanf(lines(simulated({})).at(1).c_str(), "0,2,%lf,%lf,%lf", &x, &y, &z), 3);
    const double horizontal = std::hypot(x, y);
    const double distance = std::hypot(horizontal, z);
    const double levelSlope = 0.936; // of the example's tilt Y curve at 0
    const struct {
        const char* option;
        const char* deviation;
        double heading; // expected, degrees
        double tilt;
    } rows[] = {
        {"--noise-encoder", "0.01", 0.01, 0.01},
        {"--noise-vector", "0.5", 0.5 / horizontal / simulator::radians,
         0.5 / distance / simulator::radians},
        {"--noise-level", "0.02", 0.02 * levelSlope * z / horizontal, 0.02 * levelSlope},
    };
    const test::ParameterFolder folder;
    for (const auto& row : rows) {
        const ToolResult result = tool({"run", example, "-", "--summary", "-", "-o",
                                        folder.path() + "/results.csv", "--tolerance", "90"},
                                       simulated({row.option, row.deviation}));
        const auto residuals = nlohmann::json::parse(result.out)["residuals"];
        const auto size = [&](const char* angle) {
            return residuals[angle]["root_mean_square_deg"].get<double>();
        };
        EXPECT_NEAR(std::hypot(size("rx"), size("ry")), row.tilt, allowed * row.tilt) << row.option;
        EXPECT_NEAR(size("rz"), row.heading, allowed * row.heading) << row.option;
    }
}

} // namespace
