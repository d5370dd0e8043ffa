// What kiv check says about parameter files. That it agrees with what the library loads is shown by
// the golden file and tried with any text by fuzz/ParseFuzzer.cpp.

#include <fstream>

#include <gtest/gtest.h>

#include "tests/ParameterRecord.h"
#include "tests/ToolRunner.h"
#include "tests/golden/Refusals.h"

namespace {

using namespace kiv;
using test::parameterText;
using test::sound;
using test::tool;
using test::ToolResult;
using test::without;

TEST(Check, TakesManyFilesAndTestsTheIdByTheName) {
    const test::ParameterFolder folder;
    const auto named = [&](const char* name) { return folder.path() + '/' + name; };
    const std::string good = named("Tg5.prm"), other = named("Tg6.prm"), any = named("Tg06.prm");
    for (const std::string& path : {good, other, any})
        std::ofstream(path, std::ios::binary) << parameterText(sound());
    const ToolResult result = tool({"check", named("none"), folder.path(), other, good, any});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(without(result.err, folder.path()),
              "/none: No such file\n"
              ": Is a folder; name a file in it\n"
              "/Tg6.prm:2:1: expected the sensor ID 6 as the value of \"Serial Number\", found "
              "\"5\"\n");
    EXPECT_EQ(without(result.out, folder.path()), "/Tg6.prm: 1 error, 0 warnings\n"
                                                  "/Tg5.prm: 0 errors, 0 warnings\n"
                                                  "/Tg06.prm: 0 errors, 0 warnings\n");
    EXPECT_EQ(tool({"check", other, good}).code, 1);
    EXPECT_EQ(tool({"check"}).code, 2);
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
