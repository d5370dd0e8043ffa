#include "params/Survey.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "params/BlockReader.h"

namespace kiv {

namespace {

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

// Reads on behind failures.
class Surveyor {
public:
    Surveyor(ByteSource& text, Purpose why, std::optional<std::int32_t> id, Survey& asked)
        : source(text), scanner(text), reader(scanner, why, id), survey(asked) {}

    ParsedFile parse();

private:
    bool findTitle(const BlockLayout& layout);
    void readValues(const BlockLayout& layout);
    void seekTitle(Block first);
    void count(std::string_view word) { ++(isNumber(word) ? numbersTaken : wordsTaken); }
    void noteFailure();

    ByteSource& source;
    Scanner scanner;
    BlockReader reader;
    Survey& survey;
    std::string titleWords; // taken in search of a title
    std::size_t numbersTaken = 0;
    std::size_t wordsTaken = 0;
    std::optional<Block> resumedAt; // the block whose title has come in place of an earlier one
};

ParsedFile Surveyor::parse() {
    for (const BlockLayout& layout : blockTable) {
        if (resumedAt > layout.block || reader.endsBefore(layout))
            continue;
        if (resumedAt == layout.block || findTitle(layout))
            readValues(layout);
    }
    const Block last = blockTable.back().block;
    const TextPlace end = scanner.place();
    if (!scanner.atEnd())
        survey.textBehind = findingAtWord(scanner, last, "end of file behind \"Half Angle\"");
    ParsedFile parsed = reader.parsed(source);
    const TextPlace now = scanner.place();
    if (!survey.textBehind && parsed.document.find(last) && end.line == now.line
        && end.column == now.column)
        survey.openEnd = {last, end.line, end.column,
                          "a line end behind the last value, which may be cut", "end of file"};
    return parsed;
}

// True where the block's values come next.
bool Surveyor::findTitle(const BlockLayout& layout) {
    const TitleReading reading = reader.readTitle(layout);
    noteFailure();
    titleWords = reading.words;
    numbersTaken = wordsTaken = 0;
    for (std::string_view rest = titleWords; !rest.empty();) {
        const std::string_view word = rest.substr(0, rest.find(' '));
        count(word);
        rest.remove_prefix(std::min(word.size() + 1, rest.size()));
    }
    if (reading.other)
        resumedAt = reading.other;
    if (!reading.mismatch || reading.isClose)
        return true;
    seekTitle(layout.block);
    return resumedAt == layout.block;
}

void Surveyor::readValues(const BlockLayout& layout) {
    const std::size_t index = static_cast<std::size_t>(layout.block);
    std::optional<BlockValues> values = reader.readValues(layout, &survey.extents[index].numbers);
    noteFailure();
    if (values)
        return reader.keep(layout, *std::move(values)); // also of another sensor
    titleWords.clear();
    if (index + 1 < blockTable.size())
        seekTitle(blockTable[index + 1].block);
}

// Takes all up to a title, of the first block or a later one.
void Surveyor::seekTitle(Block first) {
    constexpr std::size_t longestTitle = 64;
    const auto arrived = [&] { return resumedAt && *resumedAt >= first; };
    while (!arrived()) {
        const std::string_view word = scanner.peekWord();
        if (word.empty())
            return;
        count(word);
        scanner.skip(word.size());
        if (!hasCapital(word)) {
            titleWords.clear();
            continue;
        }
        titleWords.append(titleWords.empty() ? "" : " ").append(word);
        if (titleWords.size() > longestTitle)
            titleWords.erase(0, titleWords.size() - longestTitle);
        for (const BlockLayout& other : blockTable)
            if (other.block >= first && titleWords.find(other.title) != std::string::npos)
                resumedAt = other.block;
    }
    Survey::Extent& extent = survey.extents[static_cast<std::size_t>(first)];
    extent.numbersBefore = numbersTaken;
    extent.wordsBefore = wordsTaken - static_cast<std::size_t>(layoutOf(*resumedAt).titleWords);
}

void Surveyor::noteFailure() {
    if (reader.failure())
        survey.failures.push_back(*reader.failure());
}

} // namespace

ParsedFile surveyParameterFile(ByteSource& source, std::optional<std::int32_t> id, Survey& survey) {
    return Surveyor(source, Purpose::load, id, survey).parse();
}

ParsedFile surveyForRewrite(ByteSource& source, Survey& survey) {
    return Surveyor(source, Purpose::rewrite, std::nullopt, survey).parse();
}

std::vector<Finding> errorsIn(const ParsedFile& parsed, const Survey& survey) {
    std::vector<Finding> errors = parsed.outcome.unread;
    errors.insert(errors.end(), survey.failures.begin(), survey.failures.end());
    const auto placeOf = [](const Finding& f) { return std::tie(f.line, f.column); };
    std::stable_sort(errors.begin(), errors.end(),
                     [&](const Finding& a, const Finding& b) { return placeOf(a) < placeOf(b); });
    const auto samePlace = [&](const Finding& a, const Finding& b) {
        return placeOf(a) == placeOf(b);
    };
    errors.erase(std::unique(errors.begin(), errors.end(), samePlace), errors.end());
    return errors;
}

} // namespace kiv
