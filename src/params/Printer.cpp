#include "params/Printer.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <span>
#include <string_view>

#include "support/platform/ByteSink.h"

namespace kiv {

namespace {

constexpr std::size_t allGroups = std::numeric_limits<std::size_t>::max();

constexpr std::size_t largestGroup =
    std::max_element(
        blockTable.begin(), blockTable.end(),
        [](const BlockLayout& a, const BlockLayout& b) { return a.groups.size < b.groups.size; })
        ->groups.size;

// The largest float has 39 digits before the point, the smallest needs 53 behind it.
constexpr std::size_t longestNumber = 1 + 39 + 1 + 53;

class BlockPrinter {
public:
    // Prints a title and then at most that many of the block's groups.
    BlockPrinter(ByteSink& target, std::size_t groups, Digits ofNumbers)
        : sink(target), groupsLeft(groups), digits(ofNumbers) {}

    void printBlock(const BlockLayout& layout, const BlockValues& values);

private:
    bool nextGroup();
    void printValues(const BlockLayout& layout, const BlockValues& values);
    void printInteger(std::int32_t value);
    void printWord(std::string_view word);
    void printNumbers(std::span<const float> numbers, Groups groups);
    void printGroup(std::span<const float> numbers, char end);

    ByteSink& sink;
    std::size_t groupsLeft;
    Digits digits;
};

void BlockPrinter::printBlock(const BlockLayout& layout, const BlockValues& values) {
    sink.write(layout.title);
    sink.write("\n");
    printValues(layout, values);
}

bool BlockPrinter::nextGroup() {
    if (groupsLeft == 0)
        return false;
    --groupsLeft;
    return true;
}

void BlockPrinter::printValues(const BlockLayout& layout, const BlockValues& values) {
    switch (layout.kind) {
    case BlockKind::sensorId:
    case BlockKind::integer:
        printInteger(values.integer);
        break;
    case BlockKind::word:
        printWord(values.word);
        break;
    case BlockKind::numbers:
        printNumbers(values.numbers, values.defaulted ? defaultGroups : layout.groups);
        break;
    case BlockKind::encoderTable:
        printInteger(values.integer);
        printNumbers(values.numbers, tableRow);
        break;
    case BlockKind::tiltTable:
        printInteger(values.integer);
        printNumbers(values.numbers, tableRow);
        printNumbers(values.trailing, trailingRow);
        printWord(values.word);
        break;
    }
}

void BlockPrinter::printInteger(std::int32_t value) {
    if (!nextGroup())
        return;
    char text[std::numeric_limits<std::int32_t>::digits10 + 3]; // a sign, and the end of the line
    char* end = std::to_chars(std::begin(text), std::end(text), value).ptr;
    *end++ = '\n';
    sink.write({text, end});
}

void BlockPrinter::printWord(std::string_view word) {
    if (!nextGroup())
        return;
    sink.write(word);
    sink.write("\n");
}

void BlockPrinter::printNumbers(std::span<const float> numbers, Groups groups) {
    for (std::size_t i = 0; i < numbers.size(); i += groups.size) {
        if (!nextGroup())
            return;
        printGroup(numbers.subspan(i, groups.size), groups.end);
    }
    if (groups.end != '\n')
        sink.write("\n");
}

void BlockPrinter::printGroup(std::span<const float> numbers, char end) {
    char text[largestGroup * (longestNumber + 1)];
    char* last = text;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        last = digits == Digits::shortest
                   ? std::to_chars(last, std::end(text), numbers[i], std::chars_format::fixed).ptr
                   : std::to_chars(last, std::end(text), static_cast<double>(numbers[i]),
                                   std::chars_format::fixed, 6)
                         .ptr;
        *last++ = i + 1 < numbers.size() ? '\t' : end;
    }
    sink.write({text, last});
}

} // namespace

void print(const Document& document, ByteSink& sink, Digits digits) {
    for (const BlockLayout& layout : blockTable)
        if (const BlockValues* values = document.find(layout.block))
            BlockPrinter(sink, allGroups, digits).printBlock(layout, *values);
    if (const auto& broken = document.broken)
        BlockPrinter(sink, broken->groups, digits)
            .printBlock(layoutOf(broken->block), broken->values);
}

} // namespace kiv
