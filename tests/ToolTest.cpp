// The command-line host as its users see it: arguments and files in; output, messages, exit code
// out.

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/ParameterFile.h"
#include "tests/ParameterRecord.h"
#include "tests/ToolRunner.h"

namespace {

using namespace kiv;
using test::example;
using test::good;
using test::header;
using test::lines;
using test::tool;
using test::ToolResult;

std::vector<std::string> cells(const std::string& line) {
    std::vector<std::string> result;
    std::istringstream in(line);
    for (std::string cell; std::getline(in, cell, ',');)
        result.push_back(cell);
    return result;
}

TEST(Tool, RunGivesEachRowItsState) {
    const ToolResult result =
        tool({"run", example, "-"}, header + "a,1,4000,1500,450,12.5,3,1,-2,20,0.1,0\n"
                                        + "b,2,4000,1500,450,12.5,3,1,-2,20,0.9,0\n" + "c," + good
                                        + "\"d, e\"," + good + "f,2,0,0,0,12.5,3,1,-2,20,0.1,0\n"
                                        + "g,2,4000,1500,0,12.5,3,1,-2,20,0.1,0\n");
    EXPECT_EQ(result.code, 1);
    const auto rows = lines(result.out);
    ASSERT_EQ(rows.size(), 7U);
    EXPECT_EQ(rows[0].substr(0, 33), "time,state,azimuth_corrected_deg,");
    EXPECT_EQ(rows[1].substr(0, 9), "a,status,");
    EXPECT_EQ(rows[1].substr(rows[1].find(",,")), ",,,,,,,,,,,,,,,,554");
    EXPECT_EQ(rows[2].substr(0, 15), "b,no_reference,");
    EXPECT_EQ(rows[2].substr(rows[2].find(",,")), ",,,,,,,,,,,,,,,,0");
    EXPECT_EQ(rows[3].substr(0, 12), "c,reference,");
    EXPECT_EQ(rows[4].substr(0, 12), "\"d, e\",ok,12");
    EXPECT_EQ(rows[5], "f,refused,,,,,,,,,,,,,,,,,,,,");
    EXPECT_EQ(rows[6].substr(0, 17), "g,no_orientation,");
    EXPECT_EQ(result.err.find("standard input:6:5: expected a measured vector that is not zero"),
              0U)
        << result.err;
    EXPECT_NE(
        result.err.find(
            "standard input:7:1: expected readings that the pendulum model solves (mount mode 4), "
            "found no transverse axis that shows their inclination"),
        std::string::npos);
    EXPECT_NE(result.err.find("6 rows: 1 ok, 1 status, 1 no_reference, 1 reference (line 4), "
                              "1 no_orientation, 1 refused"),
              std::string::npos)
        << result.err;
}

// Each row's message names its place, and the row stays in the output with empty cells.
TEST(Tool, RunRefusesBadRowsAndGoesOn) {
    const struct {
        const char* row;
        const char* message;
    } rows[] = {
        {"1,2,3", "2:6: expected 12 cells as in the row of names, found 3 cells"},
        {"1,2,4000,1500,450,12.5,3,1,-2,20,0.1,0,9", "2:40: expected 12 cells"},
        {"", "2:1: expected 12 cells as in the row of names, found 1 cell"},
        {"1,2,4000,1500,450,12.5,3,1,-2,20,0.1,\"0", "2:40: expected a closing quote"},
        {"1,2.5,4000,1500,450,12.5,3,1,-2,20,0.1,0",
         "2:3: expected a whole number in column status"},
        {"1,2,40x,1500,450,12.5,3,1,-2,20,0.1,0",
         "2:5: expected a finite number within single precision in column x, found \"40x\""},
        {"1,2,,1500,450,12.5,3,1,-2,20,0.1,0", "2:5: expected a finite number"},
        {"1,2,1e39,1500,450,12.5,3,1,-2,20,0.1,0", "2:5: expected a finite number"},
        {"1,2,4000,nan,450,12.5,3,1,-2,20,0.1,0", "2:10: expected a finite number"},
        {"1,2,4000,1500,450,12.5,inf,1,-2,20,0.1,0", "2:24: expected a finite number"},
        {"1,2,4000,1500,450,0x10,3,1,-2,20,0.1,0", "2:19: expected a finite number"},
        {"1,2,4000,1500,450,12.5,3,1,-2,20,0.1,yes", "2:38: expected 0, 1, false or true"},
        {"1,2,0,-0,0,12.5,3,1,-2,20,0.1,0", "2:5: expected a measured vector that is not zero"},
    };
    for (const auto& row : rows) {
        const ToolResult result =
            tool({"run", example, "-"}, header + row.row + "\n" + "7," + good + "8," + good);
        EXPECT_EQ(result.code, 1) << row.row;
        EXPECT_EQ(result.err.find(std::string("standard input:") + row.message), 0U)
            << row.row << '\n'
            << result.err;
        const auto output = lines(result.out);
        ASSERT_EQ(output.size(), 4U) << row.row;
        EXPECT_NE(output[1].find(",refused,,,,,,,,,,,,,,,,,,,,"), std::string::npos) << output[1];
        EXPECT_EQ(output[3].substr(0, 5), "8,ok,") << row.row;
    }
}

TEST(Tool, RunTakesColumnsInAnyOrderAndForm) {
    const std::string plain = header + "1," + good + "2," + good;
    const std::string moved = "\xEF\xBB\xBF"
                              "ref_blocked, temperature ,\"x\",y,z,status,level_y,level_x,time,"
                              "elevation_deg,azimuth_deg,ref_metric\r\n"
                              "false,+20,4000, 1500 ,\"450\",2,-2.0,1e0,1,3.0,12.50,.1\r\n"
                              "0,20,4000,1500,450,2,-2,1,2,3,12.5,0.1\r\n";
    const ToolResult a = tool({"run", example, "-"}, plain);
    const ToolResult b = tool({"run", example, "-"}, moved);
    EXPECT_EQ(a.code, 0) << a.err;
    EXPECT_EQ(b.code, 0) << b.err;
    EXPECT_EQ(a.out, b.out);
}

TEST(Tool, RunRefusesWhatItCannotUse) {
    const test::ParameterFolder folder;
    const std::string readings = folder.path() + "/readings.csv";
    std::ofstream(readings, std::ios::binary) << header << "1," << good;
    std::ofstream(folder.file(), std::ios::binary)
        << test::parameterText({.values = {{Block::tiltOffset, "1 x"}}});
    std::ofstream(folder.path() + "/Tg05.prm") << "";
    std::ofstream(folder.path() + "/Tg6.prm", std::ios::binary) << test::parameterText();
    const std::string missing = folder.path() + "/none.csv";
    const struct {
        const char* name;
        std::vector<std::string> arguments;
        std::string input;
        std::string message; // contained in standard error
    } rows[] = {
        {"no subcommand", {}, "", "subcommand"},
        {"unknown option", {"run", example, readings, "--no"}, "", "--no"},
        {"missing readings",
         {"run", example, missing},
         "",
         missing + ":1:1: expected a file of readings, found no such file"},
        {"a folder of readings",
         {"run", example, folder.path()},
         "",
         ":1:1: expected a file of readings, found a folder"},
        {"missing parameter file",
         {"run", folder.path() + "/Tg7.prm", readings},
         "",
         "/Tg7.prm:1:1: expected a parameter file"},
        {"name of another kind",
         {"run", readings, readings},
         "",
         "expected a file name Tg<sensor ID>.prm with a decimal ID, found \"readings.csv\""},
        {"leading zero",
         {"run", folder.path() + "/Tg05.prm", readings},
         "",
         "expected a file name"},
        {"unreadable value",
         {"run", folder.file(), readings},
         "",
         folder.file()
             + ":26:3: expected a number (value 2 of 2 of \"Tilt Sensor Offset\"), found \"x\""},
        {"another sensor's file",
         {"run", folder.path() + "/Tg6.prm", readings},
         "",
         "Tg6.prm:2:1: expected the sensor ID 6"},
        {"empty readings",
         {"run", example, "-"},
         "",
         "standard input:1:1: expected a row of column names, found end of file"},
        {"missing columns",
         {"run", example, "-"},
         "status,x,y,z\n1,2,3,4\n",
         "standard input:1:13: expected a column \"azimuth_deg\", found end of line"},
        {"column twice", {"run", example, "-"}, "x," + header, "expected each column name once"},
        {"column of results",
         {"run", example, "-"},
         "rx_deg," + header,
         "expected a name that no column of results has, found \"rx_deg\""},
        {"output in no folder",
         {"run", example, readings, "-o", folder.path() + "/no/out.csv"},
         "",
         "expected a file that can be written"},
        {"output over the readings",
         {"run", example, readings, "-o", folder.path() + "/./readings.csv"},
         "",
         "expected an output of its own"},
    };
    for (const auto& row : rows) {
        const ToolResult result = tool(row.arguments, row.input);
        EXPECT_EQ(result.code, 2) << row.name;
        EXPECT_EQ(result.out, "") << row.name;
        EXPECT_NE(result.err.find(row.message), std::string::npos) << row.name << '\n'
                                                                   << result.err;
    }
    EXPECT_GT(std::filesystem::file_size(readings), 0U);
    EXPECT_EQ(tool({"--help"}).code, 0);
    EXPECT_EQ(tool({"--version"}).code, 0);
}

TEST(Tool, RunOptions) {
    const std::string moved = "2,4000,1500,450,27.5,3,1,-2,20,0.1,0\n";
    const std::string rows = header + "a," + good + "b," + moved + "c,2\nd," + moved;
    const ToolResult machine = tool({"run", example, "-"}, rows);
    const ToolResult local = tool({"run", example, "-", "--frame", "local"}, rows);
    EXPECT_NE(lines(machine.out)[2], lines(local.out)[2]);
    EXPECT_NE(machine.err.find("refused: 1 of the wrong shape"), std::string::npos) << machine.err;
    // Against the reference the sensor has turned back by the encoder's 15 degrees about its
    // vertical.
    EXPECT_NEAR(std::stod(cells(lines(local.out)[2])[8]), -15, 0.1) << local.out;

    const ToolResult stopped = tool({"run", example, "-", "--stop-on-bad"}, rows);
    EXPECT_EQ(stopped.code, 1);
    EXPECT_EQ(lines(stopped.out).size(), 4U);
    const ToolResult quiet = tool({"run", example, "-", "-q"}, rows);
    EXPECT_EQ(quiet.out, machine.out);
    EXPECT_EQ(lines(quiet.err).size(), 1U) << quiet.err; // the refusal alone
    EXPECT_EQ(tool({"run", example, "-", "--frame", "sensor"}, rows).code, 2);
}

TEST(Tool, OutputThatCannotBeWrittenIsAnError) {
    if (!std::filesystem::exists("/dev/full"))
        GTEST_SKIP() << "no device that is always full";
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"run", example, KIV_EXAMPLES "/readings.csv", "-o", "/dev/full"},
          {"simulate", example, "-o", "/dev/full"}}) {
        const ToolResult result = tool(arguments);
        EXPECT_EQ(result.code, 2) << arguments[0];
        EXPECT_NE(result.err.find("/dev/full: expected to write all of the output"),
                  std::string::npos)
            << result.err;
    }
}

TEST(Tool, ParameterFileNamesGiveTheSensor) {
    const struct {
        const char* path;
        const char* directory;
        std::int32_t id;
    } good_names[] = {
        {"Tg5.prm", ".", 5},     {"/a/b/Tg0.prm", "/a/b", 0},
        {"a/Tg-1.prm", "a", -1}, {"Tg2147483647.prm", ".", 2147483647},
        {"/Tg7.prm", "/", 7},
    };
    for (const auto& row : good_names) {
        const auto name = host::parseParameterFileName(row.path);
        ASSERT_TRUE(name) << row.path;
        EXPECT_EQ(name->directory, row.directory);
        EXPECT_EQ(name->id, row.id);
    }
    for (const char* path :
         {"Tg.prm", "Tg05.prm", "Tg-0.prm", "Tg+5.prm", "tg5.prm", "Tg5.PRM", "Tg5.prm.bak",
          "Tg5a.prm", "Tg2147483648.prm", "Tg 5.prm", "xTg5.prm", "", "Tg5.prm/"})
        EXPECT_FALSE(host::parseParameterFileName(path)) << path;
}

// The example sensor in another mount mode.
std::string exampleInMode(int mode) {
    std::stringstream text;
    text << std::ifstream(example, std::ios::binary).rdbuf();
    std::string changed = text.str();
    const auto replace = [&](const std::string& from, const std::string& to) {
        const std::size_t at = changed.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        changed.replace(at, from.size(), to);
    };
    replace("Mounting Mode\n4", "Mounting Mode\n" + std::to_string(mode));
    if (mode <= 2)
        replace("Scale Factor\n0.12\n0.05", "Scale Factor\n0.2\n0");
    return changed;
}

TEST(Tool, SimulatedReadingsRunBackToTheirPosesInEveryMode) {
    // Degrees: twice the tilt times the level's tangent times the slope of the line of sight; the
    // stop test; single precision.
    const double allowed[] = {0.2, 0.2, 0.003, 0.003, 3e-5, 3e-5, 3e-5, 3e-5, 3e-5, 3e-5};
    const test::ParameterFolder folder;
    const std::string readings = folder.path() + "/readings.csv";
    for (int mode = 1; mode <= 10; ++mode) {
        std::ofstream(folder.file(), std::ios::binary) << exampleInMode(mode);
        const ToolResult made =
            tool({"simulate", folder.file(), "-o", readings, "--rows", "300", "--seed", "9"});
        ASSERT_EQ(made.code, 0) << made.err;
        const ToolResult result = tool({"run", folder.file(), readings});
        EXPECT_EQ(result.code, 0) << mode << result.err;
        EXPECT_NE(result.err.find("300 rows: 299 ok, 1 reference (line 2)"), std::string::npos)
            << mode << result.err;

        const auto rows = lines(result.out);
        ASSERT_EQ(rows.size(), 301U);
        const auto names = cells(rows[0]);
        const auto column = [&](const std::vector<std::string>& row, const std::string& name) {
            const auto at = std::find(names.begin(), names.end(), name) - names.begin();
            return std::stod(row.at(static_cast<std::size_t>(at)));
        };
        for (std::size_t i = 2; i < rows.size(); ++i) {
            const auto row = cells(rows[i]);
            for (const std::string axis : {"rx_deg", "ry_deg", "rz_deg"})
                EXPECT_NEAR(std::remainder(column(row, axis) - column(row, "true_" + axis), 360), 0,
                            allowed[mode - 1])
                    << "mode " << mode << " row " << i << ' ' << axis;
        }
    }
}

TEST(Tool, SimulateDependsOnTheSeedAlone) {
    const auto made = [](const char* seed) {
        return tool({"simulate", example, "--rows", "20", "--seed", seed}).out;
    };
    EXPECT_EQ(made("9"), made("9"));
    EXPECT_NE(made("9"), made("8"));
    EXPECT_EQ(lines(made("1")).size(), 21U);
}

TEST(Tool, HomeSolvesOneOrATable) {
    const std::vector<std::string> one{"home",     "--frame-x", "1,0,0",  "--direction", "1,0,0",
                                       "--angles", "10,20",     "--tilt", "0,0"};
    const ToolResult single = tool(one);
    EXPECT_EQ(single.code, 0) << single.err;
    EXPECT_EQ(single.out, "home_h_deg 9.999999999997707  home_v_deg 19.999999999995413\n");

    const ToolResult table =
        tool({"home", "-"},
             "tilt_y_deg,tilt_x_deg,angle_v_deg,angle_h_deg,direction_z,direction_y,"
             "direction_x,frame_z,frame_y,frame_x,name\n"
             "0,0,20,10,0,0,1,0,0,1,a\n0,0,20,10,0,0,1,1,0,0,b\n0,0,20,10,0,0,z,0,0,1,c\n");
    EXPECT_EQ(table.code, 1);
    EXPECT_EQ(table.out,
              "name,state,home_h_deg,home_v_deg\n"
              "a,ok,9.999999999997707,19.999999999995413\nb,no_solution,,\nc,refused,,\n");
    EXPECT_EQ(table.err,
              "standard input:3:1: expected a frame axis and a direction that give home "
              "angles, found a singular frame or a direction without length\n"
              "standard input:4:15: expected a finite number in column direction_x, found "
              "\"z\"\n");

    for (const std::vector<std::string>& wrong : {std::vector<std::string>{"home"},
                                                  {"home", "--frame-x", "1,0,0"},
                                                  {"home", "--tilt", "1,2,3"},
                                                  {"home", "-", "--tilt", "1,2"},
                                                  {"home", "--angles", "1,x"}})
        EXPECT_EQ(tool(wrong).code, 2) << wrong.back();
    const ToolResult negative = tool({"home", "--frame-x", "-1,0,0", "--direction", "-1,0,0",
                                      "--angles", "-10,20", "--tilt", "0,0"});
    EXPECT_EQ(negative.code, 0) << negative.err;
}

} // namespace
