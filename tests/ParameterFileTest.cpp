#include <algorithm>
#include <cctype>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "params/Messages.h"
#include "params/Parser.h"
#include "params/Scanner.h"
#include "support/platform/ByteSource.h"
#include "tests/ParameterText.h"

namespace {

using namespace kiv;
using kiv::test::parameterNumber;
using kiv::test::parameterText;
using kiv::test::TextChanges;

template <typename Number>
struct NumberRow {
    std::string text;
    NumberResult result;
    Number value;     // 99 when none is read
    std::string rest; // the word that follows
};

template <typename Number>
void checkNumbers(const std::vector<NumberRow<Number>>& rows) {
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        TextSource source(row.text);
        Scanner scanner(source);
        Number value = 99;
        EXPECT_EQ(scanner.read(value), row.result);
        EXPECT_EQ(value, row.value);
        EXPECT_EQ(std::signbit(double(value)), std::signbit(double(row.value)));
        EXPECT_EQ(scanner.peekWord(), row.rest);
    }
}

TEST(Scanner, ReadsNumbers) {
    using enum NumberResult;
    const float tiny = std::numeric_limits<float>::denorm_min();
    const std::string zeros(254, '0');
    checkNumbers<float>({
        {"12.5 x", read, 12.5F, "x"},
        {"\v\f\r\n\t +.5", read, 0.5F, ""},
        {"-5.", read, -5, ""},
        {"1.5e-3", read, 1.5e-3F, ""},
        {"1.E2", read, 100, ""},
        {"1.5abc", read, 1.5F, "abc"},
        {"1.5e", read, 1.5F, "e"},
        {"1e+", read, 1, "e+"},
        {"1.5.5", read, 1.5F, ".5"},
        {"1-2", read, 1, "-2"},
        {"1,5", read, 1, ",5"},
        {"0x10", read, 0, "x10"},
        {"-0", read, -0.0F, ""},
        {"3.4028235e38", read, std::numeric_limits<float>::max(), ""},
        // Just below the middle between two floats, where the nearest double is.
        {"1.00000017881393432617187499", read, 1.00000011920928955F, ""},
        {"-7.1e-46", read, -tiny, ""},
        {"7e-46", read, 0, ""},
        {"-1E-400", read, -0.0F, ""},
        {"0e999", read, 0, ""},
        {zeros + "7", read, 7, ""},
        {zeros + "07", tooLong, 99, zeros + "07"},
        {"3.4028236e38", outOfRange, 99, "3.4028236e38"},
        {"-1e400", outOfRange, 99, "-1e400"},
        {"1e99999999999999999999", outOfRange, 99, "1e99999999999999999999"},
        {"", absent, 99, ""},
        {"inf", absent, 99, "inf"},
        {"-nan", absent, 99, "-nan"},
        {"+-5", absent, 99, "+-5"},
        {"- 5", absent, 99, "-"},
        {"-.e5", absent, 99, "-.e5"},
        {"e5", absent, 99, "e5"},
    });
    checkNumbers<std::int32_t>({
        {" 7 8", read, 7, "8"},
        {"3.7", read, 3, ".7"},
        {"1e3", read, 1, "e3"},
        {"+5", read, 5, ""},
        {"-2147483648", read, std::numeric_limits<std::int32_t>::min(), ""},
        {zeros + "7", read, 7, ""},
        {zeros + "07", tooLong, 99, zeros + "07"},
        {"2147483648", outOfRange, 99, "2147483648"},
        {".5", absent, 99, ".5"},
        {"+-5", absent, 99, "+-5"},
        {"-", absent, 99, "-"},
    });
}

ParsedFile parse(const std::string& text) {
    TextSource source(text);
    return parseParameterFile(source, 5);
}

// The id and the finding of a failure, then every value that was not read.
std::string textOf(const ParseOutcome& outcome) {
    std::string text = outcome.code == KIV_OK ? "" : std::to_string(outcome.messageId) + " at ";
    const auto append = [&text](const Finding& finding) {
        text += std::to_string(finding.line) + ":" + std::to_string(finding.column) + ": expected "
                + finding.expected + ", found " + finding.found + "\n";
    };
    if (outcome.code != KIV_OK)
        append(outcome.failure);
    std::for_each(outcome.unread.begin(), outcome.unread.end(), append);
    return text;
}

TEST(Parser, ReadsEveryValue) {
    const auto [document, outcome] = parse(parameterText());
    EXPECT_EQ(textOf(outcome), "");
    std::size_t count = 0;
    for (const BlockLayout& layout : blockTable) {
        SCOPED_TRACE(layout.title);
        const BlockValues* values = document.find(layout.block);
        ASSERT_TRUE(values);
        const bool tilt = layout.kind == BlockKind::tiltTable;
        for (std::size_t i = 0; i < values->numbers.size(); ++i, ++count)
            EXPECT_EQ(values->numbers[i], parameterNumber(layout.block, i));
        EXPECT_EQ(values->trailing,
                  (std::array<float, 3>{tilt ? -30.F : 0, tilt ? 30.F : 0, tilt ? 0.5F : 0}));
        EXPECT_EQ(values->word, layout.kind == BlockKind::word ? "owner" : tilt ? "end" : "");
    }
    EXPECT_EQ(count, 116U);
    EXPECT_EQ(document.find(Block::serialNumber)->integer, 5);
    EXPECT_EQ(document.find(Block::mountingMode)->integer, 3);
}

TEST(Parser, RequiresEveryTitle) {
    for (std::size_t i = 0; i < blockTable.size(); ++i) {
        const BlockLayout& layout = blockTable[i];
        SCOPED_TRACE(layout.title);
        std::string lower(layout.title);
        std::transform(lower.begin(), lower.end(), lower.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        const auto [document, outcome] = parse(parameterText({.titles = {{layout.block, lower}}}));
        EXPECT_EQ(outcome.code, KIV_BAD_FORMAT);
        EXPECT_EQ(outcome.messageId, layout.messageId);
        EXPECT_EQ(outcome.failure.block, layout.block);
        EXPECT_EQ(outcome.failure.found,
                  '"' + lower + "\", which is close but has to match letter by letter");
        for (std::size_t j = 0; j < blockTable.size(); ++j)
            EXPECT_EQ(document.blocks[j].has_value(), j < i) << blockTable[j].title;
    }
}

TEST(Parser, KnowsWhereTheFileMayEnd) {
    for (std::size_t i = 0; i < blockTable.size(); ++i) {
        SCOPED_TRACE(blockTable[i].title);
        const auto [document, outcome] = parse(parameterText({.blocks = i}) + " \r\n\t");
        EXPECT_EQ(outcome.code, KIV_BAD_FORMAT);
        EXPECT_EQ(outcome.messageId, i < 17 ? blockTable[i].messageId : 609U);
        EXPECT_EQ(outcome.failure.found, "end of file");
        EXPECT_EQ(document.find(Block::tiltYCalibration) != nullptr, i > 17);
        const BlockValues* scale = document.find(Block::scaleFactor);
        ASSERT_EQ(scale != nullptr, i >= 17);
        EXPECT_EQ(scale && scale->defaulted, i == 17 || i == 18);
    }
}

TEST(Parser, SaysWhatIsWrong) {
    using enum Block;
    const std::string x300(300, 'x'), x100(100, 'x');
    const auto titled = [](Block block, const std::string& text) {
        return TextChanges{.titles = {{block, text}}};
    };
    const auto valued = [](Block block, const std::string& text) {
        return TextChanges{.values = {{block, text}}};
    };
    const struct {
        const char* name;
        TextChanges changes;
        std::string expected; // the beginning of the outcome's text; empty: accepted
    } rows[] = {
        {"spaces", titled(azPositionGain, "AZ \t Position\n\n Gain"), ""},
        {"plural", titled(scaleFactor, "Scale Factors"), ""},
        {"colon", titled(tiltOffset, "Tilt Sensor Offset:"), ""},
        {"NUL", valued(deviceOwner, std::string("a\0b", 3)), ""},
        {"spelling", titled(localMatrix, "Local Coordinate Transform Matrix"), "611 at 19:1"},
        {"other words", titled(mountingMode, "Mount Mode"), "619 at 47:1"},
        {"word missing", titled(mountingMode, "Mounting"),
         R"(619 at 47:1: expected the title "Mounting Mode", found "Mounting 3")"},
        {"half a title",
         {.values = {{Block::halfAngle, ""}}, .titles = {{Block::halfAngle, "Half"}}},
         R"(609 at 55:1: expected the title "Half Angle", found "Half" and end of file)"},
        {"odd bytes", titled(admOffset, "\xC4\" \\"),
         R"(615 at 27:1: expected the title "ADM Offset", found "\xC4\" \\")"},
        {"extra word", titled(admOffset, "ADM Offset mm"),
         R"(616 at 27:12: expected the title "AZ Calibration Table", found "mm 13 AZ")"
         "\n"
         R"(27:12: expected a number (the value of "ADM Offset"), found "mm")"},
        {"wrong ID", valued(serialNumber, "6"), "602 at 2:1: expected the sensor ID 5"},
        {"no ID", valued(serialNumber, "five"),
         R"(602 at 2:1: expected the sensor ID 5 as the value of "Serial Number", found "five")"
         "\n"
         R"(2:1: expected a whole number (the value of "Serial Number"), found "five")"},
        {"count 0", valued(azCalibration, "0"),
         R"(616 at 30:1: expected a row count of at least 1 in "AZ Calibration Table", found "0")"},
        {"count -1", valued(tiltYCalibration, "-1 1 2 3 w"), "619 at 41:1"},
        {"no count", valued(tiltXCalibration, "many"), "618 at 36:1"},
        {"large count", valued(elCalibration, "3000000000"),
         R"(617 at 33:1: expected a row count of at least 1 in "EL Calibration Table", found )"
         R"("3000000000", which is out of)"},
        {"few values", valued(qvc, "1 2 3 4"),
         R"(51:1: expected a number (value 5 of 6 of "QVC"), found "Level_X")"
         "\n"
         R"(51:1: expected a number (value 6 of 6 of "QVC"), found "Level_X")"},
        {"few rows", valued(azCalibration, "2000000000 1 2 3 4 5"),
         R"(31:1: expected a number (row 3 of "AZ Calibration Table", which claims 2000000000 )"
         R"(rows), found "EL")"},
        {"no closing word",
         {.values = {{Block::tiltXCalibration, "1 1 2 1 2 3"}}, .blocks = 17},
         R"(609 at 37:1: expected the blocks from "Tilt Y Calibration Table" to "Half Angle", found )"
         R"(end of file)"
         "\n"
         R"(37:1: expected a word (closing "Tilt X Calibration Table"), found end of file)"},
        {"long word", valued(deviceOwner, x300),
         "603 at 4:1: expected a word of at most 255 characters (the value of \"Device Owner\"), "
         "found \""
             + x300.substr(0, 40) + "..."},
        {"long closing word", valued(tiltXCalibration, "1 1 2 1 2 3 " + x300), "618 at 36:13"},
        {"long title word", titled(qvc, x300 + "QVC"), "622 at 49:1: expected a word of"},
        {"long title", titled(elTrackingGain, x100 + "EL Tracking Gain" + x100 + x100),
         "607 at 11:1: expected the title \"EL Tracking Gain\" in at most 255 characters"},
    };
    for (const auto& row : rows) {
        const std::string text = textOf(parse(parameterText(row.changes)).outcome);
        EXPECT_EQ(row.expected.empty() ? text : text.substr(0, row.expected.size()), row.expected)
            << row.name;
    }
    const ParsedFile few = parse(parameterText(valued(azCalibration, "2000000000 1 2 3 4 5")));
    const std::vector<float>& numbers = few.document.find(azCalibration)->numbers;
    EXPECT_EQ(numbers, (std::vector<float>{1, 2, 3, 4}));
    EXPECT_LE(numbers.capacity(), 128U);
}

// One byte at a time, and failing at one of them.
class ByteByByte final : public ByteSource {
public:
    ByteByByte(std::string_view text, std::size_t failAt) : rest(text), left(failAt) {}
    std::size_t read(char* buffer, std::size_t) override {
        return failed() ? 0 : (--left, rest.read(buffer, 1));
    }
    bool failed() const override { return left == 0; }

private:
    TextSource rest;
    std::size_t left;
};

TEST(Parser, DoesNotDependOnHowTheTextComes) {
    const std::string text = parameterText({.values = {{Block::qvc, "1 2 x"}}});
    const ParsedFile expected = parse(text);
    ByteByByte bytes(text, std::string::npos);
    EXPECT_TRUE(parseParameterFile(bytes, 5) == expected);
    std::string windows;
    for (const char c : text)
        windows += c == '\n' ? "\r\n" : std::string(1, c);
    EXPECT_TRUE(parse(windows) == expected);
    for (std::size_t i = 0; i <= text.size(); ++i) // with every byte the last one in the buffer
        ASSERT_TRUE(parse(std::string(65536 - i, ' ') + text) == expected) << i;
}

TEST(Parser, ReportsAReadThatFails) {
    const std::string text = parameterText();
    for (std::size_t i = 0; i < text.size(); i += 7) {
        ByteByByte bytes(text, i);
        const auto [document, outcome] = parseParameterFile(bytes, 5);
        EXPECT_EQ(outcome.code, KIV_CANNOT_OPEN) << i;
        EXPECT_EQ(outcome.messageId, 0U) << i;
        EXPECT_FALSE(document.blocks[0].has_value()) << i;
    }
}

TEST(Messages, HaveTheirTexts) {
    for (unsigned id = 601; id <= 624; ++id)
        EXPECT_TRUE(messageText(id)) << id;
    for (const unsigned id : {0U, 600U, 625U})
        EXPECT_FALSE(messageText(id)) << id;
    EXPECT_STREQ(messageCaption, "Zel Error Message for KIV");
    EXPECT_STREQ(messageText(615), "Block title \"ADM Offset\" is not foun.");
    EXPECT_STREQ(messageText(619), "Block title \"Tilt YCalibration Table\" is not found.");
    EXPECT_STREQ(messageText(620), "PRM File Format Error");
    EXPECT_STREQ(messageText(622), "Block \"QVC\" is not found ");
}

} // namespace
