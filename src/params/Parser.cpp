#include "params/Parser.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>
#include <string_view>
#include <utility>

#include "params/CloseTitle.h"
#include "params/Quoted.h"
#include "support/platform/ByteSource.h"

namespace kiv {

namespace {

constexpr const char* endOfFile = "end of file";
constexpr const char* longWord = "a word of at most 255 characters";

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
    if (count == 1)
        return "the " + std::string(noun);
    return std::string(noun) + " " + std::to_string(index + 1) + " of " + std::to_string(count);
}

// As every word of every title.
bool hasCapital(std::string_view word) {
    return std::any_of(word.begin(), word.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

bool isNumber(std::string_view word) {
    if (word.empty() || word.front() > '9')
        return false;
    float ignored = 0;
    const char* last = word.data() + word.size();
    const char* first = word.data() + word.starts_with('+');
    const auto converted = std::from_chars(first, last, ignored);
    return converted.ec == std::errc{} && converted.ptr == last;
}

enum class Purpose { load, rewrite };

class FileParser {
public:
    FileParser(ByteSource& source, Purpose why, std::optional<std::int32_t> id, Survey* asked)
        : scanner(source), purpose(why), sensorId(id), survey(asked) {}

    bool atEnd() { return scanner.atEnd(); }

    // Nothing, and the outcome's failure, when the text is not this block.
    std::optional<BlockValues> readBlock(const BlockLayout& blockLayout);

    // The text has ended before a block that need not be there.
    void pass(const BlockLayout& blockLayout) {
        if (!firstPassed)
            firstPassed = &blockLayout;
    }

    // The title of a later block has come.
    bool hasPassed(Block block) const { return resumedAt > block; }

    // What stands where something else is expected.
    Finding findingAtWord(std::string expected);

    ParseOutcome outcome;
    std::optional<BrokenBlock> broken;

private:
    bool readTitle();
    void takeTitleWord(std::string_view word);
    bool seekTitle(Block first);
    bool readValues(BlockValues& values);
    bool readSensorId(BlockValues& values);
    bool readInteger(BlockValues& values);
    bool readWord(std::string& word, std::string_view which);
    bool readNumbers(std::span<float> numbers, Groups groups, std::string_view noun);
    bool readCount(BlockValues& values);
    bool readRows(BlockValues& values);
    bool readTiltTable(BlockValues& values);
    template <typename Number>
    NumberResult read(Number& value);

    bool unread(std::string expected, NumberResult result);
    bool fail(Finding failure, unsigned messageId);
    bool fail(Finding failure) { return fail(std::move(failure), layout->messageId); }

    Scanner scanner;
    Purpose purpose;
    std::optional<std::int32_t> sensorId;
    const BlockLayout* layout = nullptr;
    std::string title; // the layout's, quoted
    const BlockLayout* firstPassed = nullptr;
    std::size_t groupsRead = 0; // of the block, as BrokenBlock counts them
    Survey* survey;
    std::string titleWords; // taken in search of a title
    std::size_t numbersAmongThem = 0;
    std::size_t wordsAmongThem = 0;
    std::optional<Block> resumedAt; // the block whose title has come in place of an earlier one
};

std::optional<BlockValues> FileParser::readBlock(const BlockLayout& blockLayout) {
    layout = &blockLayout;
    title = quoted(layout->title);
    groupsRead = 0;
    BlockValues values;
    if (resumedAt != layout->block && !readTitle() && !seekTitle(layout->block))
        return std::nullopt;
    if (readValues(values))
        return values;
    if (purpose == Purpose::rewrite)
        broken = {layout->block, std::move(values), groupsRead};
    titleWords.clear();
    if (layout != &blockTable.back())
        seekTitle((layout + 1)->block);
    return std::nullopt;
}

bool FileParser::readTitle() {
    Finding mismatch = findingAtWord("the title " + title);
    if (firstPassed)
        mismatch.expected = "the blocks from " + quoted(firstPassed->title) + " to " + title;
    bool complete = true;
    titleWords.clear();
    numbersAmongThem = wordsAmongThem = 0;
    for (int i = 0; i < layout->titleWords && complete && !hasPassed(layout->block); ++i) {
        const std::string_view word = scanner.peekWord();
        if (word.size() > Scanner::maxLength)
            return fail(findingAtWord(longWord + (" in the title " + title)));
        complete = !word.empty();
        takeTitleWord(word);
        // Another title may have fewer words; its values are no part of what was found.
        for (const BlockLayout& other : blockTable)
            if (other.block > layout->block && other.title == titleWords)
                resumedAt = other.block;
    }
    if (titleWords.find(layout->title) != titleWords.npos
        && titleWords.size() <= Scanner::maxLength)
        return true;
    if (titleWords.size() > Scanner::maxLength)
        mismatch.expected += " in at most 255 characters";
    if (!titleWords.empty())
        mismatch.found = quoted(titleWords) + (complete ? "" : std::string(" and ") + endOfFile);
    const bool close = isCloseTo(*layout, titleWords);
    const std::size_t behindFirst = layout->title.find(' ') + 1;
    if (close)
        mismatch.found += ", which is close but has to match letter by letter";
    else if (behindFirst > 0 && titleWords.starts_with(layout->title.substr(behindFirst)))
        mismatch.found += ", the first word taken for the value before";
    fail(std::move(mismatch));
    return survey && close;
}

void FileParser::takeTitleWord(std::string_view word) {
    titleWords.append(titleWords.empty() || word.empty() ? "" : " ").append(word);
    ++(isNumber(word) ? numbersAmongThem : wordsAmongThem);
    scanner.skip(word.size());
}

// For a survey: takes all up to a title, of the first block or a later one. True when it is the
// title of the block being read.
bool FileParser::seekTitle(Block first) {
    constexpr std::size_t longestTitle = 64;
    if (!survey)
        return false;
    while (!(resumedAt >= first)) {
        const std::string_view word = scanner.peekWord();
        if (word.empty())
            return false;
        const bool mayBeOfTitle = hasCapital(word);
        takeTitleWord(word);
        if (!mayBeOfTitle) {
            titleWords.clear();
            continue;
        }
        if (titleWords.size() > longestTitle)
            titleWords.erase(0, titleWords.size() - longestTitle);
        for (const BlockLayout& other : blockTable)
            if (other.block >= first && titleWords.find(other.title) != titleWords.npos)
                resumedAt = other.block;
    }
    Survey::Extent& extent = survey->extents[static_cast<std::size_t>(first)];
    extent.numbersBefore = numbersAmongThem;
    extent.wordsBefore = wordsAmongThem - static_cast<std::size_t>(layoutOf(*resumedAt).titleWords);
    return resumedAt == layout->block;
}

bool FileParser::readValues(BlockValues& values) {
    switch (layout->kind) {
    case BlockKind::sensorId:
        return readSensorId(values);
    case BlockKind::integer:
        return readInteger(values);
    case BlockKind::word:
        return readWord(values.word, "the value of ");
    case BlockKind::numbers:
        values.numbers.resize(static_cast<std::size_t>(layout->count));
        return readNumbers(values.numbers, layout->groups, "value");
    case BlockKind::encoderTable:
        return readCount(values) && readRows(values);
    case BlockKind::tiltTable:
        return readTiltTable(values);
    }
    return false;
}

bool FileParser::readSensorId(BlockValues& values) {
    Finding mismatch = findingAtWord("the sensor ID " + std::to_string(sensorId.value_or(0))
                                     + " as the value of " + title);
    if (!readInteger(values))
        return false;
    if (!sensorId || values.integer == *sensorId)
        return true;
    fail(std::move(mismatch), wrongIdMessage);
    return survey;
}

bool FileParser::readInteger(BlockValues& values) {
    const NumberResult result = read(values.integer);
    if (result != NumberResult::read)
        return unread("a whole number (the value of " + title + ")", result);
    ++groupsRead;
    return true;
}

// which precedes the title in the expected text.
bool FileParser::readWord(std::string& word, std::string_view which) {
    word = scanner.peekWord();
    if (word.size() > Scanner::maxLength)
        return fail(findingAtWord(longWord + (" (" + std::string(which) + title + ")")));
    scanner.skip(word.size());
    if (word.empty())
        return unread("a word (" + std::string(which) + title + ")", NumberResult::absent);
    ++groupsRead;
    return true;
}

bool FileParser::readNumbers(std::span<float> numbers, Groups groups, std::string_view noun) {
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const NumberResult result = read(numbers[i]);
        if (result != NumberResult::read
            && !unread("a number (" + nthOf(noun, i, numbers.size()) + " of " + title + ")",
                       result))
            return false;
        groupsRead += (i + 1) % groups.size == 0;
    }
    return true;
}

bool FileParser::readCount(BlockValues& values) {
    const bool empty = purpose == Purpose::rewrite; // as a count below 1 says
    Finding mismatch =
        findingAtWord((empty ? "a row count in " : "a row count of at least 1 in ") + title);
    const NumberResult result = read(values.integer);
    if (result == NumberResult::read && (values.integer >= 1 || empty)) {
        ++groupsRead;
        return true;
    }
    mismatch.found += remarkOn(result);
    return fail(std::move(mismatch));
}

bool FileParser::readRows(BlockValues& values) {
    const auto claimed = static_cast<std::size_t>(std::max(values.integer, 0));
    std::vector<float>& numbers = values.numbers;
    for (std::size_t row = 0; row < claimed; ++row) {
        std::array<float, 2> pair{};
        for (float& number : pair) {
            const NumberResult result = read(number);
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
        ++groupsRead;
    }
    return true;
}

bool FileParser::readTiltTable(BlockValues& values) {
    return readCount(values) && readRows(values)
           && readNumbers(values.trailing, trailingRow, "trailing value")
           && readWord(values.word, "closing ");
}

template <typename Number>
NumberResult FileParser::read(Number& value) {
    if (!survey)
        return scanner.read(value);
    scanner.peekWord(); // goes to the number
    const TextPlace place = scanner.place();
    const NumberResult result = scanner.read(value);
    if (result == NumberResult::read)
        survey->extents[static_cast<std::size_t>(layout->block)].numbers.push_back(place);
    return result;
}

Finding FileParser::findingAtWord(std::string expected) {
    const std::string_view word = scanner.peekWord();
    const auto [line, column] = scanner.place();
    return {layout->block, line, column, std::move(expected),
            word.empty() ? endOfFile : quoted(word)};
}

// A load goes on behind it.
bool FileParser::unread(std::string expected, NumberResult result) {
    Finding finding = findingAtWord(std::move(expected));
    finding.found += remarkOn(result);
    if (purpose == Purpose::rewrite)
        return fail(std::move(finding));
    outcome.unread.push_back(std::move(finding));
    return true;
}

bool FileParser::fail(Finding failure, unsigned messageId) {
    if (survey)
        survey->failures.push_back(failure);
    if (outcome.code == KIV_OK) {
        outcome.code = KIV_BAD_FORMAT;
        outcome.messageId = messageId;
        outcome.failure = std::move(failure);
    }
    return false;
}

BlockValues defaultsOf(const BlockLayout& layout) {
    BlockValues values;
    values.defaulted = true;
    if (layout.kind == BlockKind::numbers)
        values.numbers.assign(layout.defaults.begin(), layout.defaults.begin() + layout.count);
    return values;
}

ParsedFile parse(ByteSource& source, Purpose purpose, std::optional<std::int32_t> id,
                 Survey* survey) {
    Document document;
    FileParser parser(source, purpose, id, survey);
    for (const BlockLayout& layout : blockTable) {
        if (parser.hasPassed(layout.block))
            continue;
        auto& block = document.blocks[static_cast<std::size_t>(layout.block)];
        if (layout.atEnd == AtEnd::fail || !parser.atEnd()) {
            block = parser.readBlock(layout);
        } else {
            parser.pass(layout);
            if (layout.atEnd == AtEnd::useDefaults)
                block = defaultsOf(layout);
        }
        if (parser.outcome.code != KIV_OK && !survey)
            break;
    }
    if (survey && !parser.atEnd())
        survey->textBehind = parser.findingAtWord("end of file behind \"Half Angle\"");
    if (source.failed())
        return {{}, {KIV_CANNOT_OPEN, 0, {}, {}}};
    document.broken = std::move(parser.broken);
    return {std::move(document), std::move(parser.outcome)};
}

} // namespace

ParsedFile parseParameterFile(ByteSource& source, std::optional<std::int32_t> id, Survey* survey) {
    return parse(source, Purpose::load, id, survey);
}

ParsedFile parseForRewrite(ByteSource& source, Survey* survey) {
    return parse(source, Purpose::rewrite, std::nullopt, survey);
}

} // namespace kiv
