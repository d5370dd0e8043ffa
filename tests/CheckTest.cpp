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
using test::TextChanges;
using test::tool;
using test::ToolResult;

// Without anything to warn of.
TextChanges sound(TextChanges changes = {}) {
    changes.values.insert({{Block::localMatrix, "1 0 0\n0 1 0\n0 0 1"},
                           {Block::machineMatrix, "0 -1 0\n1 0 0\n0 0 1"},
                           {Block::azCalibration, "3\n0 0.1\n180 0.2\n360 0.1"},
                           {Block::tiltXCalibration, "3\n-2 -2\n0 0\n2 2\n-1 1 0\nend"},
                           {Block::tiltYCalibration, "2\n5 5\n-5 -5\n-5 5 0\n7"}});
    return changes;
}

TextChanges valued(Block block, const std::string& text) {
    return sound({.values = {{block, text}}});
}

TextChanges titled(Block block, const std::string& text) {
    return sound({.titles = {{block, text}}});
}

std::string without(std::string text, const std::string& part) {
    for (auto at = text.find(part); at != text.npos; at = text.find(part, at))
        text.erase(at, part.size());
    return text;
}

// The messages, without the path.
TEST(Check, SaysAllThatIsWrong) {
    using enum Block;
    std::string longJunk;
    for (int i = 0; i < 20; ++i)
        longJunk += "Junk ";
    const struct {
        const char* name;
        std::string text;
        std::string expected;
    } rows[] = {
        {"sound", parameterText(sound()), ""},
        {"two misspelt titles",
         parameterText(sound({.titles = {{localMatrix, "Local Coordinate Transform Matrix"},
                                         {machineMatrix, "machine coordinate Tranform Matrix"}}})),
         R"(19:1: expected the title "Local Coordinate Tranform Matrix", found "Local Coordinate )"
         R"(Transform Matrix", which is close but has to match letter by letter
23:1: expected the title "Machine Coordinate Tranform Matrix", found "machine coordinate Tranform )"
         R"(Matrix", which is close but has to match letter by letter
)"},
        {"values behind a misspelt title",
         parameterText(sound({.values = {{tiltOffset, "1 x"}, {elCalibration, "2\n500 1\n9 2"}},
                              .titles = {{tiltOffset, "Tilt Sensor Ofset"}}})),
         R"(29:1: expected the title "Tilt Sensor Offset", found "Tilt Sensor Ofset", which is close )"
         R"(but has to match letter by letter
30:3: expected a number (value 2 of 2 of "Tilt Sensor Offset"), found "x"
40:1: expected angles from -360 to 360 degrees in "EL Calibration Table", found 500 in row 1 (warning)
)"},
        {"a block left out, and one further on",
         without(without(parameterText(sound()), "Device Owner\nowner\n"), "Mounting Mode\n3\n"),
         R"(3:1: expected the title "Device Owner", found "AZ Position"
54:1: expected the title "Mounting Mode", found "QVC"
)"},
        {"junk",
         parameterText(titled(azPositionGain, "some 7 words " + longJunk + "AZ Position Gain")),
         R"(5:1: expected the title "AZ Position Gain", found "some 7 words"
)"},
        {"nothing of it", "junk " + std::string(300, 'x'),
         R"(1:6: expected a word of at most 255 characters in the title "Serial Number", found )"
         R"("xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx..."
1:306: expected the title "Device Owner", found end of file
)"},
        {"bad counts",
         parameterText(sound({.values = {{azCalibration, "0\n1 2"}, {tiltXCalibration, "many"}}})),
         R"(34:1: expected a row count of at least 1 in "AZ Calibration Table", found "0"
40:1: expected a row count of at least 1 in "Tilt X Calibration Table", found "many"
)"},
        {"more rows than the count",
         parameterText(sound({.values = {{azCalibration, "2\n1 1\n2 2\n3 3\n4 4"},
                                         {tiltXCalibration, "1\n-2 0\n0 0\n2 0\n-1 1 0\nend"},
                                         {tiltYCalibration, "1\n5 5\n-5 -5\n-5 5 0\n7"}}})),
         R"(34:1: expected a count of 4, as "AZ Calibration Table" has so many rows, found 2 (warning)
37:1: expected the title "EL Calibration Table", found "3 3 4"
43:1: expected a count of 3, as "Tilt X Calibration Table" has so many rows, found 1 (warning)
47:1: expected the title "Tilt Y Calibration Table", found "-1 1 0 end"
50:1: expected a count of 2, as "Tilt Y Calibration Table" has so many rows, found 1 (warning)
53:6: expected the title "Scale Factor", found "0 7"
)"},
        {"fewer rows than the count",
         parameterText(sound({.values = {{azCalibration, "4\n1 1\n2 2\n3 3"},
                                         {tiltXCalibration, "4\n-2 -2\n0 0\n2 2\n-1 1 0\nend"}}})),
         R"(34:1: expected a count of 3, as "AZ Calibration Table" has so many rows, found 4 (warning)
38:1: expected a number (row 4 of "AZ Calibration Table", which claims 4 rows), found "EL"
42:1: expected a count of 3, as "Tilt X Calibration Table" has so many rows, found 4 (warning)
47:1: expected a number (trailing value 2 of 3 of "Tilt X Calibration Table"), found "end"
)"},
        {"half a row", parameterText(valued(azCalibration, "3\n1 1\n2 2\n3")),
         R"(38:1: expected a number (row 3 of "AZ Calibration Table", which claims 3 rows), found "EL"
)"},
        {"a table cut off",
         parameterText(sound({.values = {{azCalibration, "3\n1 1\n2"}}, .blocks = 15})),
         R"(37:1: expected a number (row 2 of "AZ Calibration Table", which claims 3 rows), found )"
         R"(end of file
)"},
        {"cut off where defaults are", parameterText(sound({.blocks = 17})),
         R"(48:1: expected the blocks from "Tilt Y Calibration Table" to "Half Angle", found end of file
)"},
        {"angles twice and far",
         parameterText(sound({.values = {{azCalibration, "5\n1 1\n-359 2\n1 1\n-361 0\n720.5 0"},
                                         {elCalibration, "3\n-5 1\n355 1\n7 7"}}})),
         R"(36:1: expected each angle of a turn once in "AZ Calibration Table", found -359 in row 2 )"
         R"(after 1 in row 1 and 1 more (warning)
38:1: expected angles from -360 to 360 degrees in "AZ Calibration Table", found -361 in row 4 and )"
         R"(1 more (warning)
)"},
        {"knots that turn and repeat",
         parameterText(sound({.values = {{tiltXCalibration, "4\n-2 0\n0 0\n-1 0\n2 0\n-1 1 0\nend"},
                                         {tiltYCalibration, "3\n5 5\n5 0\n-5 0\n-5 5 0\nend"}}})),
         R"(45:1: expected knots that rise from row to row in "Tilt X Calibration Table", found -1 in )"
         R"(row 3 after 0 (warning)
52:1: expected knots that fall from row to row in "Tilt Y Calibration Table", found 5 in row 2 after )"
         R"(5 (warning)
)"},
        {"level limits",
         parameterText(sound({.values = {{tiltXCalibration, "2\n-2 -2\n2 2\n1.5 -2.5 0\nend"},
                                         {tiltYCalibration, "2\n5 5\n-5 -5\n-5 5.1 0\nend"}}})),
         R"(45:1: expected a low level limit not above the high one in "Tilt X Calibration Table", )"
         R"(found 1.5 and -2.5 (warning)
45:5: expected a level limit within the knots of "Tilt X Calibration Table", -2 to 2, found -2.5 (warning)
51:4: expected a level limit within the knots of "Tilt Y Calibration Table", -5 to 5, found 5.1 (warning)
)"},
        {"limits of tilt X in mode 7",
         parameterText(sound({.values = {{tiltXCalibration, "2\n-2 -2\n2 2\n-35 35 0\nend"},
                                         {mountingMode, "7"}}})),
         ""},
        {"matrices",
         parameterText(sound({.values = {{localMatrix, "1 0 0\n0 1 0\n1 1 0"},
                                         {machineMatrix, "0 -1 0\n1 0 0\n0 0 1.00001"}}})),
         R"(20:1: expected a matrix that has an inverse in "Local Coordinate Tranform Matrix", found a )"
         R"(singular one (warning)
24:1: expected a rotation in "Machine Coordinate Tranform Matrix", found rows that miss length 1 and )"
         R"(right angles by 2e-05 (warning)
)"},
        {"what leaves a level out",
         parameterText(sound({.values = {{mountingMode, "9"},
                                         {thermalFactor, "0 1 0 0"},
                                         {tiltYCalibration, "2\n5 0.5\n-5 -0.4\n-5 5 0\n7"},
                                         {levelX, "0 0 0 -30 0 0 0"},
                                         {levelY, "0 0 0 146 0 0 1"}}})),
         R"(28:5: expected a slope or an intercept of level Y other than 0 in "Thermal Compensation Factor", as )"
         R"(both leave the reading out, found 0 and 0 (warning)
50:3: expected tilts that differ by a degree or more in "Tilt Y Calibration Table", found -0.4 to 0.5 (warning)
61:15: expected a gain of level X other than 0 in "Level_X", as it leaves the reading out, found 0 (warning)
63:7: expected axes of the two levels 5 degrees or more apart in "Level_Y", found 4 degrees (warning)
)"},
        {"another mount mode, and gains of 0",
         parameterText(sound({.values = {{mountingMode, "12"}, {scaleFactor, "0 0 0 0 0 1 0 0"}}})),
         R"(55:9: expected a gain of the azimuth other than 0 in "Scale Factor", as it leaves the reading out, )"
         R"(found 0 (warning)
55:13: expected a gain of level Y other than 0 in "Scale Factor", as it leaves the reading out, found 0 (warning)
57:1: expected a mount mode from 1 to 11 in "Mounting Mode", as any other runs as a pendulum, found 12 (warning)
)"},
        {"rotations in print, and a reflection",
         parameterText(
             sound({.values = {{localMatrix, "0.939373 -.342898 0 0.342898 .939373 0 0 0 1"},
                               {machineMatrix, "0 1 0\n1 0 0\n0 0 1"}}})),
         R"(22:1: expected a rotation in "Machine Coordinate Tranform Matrix", found a reflection )"
         R"((determinant -1) (warning)
)"},
        {"text behind", parameterText(sound()) + "more",
         R"(66:1: expected end of file behind "Half Angle", found "more" (warning)
)"},
        {"no line end", parameterText(sound()).erase(parameterText(sound()).size() - 2),
         R"(65:9: expected a line end behind the last value, which may be cut, found end of file (warning)
)"},
        {"no warning of what was not read", parameterText(valued(machineMatrix, "1 0 0 0 1 0 0 0")),
         R"(25:1: expected a number (value 9 of 9 of "Machine Coordinate Tranform Matrix"), found )"
         R"("Thermal"
)"},
    };
    const test::ParameterFolder folder;
    const std::string path = folder.path() + "/any name";
    for (const auto& row : rows) {
        std::ofstream(path, std::ios::binary) << row.text;
        const ToolResult result = tool({"check", path});
        const std::string shown = without(result.err, path + ":");
        EXPECT_EQ(shown, row.expected) << row.name;
        const bool errors = without(shown, "(warning)\n").find('\n') != shown.npos;
        EXPECT_EQ(result.code, errors ? 1 : 0) << row.name;
        EXPECT_EQ(tool({"check", "--strict", path}).code, shown.empty() ? 0 : 1) << row.name;
    }
}

TEST(Check, TakesManyFilesAndTestsTheIdByTheName) {
    const test::ParameterFolder folder;
    const auto named = [&](const char* name) { return folder.path() + '/' + name; };
    const std::string good = named("Tg5.prm"), other = named("Tg6.prm"), any = named("Tg06.prm");
    for (const std::string& path : {good, other, any})
        std::ofstream(path, std::ios::binary) << parameterText(sound());
    const ToolResult result = tool({"check", named("none"), other, good, any, folder.path()});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(without(result.err, folder.path()),
              "/none:1:1: expected a parameter file, found no such file\n"
              "/Tg6.prm:2:1: expected the sensor ID 6 as the value of \"Serial Number\", found "
              "\"5\"\n"
              ":1:1: expected a parameter file, found a folder\n");
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
