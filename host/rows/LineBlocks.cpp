#include "host/rows/LineBlocks.h"

#include <algorithm>
#include <istream>
#include <string_view>

#include "support/platform/SystemError.h"

namespace kiv::host {

namespace {

constexpr std::size_t mostLines = 1024; // however short they are: a row takes more room than that

// Of a line that is too long: enough to see it, even if it ended in a carriage return.
constexpr std::size_t mostKept = longestLine + 2;

// Behind the last whole line that ends at this place or later; 0 where there is none.
std::size_t linesEnd(std::string_view text, std::size_t from) {
    const std::size_t last = text.substr(from).rfind('\n');
    return last == text.npos ? 0 : from + last + 1;
}

} // namespace

// Takes what has been read ahead, and waits when there is nothing; false at the end. No more, as a
// read error would take what is in front of it along.
bool LineBlockReader::readSome(std::string& text) {
    if (!in.good())
        return false;
    platform::setLastSystemError(0);
    if (in.peek() == std::istream::traits_type::eof()) {
        error = platform::lastSystemError();
        return false;
    }
    const std::size_t start = text.size();
    const std::size_t most = start < size ? size - start : size;
    const auto count =
        std::clamp<std::streamsize>(in.rdbuf()->in_avail(), 1, static_cast<std::streamsize>(most));
    text.resize(start + static_cast<std::size_t>(count));
    in.read(text.data() + start, count);
    taken += static_cast<std::uintmax_t>(count);
    if (dropping)
        dropRestOfLine(text);
    else
        cutFirstLine(text, start);
    return true;
}

// The text's first line does not end in front of this place, or the text is short.
void LineBlockReader::cutFirstLine(std::string& text, std::size_t from) {
    if (text.size() <= mostKept)
        return;
    const std::size_t end = text.find('\n', from);
    if (end == text.npos) {
        text.resize(mostKept);
        text.push_back('\n');
        dropping = true;
    } else if (end > mostKept) {
        text.erase(mostKept, end - mostKept);
    }
}

void LineBlockReader::dropRestOfLine(std::string& text) {
    const std::size_t end = text.find('\n');
    dropping = end == text.npos;
    text.erase(0, dropping ? end : end + 1);
}

void LineBlockReader::endWithoutLineEnd(LineBlock& block) {
    ++lines;
    block.mayBeCut = true;
    const std::size_t column = block.text.size() + (block.text.ends_with('\r') ? 0 : 1);
    block.said = name + ':' + std::to_string(lines) + ':' + std::to_string(column)
                 + ": expected a line end behind the last row, which may be cut, found end of file "
                   "(warning)\n";
}

bool LineBlockReader::isCutShort() const {
    return in.bad() || taken < expected;
}

void LineBlockReader::breakOff(LineBlock& block) {
    block.text.clear();
    block.brokenOff = true;
    block.said = name + ':' + std::to_string(lines + 1) + ":1: "
                 + (in.bad() ? platform::systemErrorText(error) + "; from here on nothing is read\n"
                             : "The file has become shorter while it was read; run again once "
                               "nothing writes to it\n");
}

bool LineBlockReader::next(LineBlock& block) {
    std::string& text = block.text;
    text.swap(begun);
    begun.clear();
    block.name = name;
    block.firstLine = lines + 1;
    block.inputWouldWait = false;
    block.brokenOff = false;
    block.mayBeCut = false;
    block.said.clear();
    if (finished)
        return false;

    bool atEnd = false;
    std::size_t end = linesEnd(text, 0);
    while ((end == 0 || text.size() < size) && !block.inputWouldWait && !atEnd) {
        const std::size_t start = text.size();
        atEnd = !readSome(text);
        end = std::max(end, linesEnd(text, start));
        block.inputWouldWait = !atEnd && in.rdbuf()->in_avail() <= 0;
    }
    if (end == 0 && atEnd) {
        finished = true;
        if (isCutShort())
            breakOff(block);
        else if (!text.empty())
            endWithoutLineEnd(block);
        return isCutShort() || !text.empty();
    }
    std::size_t cut = 0;
    std::size_t count = 0;
    for (; cut < end && count < mostLines; ++count)
        cut = text.find('\n', cut) + 1;
    block.inputWouldWait = block.inputWouldWait && cut == end;
    if (cut == 0)
        text.swap(begun);
    else
        begun.assign(text, cut);
    text.resize(cut);
    lines += count;
    return true;
}

} // namespace kiv::host
