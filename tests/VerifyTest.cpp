// kiv verify, with a digit changed in what it carries: models and cases then differ by as much as a
// model with a changed digit would.

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "host/commands/Verify.h"
#include "tests/ToolRunner.h"

namespace {

using namespace kiv;
using host::ReferenceData;

struct Verdict {
    int code;
    std::string wrong; // the models
    std::string text;
};

Verdict verdictOn(const ReferenceData& data) {
    std::string wrong;
    for (const host::ModelCheck& check : host::checkModels(data))
        if (!check.good())
            wrong.append(wrong.empty() ? "" : ", ").append(check.model);
    std::istringstream in;
    std::ostringstream out;
    const int code = host::verifyInstallation({}, {in, out, out}, data);
    return {code, wrong, out.str()};
}

TEST(Verify, FindsAChangedDigitInEveryModel) {
    const std::string all = "dual-level, pendulum, polarizer, three-vector, two-level";
    const struct {
        const char *from, *to; // in the parameter file
        std::string wrong;
    } rows[] = {
        {"Scale Factor\n0.2\n", "Scale Factor\n0.20001\n", "dual-level, pendulum, polarizer"},
        {"\n0.1\n2\n", "\n0.10001\n2\n", "dual-level, pendulum, polarizer"},
        {"\n2\n3\n", "\n2.001\n3\n", "pendulum"},
        {"\n1.002\n", "\n1.00201\n", "pendulum, polarizer"},
        {"QVC\n12.05", "QVC\n12.0501", "three-vector, two-level"},
        {"-0.2\t1.5", "-0.2\t1.50001", "three-vector, two-level"},
        {"-65", "-65.0001", "two-level"},
        {"137.25", "137.25001", all},
        {"0.0173", "0.0174", all},
        {"6.25", "6.26", all},
    };
    for (const auto& row : rows) {
        std::string text(ReferenceData{}.parameters);
        const auto at = text.find(row.from);
        ASSERT_NE(at, text.npos) << row.from;
        text.replace(at, std::string(row.from).size(), row.to);
        const Verdict verdict = verdictOn({.parameters = text});
        EXPECT_EQ(verdict.wrong, row.wrong) << row.to;
        EXPECT_EQ(verdict.code, 1) << row.to;
    }
    EXPECT_EQ(verdictOn({}).wrong, "");
}

// Of the first case in each mount mode every result: just beyond what is allowed, and no number.
TEST(Verify, ComparesEveryResult) {
    const std::vector<std::string> lines = test::lines(std::string(ReferenceData{}.cases));
    std::string mode;
    int changed = 0;
    for (std::size_t line = 1; line < lines.size(); ++line) {
        if (lines[line].substr(0, lines[line].find(',')) == mode)
            continue;
        mode = lines[line].substr(0, lines[line].find(','));
        std::size_t start = 0;
        for (int column = 0; start != std::string::npos && start <= lines[line].size(); ++column) {
            const std::size_t end = std::min(lines[line].find(',', start), lines[line].size());
            const std::string cell = lines[line].substr(start, end - start);
            const bool exact = column < 17, matrix = column >= 23; // as the corrected readings are
            for (int kind = column < 13 ? 2 : 0; kind < 2; ++kind, ++changed) {
                std::ostringstream other;
                other.precision(17);
                if (kind == 0 && exact)
                    other << std::nextafter(std::stof(cell), 1e9F);
                else if (kind == 0)
                    other << std::stod(cell) + (matrix ? 3e-13 : 3e-5);
                else
                    other << "none";
                std::string text = lines[0] + '\n';
                for (std::size_t i = 1; i < lines.size(); ++i)
                    text += i == line ? lines[i].substr(0, start) + other.str()
                                            + lines[i].substr(end) + '\n'
                                      : lines[i] + '\n';
                const Verdict verdict = verdictOn({.cases = text});
                EXPECT_EQ(verdict.code, 1) << mode << ' ' << column;
                EXPECT_EQ(verdict.wrong.find(','), std::string::npos) << verdict.wrong;
                EXPECT_NE(verdict.text.find("\n  case " + std::to_string(line) + ": expected "),
                          std::string::npos)
                    << verdict.text;
            }
            start = end + 1;
        }
    }
    EXPECT_EQ(changed, 10 * 19 * 2);
}

TEST(Verify, MissesAModelOfWhichThereAreNoCases) {
    const std::string text(ReferenceData{}.cases);
    const Verdict verdict = verdictOn({.cases = text.substr(0, text.find("\n9,") + 1)});
    EXPECT_EQ(verdict.wrong, "");
    EXPECT_EQ(verdict.code, 1);
    EXPECT_NE(verdict.text.find("\nThis installation does not compute what it should.\n"),
              std::string::npos);
}

} // namespace
