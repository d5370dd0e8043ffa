#include "params/TitleReader.h"

#include "params/CloseTitle.h"
#include "params/Quoted.h"

namespace kiv {

namespace {

// Why the words taken are not the title.
void explain(TitleReading& reading, const BlockLayout& layout, bool textEnded) {
    Finding& mismatch = *reading.mismatch;
    const std::string& words = reading.words;
    if (words.size() > Scanner::maxLength)
        mismatch.expected += " in at most 255 characters";
    mismatch.found = shownWord(words);
    if (!words.empty() && textEnded)
        mismatch.found += " and " + shownWord("");
    const std::size_t behindFirst = layout.title.find(' ') + 1;
    reading.isClose = isCloseTo(layout, words);
    if (reading.isClose)
        mismatch.found += ", which is close but has to match letter by letter";
    else if (behindFirst > 0 && words.starts_with(layout.title.substr(behindFirst)))
        mismatch.found += ", the first word taken for the value before";
}

} // namespace

TitleReading readTitle(Scanner& scanner, const BlockLayout& layout,
                       const BlockLayout* firstPassed) {
    TitleReading reading;
    scanner.peekWord(); // goes to the title
    const TextPlace place = scanner.place();
    bool textEnded = false;
    for (int i = 0; i < layout.titleWords && !textEnded && !reading.other; ++i) {
        const std::string_view word = scanner.peekWord();
        if (word.size() > Scanner::maxLength) {
            reading.mismatch = findingAtWord(
                scanner, layout.block, longWord + (" in the title " + inQuotes(layout.title)));
            return reading;
        }
        textEnded = word.empty();
        reading.words.append(reading.words.empty() || textEnded ? "" : " ").append(word);
        scanner.skip(word.size());
        // Another title may have fewer words; its values are no part of what was found.
        for (const BlockLayout& other : blockTable)
            if (other.block > layout.block && other.title == reading.words)
                reading.other = other.block;
    }
    if (reading.words.find(layout.title) != std::string::npos
        && reading.words.size() <= Scanner::maxLength)
        return reading;
    const std::string title = inQuotes(layout.title);
    const std::string expected =
        firstPassed ? "the blocks from " + inQuotes(firstPassed->title) + " to " + title
                    : "the title " + title;
    reading.mismatch = {layout.block, place.line, place.column, expected, {}};
    explain(reading, layout, textEnded);
    return reading;
}

} // namespace kiv
