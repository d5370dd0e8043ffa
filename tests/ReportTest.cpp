// The page of kiv report as text; tests/report/ opens it in a browser.

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "host/report/ReportPage.h"
#include "tests/ParameterRecord.h"
#include "tests/ToolRunner.h"

namespace {

using namespace kiv;
using test::example;
using test::good;
using test::header;
using test::tool;

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string report(const std::string& readings) {
    return tool({"report", example, "-", "-q"}, readings).out;
}

TEST(Report, SaysTheSameAsARun) {
    const std::string readings = header + "a," + good + "b," + good
                                 + "c,2\nd,2,0,0,0,1,1,1,1,1,0,0\n"
                                 + "e,2,4000,1500,0,12.5,3,1,-2,20,0.1,0\nf," + good;
    const test::ToolResult run = tool({"run", example, "-"}, readings);
    const test::ToolResult page = tool({"report", example, "-"}, readings);
    EXPECT_EQ(page.err, run.err);
    EXPECT_EQ(page.code, run.code);
    for (const char* part :
         {"2 of 6 rows with angles, 2 refused, 1 without an orientation", ">4, pendulum model<",
          "<td class=\"number\">4</td><td class=\"number\">3</td><td class=\"state "
          "refused\">refused"
          "</td><td class=\"reason\">byte 4: expected 12 cells as in the row of names, found 2 "
          "cells</td>",
          "found no transverse axis that shows their inclination</td>",
          "\"refused\":[[2,1],[3,1]],\"noOrientation\":[[4,1]]", "\"reference\":1,"})
        EXPECT_TRUE(contains(page.out, part)) << part;

    const std::string simulated = KIV_EXAMPLES "/readings.csv";
    for (const std::string frame : {"machine", "local"}) {
        const test::ToolResult framed = tool({"report", example, simulated, "--frame", frame});
        EXPECT_EQ(framed.err, tool({"run", example, simulated, "--frame", frame}).err) << frame;
        EXPECT_EQ(contains(framed.out, "figure id=\"residuals\""), frame == "machine") << frame;
    }
}

TEST(Report, NothingFromOutsideIsMarkup) {
    const std::string evil = "</script><script>alert('1')//\xE2\x80\xA8&amp;\x01\"";
    const std::string page = report(header + "a," + good + "b,2,4000," + evil
                                    + ",450,12.5,3,1,-2,20,0.1,0\"\nc,2,4000,<img src=x>,450,12.5,"
                                      "3,1,-2,20,0.1,0\n");
    EXPECT_FALSE(contains(page, "alert('1')"));
    EXPECT_FALSE(contains(page, "<img"));
    EXPECT_FALSE(contains(page, "\x01"));
    EXPECT_TRUE(contains(page, "&lt;img src=x&gt;"));

    const test::ParameterFolder folder;
    const std::string name = folder.path() + "/<b>&'.csv";
    if (!(std::ofstream(name, std::ios::binary) << header << "a," << good))
        GTEST_SKIP() << "no such file names here";
    const std::string named = tool({"report", example, name}).out;
    EXPECT_FALSE(contains(named, "<b>&"));
    EXPECT_TRUE(contains(named, "/&lt;b&gt;&amp;&#39;.csv</code>"));
    EXPECT_TRUE(contains(named, "/&lt;b&gt;&amp;&#39;.csv</title>"));
}

TEST(Report, ListIsCappedAndCounted) {
    std::string readings = header + "a," + good;
    for (int i = 0; i < 250; ++i)
        readings += "b\n";
    const std::string page = report(readings);
    EXPECT_TRUE(contains(page, "<p>250 rows; the first 200 are listed.</p>"));
    std::size_t listed = 0;
    for (std::size_t at = 0; (at = page.find("state refused", at)) != std::string::npos; ++at)
        ++listed;
    EXPECT_EQ(listed, 200U);
}

// The time stands behind the readings, so that a row too short has none.
TEST(Report, RunsOverTimeWhereItCan) {
    const struct {
        const char* name;
        std::vector<std::string> times;
        std::string expected;
    } rows[] = {
        {"rising", {"1.5", "2.5", "2.5", "7"}, "\"first\":[1.5,2.5,2.5,7]"},
        {"gaps take the time before", {"1", "", "x", "4"}, "\"first\":[1,1,1,4]"},
        {"large", {"1700000000.25", "1700000001"}, "\"first\":[1700000000.25,1700000001]"},
        {"back", {"1", "3", "2"}, "Over the row number, as time_s goes back in line 4."},
        {"none at first", {"", "3"}, "Over the row number, as time_s is no number in line 2."},
    };
    std::string names = header.substr(0, header.size() - 1) + ",time_s\n";
    const std::string cells = "a," + good.substr(0, good.size() - 1);
    for (const auto& row : rows) {
        std::string readings = names;
        for (const std::string& time : row.times)
            readings += time.empty() ? cells + "\n" : cells + "," + time + "\n";
        EXPECT_TRUE(contains(report(readings), row.expected)) << row.name;
    }
    EXPECT_TRUE(contains(report(header + "a," + good + "b," + good),
                         "Over the row number, as the readings have no column time_s."));
}

TEST(Report, AMillionRowsStayBelow5MB) {
    host::ReportContent content;
    content.whyNotOverTime.clear();
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> angle(-180, 180);
    std::array<double, host::quantityCount> values{};
    for (int row = 0; row < 1000000; ++row) {
        for (std::size_t q = 0; q < values.size(); ++q) {
            values[q] = angle(random);
            content.statistics[q].add(values[q]);
        }
        if (row == 654321)
            values[4] = 4321.25;
        content.envelope.addRow(1.7e9 + row / 1000.0, values, host::Envelope::Mark::refused);
    }
    const std::string page = host::reportPage(content);
    EXPECT_LT(page.size(), 5000000U);
    EXPECT_TRUE(contains(page, ",4321.25,")) << "a single row is lost";
    EXPECT_TRUE(contains(page, "Each point stands for 256 rows"));
}

TEST(Report, LevelLimits) {
    host::ReportContent content;
    content.statistics[at(host::Quantity::tiltX)].add(1);
    content.levelLimits = {0, 0, -9.5F, 8}; // as in mount modes 7 and 8
    const std::string page = host::reportPage(content);
    EXPECT_TRUE(contains(page, "X none, Y -9.5 to 8 degrees"));
    EXPECT_TRUE(contains(page, "\"limits\":[null,[-9.5,8]]"));
}

TEST(Report, RefusesWhatItCannotUse) {
    const test::ParameterFolder folder;
    const std::string readings = folder.path() + "/readings.csv";
    std::ofstream(readings, std::ios::binary) << header << "a," << good;
    const struct {
        const char* name;
        std::vector<std::string> arguments;
        std::string message;
    } rows[] = {
        {"over its readings", {readings, "-o", readings}, "expected an output of its own"},
        {"no folder",
         {readings, "-o", folder.path() + "/no/x.html"},
         "expected a file that can be"},
        {"no readings",
         {folder.path() + "/no.csv"},
         "/no.csv:1:1: expected a file that can be read"},
        {"no columns", {example}, "found \"Serial Number\", which looks like a parameter file"},
    };
    for (const auto& row : rows) {
        std::vector<std::string> arguments{"report", example};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        const test::ToolResult result = tool(arguments);
        EXPECT_EQ(result.code, 2) << row.name;
        EXPECT_EQ(result.out, "") << row.name;
        EXPECT_TRUE(contains(result.err, row.message)) << row.name << '\n' << result.err;
    }
    EXPECT_GT(std::filesystem::file_size(readings), 0U);
}

} // namespace
