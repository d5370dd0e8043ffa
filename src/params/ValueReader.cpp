#include "params/ValueReader.h"

#include <algorithm>
#include <array>
#include <utility>

#include "params/Quoted.h"

namespace kiv {

namespace {

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

} // namespace

bool ValueReader::read(const BlockLayout& blockLayout, BlockValues& values) {
    layout = &blockLayout;
    title = inQuotes(layout->title);
    failure.reset();
    isWrongId = false;
    groupsRead = 0;
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

bool ValueReader::readSensorId(BlockValues& values) {
    Finding mismatch = findingAtWord(scanner, layout->block,
                                     "the sensor ID " + std::to_string(sensorId.value_or(0))
                                         + " as the value of " + title);
    if (!readInteger(values))
        return false;
    if (!sensorId || values.integer == *sensorId)
        return true;
    isWrongId = true;
    failure = std::move(mismatch);
    return true;
}

bool ValueReader::readInteger(BlockValues& values) {
    const NumberResult result = readNumber(values.integer);
    if (result != NumberResult::read)
        return cannotRead("a whole number (the value of " + title + ")", result);
    ++groupsRead;
    return true;
}

// which precedes the title in the expected text.
bool ValueReader::readWord(std::string& word, std::string_view which) {
    word = scanner.peekWord();
    if (word.size() > Scanner::maxLength)
        return fail(findingAtWord(scanner, layout->block,
                                  longWord + (" (" + std::string(which) + title + ")")));
    scanner.skip(word.size());
    if (word.empty())
        return cannotRead("a word (" + std::string(which) + title + ")", NumberResult::absent);
    ++groupsRead;
    return true;
}

bool ValueReader::readNumbers(std::span<float> numbers, Groups groups, std::string_view noun) {
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const NumberResult result = readNumber(numbers[i]);
        if (result != NumberResult::read
            && !cannotRead("a number (" + nthOf(noun, i, numbers.size()) + " of " + title + ")",
                           result))
            return false;
        groupsRead += (i + 1) % groups.size == 0;
    }
    return true;
}

bool ValueReader::readCount(BlockValues& values) {
    const bool empty = purpose == Purpose::rewrite; // as a count below 1 says
    Finding mismatch =
        findingAtWord(scanner, layout->block,
                      (empty ? "a row count in " : "a row count of at least 1 in ") + title);
    const NumberResult result = readNumber(values.integer);
    if (result == NumberResult::read && (values.integer >= 1 || empty)) {
        ++groupsRead;
        return true;
    }
    mismatch.found += remarkOn(result);
    return fail(std::move(mismatch));
}

bool ValueReader::readRows(BlockValues& values) {
    const auto claimed = static_cast<std::size_t>(std::max(values.integer, 0));
    std::vector<float>& numbers = values.numbers;
    for (std::size_t row = 0; row < claimed; ++row) {
        std::array<float, 2> pair{};
        for (float& number : pair) {
            const NumberResult result = readNumber(number);
            if (result != NumberResult::read)
                return cannotRead("a number (row " + std::to_string(row + 1) + " of " + title
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

bool ValueReader::readTiltTable(BlockValues& values) {
    return readCount(values) && readRows(values)
           && readNumbers(values.trailing, trailingRow, "trailing value")
           && readWord(values.word, "closing ");
}

template <typename Number>
NumberResult ValueReader::readNumber(Number& value) {
    if (!places)
        return scanner.read(value);
    scanner.peekWord(); // goes to the number
    const TextPlace place = scanner.place();
    const NumberResult result = scanner.read(value);
    if (result == NumberResult::read)
        places->push_back(place);
    return result;
}

// A load goes on behind it.
bool ValueReader::cannotRead(std::string expected, NumberResult result) {
    Finding finding = findingAtWord(scanner, layout->block, std::move(expected));
    finding.found += remarkOn(result);
    if (purpose == Purpose::rewrite)
        return fail(std::move(finding));
    unread.push_back(std::move(finding));
    return true;
}

bool ValueReader::fail(Finding finding) {
    failure = std::move(finding);
    return false;
}

} // namespace kiv
