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

TEST(Parser, TakesATitleWithinItsWords) {
    using enum Block;
    const TextChanges rows[] = {
        {.titles = {{azPositionGain, "AZ \t Position\n\n Gain"}}},
        {.titles = {{scaleFactor, "Scale Factors"}}},
        {.titles = {{tiltOffset, "Tilt Sensor Offset:"}}},
        {.values = {{deviceOwner, std::string("a\0b", 3)}}},
    };
    for (const TextChanges& changes : rows)
        EXPECT_EQ(parse(parameterText(changes)).outcome.code, KIV_OK);
}

TEST(Parser, KeepsTheRowsBeforeATableBreaksOff) {
    const auto [document, outcome] =
        parse(parameterText({.values = {{Block::azCalibration, "2000000000 1 2 3 4 5"}}}));
    const std::vector<float>& numbers = document.find(Block::azCalibration)->numbers;
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
