// The page of kiv report as text; tests/report/ opens it in a browser.

#include <cmath>
#include <filesystem>
#include <fstream>
#include <random>
#include <regex>
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

// The reference stands in the second table; one bad row ends it, and one begins the third.
TEST(Report, SeveralTablesAreOneRecording) {
    const test::ParameterFolder folder;
    const std::string rows[] = {"1970-01-01T00:00,1" + good.substr(1) + "c\n",
                                "1970-01-01T00:02," + good + "c\nd\n",
                                "e\n1970-01-01T00:01," + good};
    const std::string names[] = {folder.path() + "/1.csv", folder.path() + "/second.csv",
                                 folder.path() + "/3.csv"};
    for (std::size_t i = 0; i < 3; ++i)
        std::ofstream(names[i], std::ios::binary) << header << rows[i];
    const auto item = [](const std::string& name, const std::string& bytes) {
        host::Sha256 hash;
        hash.add(bytes);
        return "<li><code>" + name + "</code><br>SHA-256 <code>" + hash.hex() + "</code></li>";
    };
    const auto listed = [&](std::size_t table, const char* lines, const char* x,
                            const char* count) {
        std::string html = "<tr><td class=\"table\">" + names[table];
        for (const char* cell : {lines, x, count})
            html += std::string("</td><td class=\"number\">") + cell;
        return html
               + "</td><td class=\"state refused\">refused</td><td class=\"reason\">byte 2: "
                 "expected 12";
    };
    const std::string page =
        tool({"report", example, names[0], names[1], names[2], "-", "-q"}, header).out;
    for (const std::string& part :
         {"4 tables, one recording\n<ol>\n" + item(names[0], header + rows[0]),
          item(names[2], header + rows[2]), item("standard input", header),
          "as time goes back in line 3 of " + names[2] + ". ", std::string("\"reference\":3,"),
          "(line 2 of " + names[1] + ")", listed(0, "3", "2", "1"),
          listed(1, "3 to 4", "4 to 5", "2"), listed(2, "2", "6", "1")})
        EXPECT_TRUE(contains(page, part)) << part;

    const test::ToolResult cut =
        tool({"report", example, names[0], names[1], "-", "-q"}, "another,header\n");
    EXPECT_EQ(cut.code, 2);
    for (const std::string& part :
         {std::string("Not all readings are in this report: reading broke off."),
          std::string("\"first\":[0,0,120,120,120]"), listed(1, "3 to 4", "\xE2\x80\x93", "2"),
          item(names[1], header + rows[1]),
          std::string("standard input</code><br>SHA-256 none, as it was not read to its end")})
        EXPECT_TRUE(contains(cut.out, part)) << part;
}

// The digest is that of the bytes below, from another program.
TEST(Report, SaysWhatItWasMadeFrom) {
    const std::string truth = "status,x,y,z,azimuth_deg,elevation_deg,level_x,level_y,temperature,"
                              "ref_metric,ref_blocked,true_rx_deg,true_ry_deg,true_rz_deg\n"
                              "2,3,4,0,12.5,3,1,-2,20,0.1,0,,,\n";
    const test::ToolResult result = tool(
        {"report", example, "-", "--title", "Bay <3>", "--length-unit", "\xC2\xB5m", "-q"}, truth);
    std::smatch found;
    EXPECT_TRUE(std::regex_search(
        result.out, found,
        std::regex("Run at</th><td class=\"text\">20\\d\\d-\\d\\d-\\d\\dT[0-9:]{8}Z</td>")));
    for (const char* part :
         {"<title>Bay &lt;3&gt;</title>", "<h1>Bay &lt;3&gt;</h1>",
          " - --title &#39;Bay &lt;3&gt;&#39; --length-unit &#39;\xC2\xB5m&#39; -q</code>",
          ">Example</td>",
          "<code>f4105ea2b55ecd4135b6fbf904404a03daacd2596bb6c610fb812d50ba530457</code>",
          "<code>7c2f16d7c38f207538c030abcd08dd3da29d219697c1b2a8446a39631ed45c5d</code>",
          "Rx(rx) \xC2\xB7 Ry(ry) \xC2\xB7 Rz(rz) = machine matrix \xC2\xB7 M; right-handed",
          "kiv 0.1.0, library 0.1.0", "Distance of the sensor, \xC2\xB5m<",
          "distance</th><td class=\"number\">1</td><td class=\"number\">5.000000</td>",
          "Temperature, in the unit of the thermal factors<"})
        EXPECT_TRUE(contains(result.out, part)) << part;
    EXPECT_TRUE(contains(tool({"report", example, "-", "--frame", "local", "-q"}, truth).out,
                         "Rz(rz) \xC2\xB7 Ry(ry) \xC2\xB7 Rx(rx) = L \xC2\xB7 M"));
}

TEST(Report, Residuals) {
    host::ReportContent content;
    for (const double truth : {1.0, -1.0, 7.0, 179.0, -179.0})
        content.summary.add({RowState::ok}, 2, std::array<double, 3>{truth, 0, 0});
    EXPECT_TRUE(
        contains(host::reportPage(content),
                 "residual rx</th><td class=\"number\">5</td><td class=\"number\">-1.400000</td>"
                 "<td class=\"number\">126.612796</td><td class=\"number\">-179.000000</td>"
                 "<td class=\"number\">179.000000</td><td class=\"number\">113.254580</td>"
                 "<td class=\"number\">179.000000</td>"));
}

// Level Y beyond its limit of 9 degrees, and once beyond its table, too.
TEST(Report, RowsThatAreNotGood) {
    const auto tilted = [](const char* level) {
        return "2,4000,1500,450,12.5,3,1," + std::string(level) + ",20,0.1,0\n";
    };
    const struct {
        std::string readings;
        std::vector<std::string> expected;
    } rows[] = {
        {"b," + good,
         {"verdict good", "0 without an orientation</p>", "computed, all are good</td>",
          "\"notGood\":[]"}},
        {"b," + tilted("9.5") + "c," + good + "d," + tilted("-10.5"),
         {"verdict warn", "0 without an orientation, 2 not good</p>",
          "computed<br>1 <code>good</code><br>2 <code>outside_limits</code>: a tilt is outside",
          "\"notGood\":[[1,1],[3,1]]", "Rows that are not good</h2>\n<p>2 rows.</p>",
          "<td class=\"number\">5</td><td class=\"number\">4</td><td class=\"state not-good\">"
          "outside_limits</td><td class=\"number\">0.00"}},
        {"b," + tilted("-10.5") + "c," + tilted("9.5") + "d," + tilted("-10.5") + "e," + good + "f,"
             + tilted("9.5"),
         {"<p>4 rows.</p>", "<th class=\"number\">Lines</th>",
          "\">3 to 5</td><td class=\"number\">2 to 4</td><td class=\"number\">3</td><td "
          "class=\"state "
          "not-good\">outside_limits</td><td class=\"number\">0.000794</td>",
          "\">7</td><td class=\"number\">6</td><td class=\"number\">1</td><td class=\"state"}},
        {"b," + tilted("9.5") + "c,2\n", {"verdict bad", "1 refused", "1 not good</p>"}},
    };
    for (const auto& row : rows) {
        const std::string page = report(header + "a," + good + row.readings);
        for (const std::string& part : row.expected)
            EXPECT_TRUE(contains(page, part)) << part;
        EXPECT_EQ(contains(page, "state not-good"), contains(page, "Rows that are not good"));
    }
    host::RowRuns<host::Doubt> runs;
    for (const Trust trust : {Trust::seam, Trust::twoSigns})
        runs.add({0, 2, runs.listed().size() + 1, std::nullopt}, {trust, 1});
    EXPECT_EQ(runs.listed().size(), 2U);
}

// Without options for it nothing on the page tells of uncertainties.
TEST(Report, UncertaintiesWhereTheyAreAskedFor) {
    const struct {
        std::vector<std::string> options;
        std::string uncertainties;
        std::vector<std::string> expected, missing;
    } rows[] = {
        {{}, "", {}, {"Uncertainty of the angles", "twice the standard", "uncertainty of rx"}},
        {{"--u-vector", "0.3", "--u-level", "0.002"},
         "",
         {"vector y, length unit</th><td class=\"number\">0.3</td>", "\"bands\":\"value\"",
          "\"bands\":\"zero\"", "figure id=\"uncertainties\"", "uncertainty of rx</th>",
          "within twice that, good rows</th><td class=\"number\"></td><td class=\"number\">100.0 "
          "%"},
         {"across", "raw azimuth", "raw level X", "of the reference, degrees", "all rows</th>"}},
        {{"--uncertainties", "-", "--frame", "local"},
         "{\"vector_across\": 0.3, \"azimuth_deg\": 0.001, \"tilt_offset_y_deg\": 0}",
         {"vector across the line of sight, length unit</th><td class=\"number\">0.3</td>",
          "raw azimuth, degrees</th><td class=\"number\">0.001</td>", "of the reference, degrees",
          "without the reference's part", "\"bands\":\"value\""},
         {"vector x", "along", "tilt offset", "within twice that"}},
    };
    for (const auto& row : rows) {
        std::vector<std::string> arguments{"report", example, KIV_EXAMPLES "/readings.csv", "-q"};
        arguments.insert(arguments.end(), row.options.begin(), row.options.end());
        std::string page = tool(arguments, row.uncertainties).out;
        page.resize(page.find("<footer>")
                    + page.substr(page.find("<footer>")).find("</script>")); // the data, no scripts
        for (const std::string& part : row.expected)
            EXPECT_TRUE(contains(page, part)) << part;
        for (const std::string& part : row.missing)
            EXPECT_FALSE(contains(page, part)) << part;
    }
}

// Two rows with an uncertainty; the rest have none, whatever stands in their fields.
TEST(Report, BudgetAndShareWithinTheBand) {
    host::RowResult row;
    row.hasUncertainty = true;
    const auto set = [&](double azimuth, double levelY, double rounding) {
        for (std::size_t i = 0; i < 3; ++i) {
            row.uncertainty.contribution[at(Source::azimuth)][i] = azimuth;
            row.uncertainty.contribution[at(Source::levelY)][i] = -levelY;
            row.uncertainty.rounding[i] = rounding;
            row.uncertainty.standard[i] = std::hypot(azimuth, levelY, rounding);
            row.uncertainty.reference[i] = 7 * rounding;
        }
    };
    host::UncertaintyBudget budget;
    host::Summary summary;
    const auto add = [&](RowState state, Trust trust, float rx, double trueX) {
        row.state = state;
        row.trust.trust = trust;
        row.info.rx = rx;
        budget.add(row);
        summary.add(row, 2, std::array<double, 3>{trueX, 0, 0});
    };
    set(2, 1, 2);
    add(RowState::ok, Trust::good, 179.5F, -174.5); // 2 u is 6
    add(RowState::refused, Trust::good, 0, 0);
    set(0, 4, 3);
    add(RowState::ok, Trust::mirrorNear, 10.5F, 0); // 2 u is 10
    row.hasUncertainty = false;
    add(RowState::ok, Trust::good, 1, 0);

    EXPECT_EQ(budget.rows(), 2U);
    EXPECT_DOUBLE_EQ(budget.share(Source::azimuth)[0], (4. / 9 + 0) / 2);
    EXPECT_DOUBLE_EQ(budget.share(Source::levelY)[1], (1. / 9 + 16. / 25) / 2);
    EXPECT_DOUBLE_EQ(budget.roundingShare()[2], (4. / 9 + 9. / 25) / 2);
    EXPECT_DOUBLE_EQ(budget.standard()[0], std::sqrt((9. + 25) / 2));
    EXPECT_DOUBLE_EQ(budget.reference()[2], 7 * std::sqrt((4. + 9) / 2));
    EXPECT_EQ(summary.coverage().share(0), 0.5);
    EXPECT_EQ(summary.coverageOfGood().share(0), 1);
    EXPECT_EQ(summary.coverage().share(1), 1);
    EXPECT_EQ(host::Summary().coverage().share(0), std::nullopt);
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
        readings += i == 7 ? "b\nbb\n,,\n" : "b\n,,\n";
    const std::string page = report(readings);
    EXPECT_TRUE(contains(page, "<p>501 rows; the first 201 are listed.</p>"));
    EXPECT_TRUE(contains(page, "reason\">expected 12 cells as in the row of names, found 1 cell<"));
    std::size_t listed = 0;
    for (std::size_t at = 0; (at = page.find("state refused", at)) != std::string::npos; ++at)
        ++listed;
    EXPECT_EQ(listed, 200U);
}

// The time stands behind the readings, so that a row too short has none.
TEST(Report, RunsOverTimeWhereItCan) {
    const struct {
        const char* name;
        const char* column;
        std::vector<std::string> times;
        std::string expected;
    } rows[] = {
        {"rising", "time_s", {"1.5", "2.5", "2.5", "7"}, "\"first\":[1.5,2.5,2.5,7]"},
        {"gaps take the time before", "time_s", {"1", "", "x", "4"}, "\"first\":[1,1,1,4]"},
        {"large", "time_s", {"1700000000.25", "1700000001"}, "[1700000000.25,1700000001]"},
        {"back", "time_s", {"1", "3", "2"}, "as time_s goes back in line 4."},
        {"none at first", "time_s", {"", "3"}, "as time_s is no number in line 2."},
        {"no column", "other", {"1"}, "as the readings have no column time_s or time."},
        {"dates",
         "time",
         {"2023-11-14T22:13:20.25Z", "2023-11-15 00:13:21.5+02:00", "2023-11-14T22:13:22"},
         "{\"x\":\"time, UTC\",\"dates\":true,\"rowsPerBin\":1,\"rows\":3,\"reference\":"
         "1700000000.25,\"first\":[1700000000.25,1700000001.5,1700000001.5]"},
        {"dates of a clock", "time", {"1970-01-02T00:00"}, "{\"x\":\"time\",\"dates\":true"},
        {"seconds are no date", "time", {"5"}, "as time is no ISO 8601 time in line 2."},
        {"dates go back",
         "time",
         {"2023-11-14T22:13Z", "2023-11-14T22:13+01:00"},
         "as time goes back in line 3."},
    };
    for (const auto& row : rows) {
        std::string readings = header.substr(header.find(',') + 1);
        readings.back() = ',';
        readings += std::string(row.column) + '\n';
        for (const std::string& time : row.times)
            readings += good.substr(0, good.size() - 1) + (time.empty() ? "" : "," + time) + '\n';
        EXPECT_TRUE(contains(report(readings), row.expected)) << row.name;
    }
}

TEST(Report, AMillionRowsStayBelow5MB) {
    host::ReportContent content;
    content.axis.kind = host::XAxis::Kind::seconds;
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> angle(-180, 180);
    std::array<double, host::quantityCount> values{};
    content.summary.add({RowState::ok}, 2, std::array<double, 3>{});
    for (host::Statistics& statistics : content.ofReadings)
        statistics.add(1);
    for (int row = 0; row < 1000000; ++row) {
        for (double& value : values)
            value = angle(random);
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
    content.ofReadings[at(host::Quantity::tiltX)].add(1);
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
