// What kiv check says about a parameter file, and that it agrees with what the library loads.

#include <cstdlib>
#include <fstream>
#include <random>

#include <gtest/gtest.h>

#include "host/parameters/Findings.h"
#include "params/Parser.h"
#include "support/platform/ByteSource.h"
#include "tests/ParameterRecord.h"
#include "tests/ToolRunner.h"
#include "tests/golden/Refusals.h"

namespace {

using namespace kiv;
using test::parameterText;
using test::sound;
using test::TextChanges;
using test::tool;
using test::ToolResult;
using test::without;

TEST(Check, TakesManyFilesAndTestsTheIdByTheName) {
    const test::ParameterFolder folder;
    const auto named = [&](const char* name) { return folder.path() + '/' + name; };
    const std::string good = named("Tg5.prm"), other = named("Tg6.prm"), any = named("Tg06.prm");
    for (const std::string& path : {good, other, any})
        std::ofstream(path, std::ios::binary) << parameterText(sound());
    const ToolResult result = tool({"check", named("none"), other, good, any, folder.path()});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(without(result.err, folder.path()),
              "/none: No such file\n"
              "/Tg6.prm:2:1: expected the sensor ID 6 as the value of \"Serial Number\", found "
              "\"5\"\n"
              ": Is a folder; name a file in it\n");
    EXPECT_EQ(without(result.out, folder.path()), "/Tg6.prm: 1 error, 0 warnings\n"
                                                  "/Tg5.prm: 0 errors, 0 warnings\n"
                                                  "/Tg06.prm: 0 errors, 0 warnings\n");
    EXPECT_EQ(tool({"check", other, good}).code, 1);
    EXPECT_EQ(tool({"check"}).code, 2);
}

// Words dropped, doubled, swapped or spoilt at random: no error is shown exactly where the library
// loads every value, and its own view of the text is the same with a survey as without.
TEST(Check, AgreesWithTheLibrary) {
    std::vector<std::string> words;
    std::istringstream usual(parameterText(sound()));
    for (std::string word; usual >> word;)
        words.push_back(word);
    std::mt19937 random(1);
    int sound = 0;
    for (int i = 0; i < 3000; ++i) {
        std::vector<std::string> changed = words;
        for (unsigned changes = random() % 4; changes > 0; --changes) {
            const std::size_t at = random() % (changed.size() - 1);
            switch (random() % 5) {
            case 0:
                changed.erase(changed.begin() + static_cast<std::ptrdiff_t>(at));
                break;
            case 1:
                changed.insert(changed.begin() + static_cast<std::ptrdiff_t>(at),
                               words[random() % words.size()]);
                break;
            case 2:
                std::swap(changed[at], changed[at + 1]);
                break;
            case 3:
                changed[at] += 'x';
                break;
            case 4:
                changed.resize(std::max<std::size_t>(at, 10));
                break;
            }
        }
        std::string text;
        for (const std::string& word : changed)
            text += word + (random() % 8 ? " " : "\n");
        TextSource first(text), second(text);
        const ParsedFile parsed = parseParameterFile(first, 5);
        const host::ExaminedFile examined = host::examine(second, 5);
        const bool loaded = parsed.outcome.code == KIV_OK && parsed.outcome.unread.empty();
        EXPECT_EQ(examined.errors() == 0, loaded) << text;
        EXPECT_EQ(examined.parsed.outcome.code, parsed.outcome.code) << text;
        EXPECT_EQ(examined.parsed.outcome.messageId, parsed.outcome.messageId) << text;
        if (loaded) {
            EXPECT_TRUE(examined.parsed == parsed) << text;
            ++sound;
        }
    }
    EXPECT_GT(sound, 500);
    EXPECT_LT(sound, 2500);
}

TEST(Check, RefusalsReadAsReviewed) {
    std::ifstream file(KIV_GOLDEN "/refusals.txt");
    std::istringstream now(test::refusals());
    std::string expected, line, block;
    for (int number = 1; std::getline(now, line); ++number) {
        ASSERT_TRUE(std::getline(file, expected)) << "no line " << number;
        EXPECT_EQ(line, expected) << "line " << number
                                  << "; kiv_refusals writes the file anew, to be read as prose";
    }
    EXPECT_FALSE(std::getline(file, expected)) << expected;
}

} // namespace
