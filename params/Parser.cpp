#include "params/Parser.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <utility>

#include "params/Scanner.h"
#include "support/platform/ByteSource.h"

namespace kiv {

namespace {

constexpr const char* endOfFile = "end of file";
constexpr const char* longWord = "a word of at most 255 characters";
constexpr const char* longTitle = "a title of at most 255 characters";

std::string quoted(std::string_view text) {
    constexpr std::size_t maxShown = 40;
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string shown = "\"";
    for (const char c : text.substr(0, maxShown)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte > 0x7E)
            shown.append({'\\', 'x', digits[byte >> 4], digits[byte & 0xF]});
        else if (c == '"' || c == '\\')
            shown.append({'\\', c});
        else
            shown += c;
    }
    return shown + (text.size() > maxShown ? "...\"" : "\"");
}

std::string_view remarkOn(NumberResult result) {
    switch (result) {
    case NumberResult::outOfRange:
        return ", which is out of range";
    case NumberResult::tooLong:
        return ", which has over 255 characters";
    default:
        return "";
    }
}

// Such as value 3 of 6.
std::string nthOf(std::string_view noun, std::size_t index, std::size_t count) {
    return std::string(noun) + " " + std::to_string(index + 1) + " of " + std::to_string(count);
}

class FileParser {
public:
    FileParser(ByteSource& source, std::optional<std::int32_t> id)
        : scanner(source), sensorId(id) {}

    bool atEnd() { return scanner.atEnd(); }

    // Nothing, and the outcome's failure, when the text is not this block.
    std::optional<BlockValues> readBlock(const BlockLayout& blockLayout);

    ParseOutcome outcome;

private:
    bool readTitle();
    bool readValues(BlockValues& values);
    bool readSensorId(BlockValues& values);
    void readInteger(BlockValues& values);
    bool readWord(std::string& word, std::string_view which);
    void readNumbers(std::span<float> numbers, std::string_view noun);
    bool readCount(BlockValues& values);
    void readRows(BlockValues& values);
    bool readTiltTable(BlockValues& values);

    Finding findingAtWord(std::string expected);
    void unread(std::string expected, NumberResult result);
    bool fail(Finding failure, unsigned messageId);
    bool fail(Finding failure) { return fail(std::move(failure), layout->messageId); }

    Scanner scanner;
    std::optional<std::int32_t> sensorId;
    const BlockLayout* layout = nullptr;
    std::string title; // the layout's, quoted
};

std::optional<BlockValues> FileParser::readBlock(const BlockLayout& blockLayout) {
    layout = &blockLayout;
    title = quoted(layout->title);
    BlockValues values;
    if (!readTitle() || !readValues(values))
        return std::nullopt;
    return values;
}

bool FileParser::readTitle() {
    Finding mismatch = findingAtWord("the title " + title);
    bool complete = true;
    std::string words;
    for (int i = 0; i < layout->titleWords && complete; ++i) {
        const std::string_view word = scanner.peekWord();
        if (word.size() > Scanner::maxLength)
            return fail(findingAtWord(longWord));
        complete = !word.empty();
        words.append(complete && i > 0 ? " " : "").append(word);
        scanner.skip(word.size());
    }
    if (words.find(layout->title) != words.npos && words.size() <= Scanner::maxLength)
        return true;
    if (words.size() > Scanner::maxLength)
        mismatch.expected = longTitle;
    if (!words.empty())
        mismatch.found = quoted(words) + (complete ? "" : std::string(" and ") + endOfFile);
    return fail(std::move(mismatch));
}

bool FileParser::readValues(BlockValues& values) {
    switch (layout->kind) {
    case BlockKind::sensorId:
        return readSensorId(values);
    case BlockKind::integer:
        readInteger(values);
        return true;
    case BlockKind::word:
        return readWord(values.word, "the value of ");
    case BlockKind::numbers:
        values.numbers.resize(static_cast<std::size_t>(layout->count));
        readNumbers(values.numbers, "value");
        return true;
    case BlockKind::encoderTable:
        if (!readCount(values))
            return false;
        readRows(values);
        return true;
    case BlockKind::tiltTable:
        return readTiltTable(values);
    }
    return false;
}

bool FileParser::readSensorId(BlockValues& values) {
    Finding mismatch = findingAtWord("the sensor ID " + std::to_string(sensorId.value_or(0)));
    readInteger(values);
    if (!sensorId || values.integer == *sensorId)
        return true;
    return fail(std::move(mismatch), wrongIdMessage);
}

void FileParser::readInteger(BlockValues& values) {
    const NumberResult result = scanner.read(values.integer);
    if (result != NumberResult::read)
        unread("a whole number (the value of " + title + ")", result);
}

// which precedes the title in the expected text.
bool FileParser::readWord(std::string& word, std::string_view which) {
    word = scanner.peekWord();
    if (word.size() > Scanner::maxLength)
        return fail(findingAtWord(longWord));
    scanner.skip(word.size());
    if (word.empty())
        unread("a word (" + std::string(which) + title + ")", NumberResult::absent);
    return true;
}

void FileParser::readNumbers(std::span<float> numbers, std::string_view noun) {
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const NumberResult result = scanner.read(numbers[i]);
        if (result != NumberResult::read)
            unread("a number (" + nthOf(noun, i, numbers.size()) + " of " + title + ")", result);
    }
}

bool FileParser::readCount(BlockValues& values) {
    Finding mismatch = findingAtWord("a count of at least 1");
    const NumberResult result = scanner.read(values.integer);
    if (result == NumberResult::read && values.integer >= 1)
        return true;
    mismatch.found += remarkOn(result);
    return fail(std::move(mismatch));
}

void FileParser::readRows(BlockValues& values) {
    const auto claimed = static_cast<std::size_t>(values.integer);
    std::vector<float>& numbers = values.numbers;
    for (std::size_t row = 0; row < claimed; ++row) {
        std::array<float, 2> pair{};
        for (float& number : pair) {
            const NumberResult result = scanner.read(number);
            if (result != NumberResult::read)
                return unread("a number (row " + std::to_string(row + 1) + " of " + title
                                  + ", which claims " + std::to_string(claimed) + " rows)",
                              result);
        }
        // Room at most doubles, and a complete table leaves none unused.
        if (numbers.size() == numbers.capacity())
            numbers.reserve(2 * std::min(claimed, std::max<std::size_t>(64, numbers.size())));
        numbers.push_back(pair[0]);
        numbers.push_back(pair[1]);
    }
}

bool FileParser::readTiltTable(BlockValues& values) {
    if (!readCount(values))
        return false;
    readRows(values);
    readNumbers(values.trailing, "trailing value");
    return readWord(values.word, "closing ");
}

Finding FileParser::findingAtWord(std::string expected) {
    const std::string_view word = scanner.peekWord();
    const auto [line, column] = scanner.place();
    return {layout->block, line, column, std::move(expected),
            word.empty() ? endOfFile : quoted(word)};
}

void FileParser::unread(std::string expected, NumberResult result) {
    outcome.unread.push_back(findingAtWord(std::move(expected)));
    outcome.unread.back().found += remarkOn(result);
}

bool FileParser::fail(Finding failure, unsigned messageId) {
    outcome.code = KIV_BAD_FORMAT;
    outcome.messageId = messageId;
    outcome.failure = std::move(failure);
    return false;
}

BlockValues defaultsOf(const BlockLayout& layout) {
    BlockValues values;
    values.defaulted = true;
    if (layout.kind == BlockKind::numbers)
        values.numbers.assign(layout.defaults.begin(), layout.defaults.begin() + layout.count);
    return values;
}

} // namespace

ParsedFile parseParameterFile(ByteSource& source, std::optional<std::int32_t> id) {
    Document document;
    FileParser parser(source, id);
    for (const BlockLayout& layout : blockTable) {
        auto& block = document.blocks[static_cast<std::size_t>(layout.block)];
        if (layout.atEnd == AtEnd::fail || !parser.atEnd())
            block = parser.readBlock(layout);
        else if (layout.atEnd == AtEnd::useDefaults)
            block = defaultsOf(layout);
        if (parser.outcome.code != KIV_OK)
            break;
    }
    if (source.failed())
        return {{}, {KIV_CANNOT_OPEN, 0, {}, {}}};
    return {std::move(document), std::move(parser.outcome)};
}

} // namespace kiv
