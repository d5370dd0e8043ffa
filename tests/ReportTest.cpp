// The page of kiv report as text, where tests/cli/cases.txt does not have it; tests/report/ opens
// it in a browser.

#include <cmath>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "host/report/ReportPage.h"
#include "params/Quoted.h"
#include "tests/FileFaults.h"
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

// Text from outside by each way into a page: none is markup, none is a script, all is UTF-8.
TEST(Report, NothingFromOutsideIsMarkup) {
    const std::string evil = "</script><script>alert('1')//\xE2\x80\xA8&amp;<img src=x>";
    const std::string broken = "\xFF\xC3(\xE2\x82\xED\xA0\x80\x01"; // bytes that are no UTF-8
    const test::ParameterFolder folder;
    const std::string page = folder.path() + "/page.html";
    const std::string named = folder.path() + "/<b>&'.csv";
    const bool namedThere(std::ofstream(named, std::ios::binary) << header << "a," << good);
    const std::string ofResults = "line,rx_deg,ry_deg,rz_deg\n2,1,2,3\n";
    for (const char* name : {"/a<img src=x>.csv", "/b.csv"})
        std::ofstream(folder.path() + name, std::ios::binary) << ofResults;
    const std::string rowWith = ",2,4000,CELL,450,12.5,3,1,-2,20,0.1,0\n";
    const auto rows = [&](const std::string& cell) {
        std::string row = rowWith;
        return header + "a," + good + 'b' + row.replace(row.find("CELL"), 4, '"' + cell + '"');
    };
    const struct {
        const char* way;
        std::vector<std::string> arguments;
        std::string readings;
        std::string found; // the text as it should stand in the page
        bool possible = true;
    } ways[] = {
        {"a cell", {"report", example, "-"}, rows(evil), "&lt;/script&gt;&lt;script&gt;"},
        {"a cell's bytes", {"report", example, "-"}, rows(broken), "expected"},
        {"a column", {"report", example, "-"}, evil + ',' + header + "1," + good, "</html>"},
        {"a title",
         {"report", example, "-", "--title", evil},
         header + "a," + good,
         "<h1>&lt;/script&gt;&lt;script&gt;"},
        {"a title's bytes",
         {"report", example, "-", "--title", "x\xFFy"},
         header + "a," + good,
         "<h1>x\xEF\xBF\xBDy</h1>"},
        {"a unit",
         {"report", example, "-", "--length-unit", evil},
         header + "a," + good,
         "&lt;img src=x&gt;"},
        {"a file's name",
         {"report", example, named},
         "",
         "/&lt;b&gt;&amp;&#39;.csv</code>",
         namedThere},
        {"a name that is compared",
         {"compare", folder.path() + "/a<img src=x>.csv", folder.path() + "/b.csv", "--report",
          page},
         "",
         "/a&lt;img src=x&gt;.csv",
         namedThere},
    };
    for (const auto& way : ways) {
        if (!way.possible)
            continue;
        std::filesystem::remove(page);
        std::string html = tool(way.arguments, way.readings).out;
        if (way.arguments[0] == "compare")
            html = test::contentOf(page).value_or("");
        EXPECT_TRUE(contains(html, way.found)) << way.way;
        EXPECT_TRUE(isUtf8(html)) << way.way;
        for (const char* part : {"alert('1')", "<img", "<b>&", "\x01"})
            EXPECT_FALSE(contains(html, part)) << way.way << ": " << part;
    }
}

TEST(Report, ListIsCappedAndCounted) {
    std::string readings = header + "a," + good;
    for (int i = 0; i < 250; ++i)
        readings += i == 7 ? "b\nbb\nc,,\n" : "b\nc,,\n";
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
        {"unbounded", "time_s", {"1", "2", "inf"}, "\"first\":[1,2,2]"},
        {"large", "time_s", {"1700000000.25", "1700000001"}, "[1700000000.25,1700000001]"},
        {"back", "time_s", {"1", "3", "2"}, "\"breaks\":[[3,3,2,1.04]]"},
        {"back, where", "time_s", {"1", "3", "2"}, "rows=3-3\">4</a></td><td>goes back<"},
        {"a pause to scale",
         "time_s",
         {"0", "1", "2", "3", "13.5", "14.5", "26"},
         "\"breaks\":[[5,3,13.5,0],[7,14.5,26,0]]"},
        {"one longer than the rest", "time_s", {"0", "1", "2", "3", "103"}, "[[5,3,103,-99.94]]"},
        {"none at first", "time_s", {"", "3"}, "as time_s is no number in line 2."},
        {"no column", "other", {"1"}, "as the readings have no column time_s or time."},
        {"dates",
         "time",
         {"2023-11-14T22:13:20.25Z", "2023-11-15 00:13:21.5+02:00", "2023-11-14T22:13:22"},
         "{\"name\":\"time, UTC\",\"rowsPerBin\":1,\"rows\":3,\"dates\":true,"
         "\"first\":[1700000000.25,1700000001.5,1700000001.5]}],\"reference\":1"},
        {"dates of a clock", "time", {"1970-01-02T00:00"}, "\"rows\":1,\"dates\":true"},
        {"seconds are no date", "time", {"5"}, "as time is no date and time in line 2."},
        {"dates go back",
         "time",
         {"2023-11-14T22:13Z", "2023-11-14T22:13+01:00"},
         "2023-11-14T22:13:00Z</td><td class=\"number\">2023-11-14T21:13:00Z<"},
        {"the day first",
         "time",
         {"29.03.2026 14:05", "29.03.2026 14:06"},
         "[1774793100,1774793160]"},
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

} // namespace
