// Rows on several threads: the same bytes for any number of them.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/base/InOrder.h"
#include "host/base/Interrupt.h"
#include "host/commands/Poses.h"
#include "host/commands/Report.h"
#include "host/commands/Run.h"
#include "tests/ToolRunner.h"

namespace kiv::test {

namespace {

namespace fs = std::filesystem;
using namespace kiv::host;

constexpr std::size_t jobCounts[] = {1, 2, 3, 7};

// What comes of a table: exit code, messages, summary, results or page.
struct Outcome {
    int code = 0;
    std::string err, summary, out;
    bool operator==(const Outcome&) const = default;
};

std::string takenFrom(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    file.close();
    fs::remove(path);
    return text;
}

template <typename Options>
Outcome outcomeOf(Options options, int (*run)(const Options&, const Streams&), std::size_t jobs,
                  std::istream& in) {
    options.parameterFile = example;
    options.readings = {"-"};
    // Tests run beside each other.
    const char* test = ::testing::UnitTest::GetInstance()->current_test_info()->name();
    options.summary = ::testing::TempDir() + "kiv_jobs_" + test + ".json";
    options.format.blockBytes = 300; // some two or three rows
    options.jobs = jobs;
    std::ostringstream out, err;
    const int code = run(options, {in, out, err});
    return {code, err.str(), takenFrom(options.summary), out.str()};
}

// Bad rows, and the first ones cannot become the reference.
std::string table() {
    std::string rows =
        tool({"simulate", example, "--rows", "300", "--trajectory", "random", "--bad-share", "0.2"})
            .out;
    std::size_t end = rows.find('\n');
    for (int i = 0; i < 20; ++i) {
        const std::size_t metric = rows.find(",0.1,0,", end);
        rows.replace(metric, 5, ",0.5,");
        end = rows.find('\n', metric);
        rows.insert(end + 1, ",,\n");
    }
    return rows;
}

// Of a report; empty: now.
void setTimeOfRun(const char* seconds) {
#ifdef _WIN32
    _putenv_s("SOURCE_DATE_EPOCH", seconds);
#else
    setenv("SOURCE_DATE_EPOCH", seconds, 1);
#endif
}

TEST(Jobs, DoNotChangeAByte) {
    RunOptions plain, local, strict, few;
    local.localFrame = true;
    local.uncertainties.emplace()[Source::levelY] = 0.01;
    strict.stopOnBad = true;
    few.format.mostMessages = 2;
    ReportOptions report;
    PosesOptions poses;
    poses.grouping.still = 60;
    poses.grouping.fewestRows = 2;
    setTimeOfRun("0");
    using Run = std::function<Outcome(std::size_t, std::istream&)>;
    const auto runner = [](const RunOptions& options) {
        return [&options](std::size_t jobs, std::istream& in) {
            return outcomeOf(options, runReadings, jobs, in);
        };
    };
    const struct {
        const char* name;
        Run run;
    } cases[] = {{"plain", runner(plain)},
                 {"local", runner(local)},
                 {"stop on bad", runner(strict)},
                 {"few messages", runner(few)},
                 {"poses", [&](std::size_t jobs,
                               std::istream& in) { return outcomeOf(poses, findPoses, jobs, in); }},
                 {"report", [&](std::size_t jobs, std::istream& in) {
                      return outcomeOf(report, reportReadings, jobs, in);
                  }}};
    const std::string rows = table();
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        std::optional<Outcome> first;
        for (const std::size_t jobs : jobCounts) {
            std::istringstream in(rows);
            const Outcome outcome = row.run(jobs, in);
            EXPECT_FALSE(outcome.out.empty() || outcome.summary.empty());
            if (!first)
                first = outcome;
            EXPECT_TRUE(outcome == *first) << jobs << outcome.err;
        }
    }
    setTimeOfRun("");
}

#ifdef GTEST_HAS_DEATH_TEST
TEST(Jobs, AreInterruptedBehindTheSameRow) {
    const std::string rows = table(), whole = tool({"run", example, "-"}, rows).out;
    const std::string path = ::testing::TempDir() + "kiv_jobs.csv";
    std::size_t size = 0;
    for (const std::size_t jobs : jobCounts) {
        const auto run = [&] {
            host::Interrupt::install();
            InterruptedReadings readings(rows, rows.size() / 2, true);
            std::istream in(&readings);
            const Outcome outcome = outcomeOf(RunOptions{}, runReadings, jobs, in);
            std::ofstream(path, std::ios::binary) << outcome.out;
            std::exit(outcome.code);
        };
        EXPECT_EXIT(run(), ::testing::ExitedWithCode(130), "");
        const std::string results = takenFrom(path);
        EXPECT_TRUE(whole.starts_with(results) && results.ends_with('\n'));
        EXPECT_GT(results.size(), whole.size() / 3);
        size = size == 0 ? results.size() : size;
        EXPECT_EQ(results.size(), size) << jobs;
    }
}
#endif

// 100 numbers; what is finished of them, in order, and what is thrown.
TEST(Jobs, EndBehindTheItemThatSaysSo) {
    constexpr std::size_t never = 1000;
    const struct {
        const char* name;
        std::size_t readThrows, workThrows, finishThrows, finishEnds, finished;
    } cases[] = {
        {"to the end", never, never, never, never, 100},
        {"work", never, 40, never, never, 41},
        {"read", 40, never, never, never, 40},
        {"finish", never, never, 40, never, 40},
        {"ends", never, never, never, 40, 41},
        {"work in front", 43, 40, never, never, 41},
    };
    for (const auto& row : cases)
        for (const std::size_t jobs : jobCounts) {
            SCOPED_TRACE(std::string(row.name) + ' ' + std::to_string(jobs));
            const auto throwAt = [](std::size_t item, std::size_t place) {
                if (item == place)
                    throw std::runtime_error(std::to_string(item));
            };
            std::size_t next = 0;
            std::vector<std::size_t> finished;
            host::InOrder<std::size_t> items({
                .read =
                    [&](std::size_t& item) {
                        throwAt(next, row.readThrows);
                        return (item = next++) < 100;
                    },
                .work = [&](std::size_t& item, std::size_t) { throwAt(item, row.workThrows); },
                .finish =
                    [&](std::size_t& item) {
                        throwAt(item, row.finishThrows);
                        finished.push_back(item);
                        return item != row.finishEnds;
                    },
                .overlap = [] { return true; },
            });
            const std::size_t thrown = std::min({row.workThrows, row.readThrows, row.finishThrows});
            if (thrown == never)
                items.run(jobs);
            else
                try {
                    items.run(jobs);
                    ADD_FAILURE() << "nothing is thrown";
                } catch (const std::runtime_error& e) {
                    EXPECT_EQ(e.what(), std::to_string(thrown));
                }
            std::vector<std::size_t> expected(row.finished);
            std::iota(expected.begin(), expected.end(), 0);
            EXPECT_EQ(finished, expected);
        }
}

} // namespace

} // namespace kiv::test
