#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <utility>

namespace kiv::host {

// The most bytes of a line, without its end. Of a longer one a block has a start that is longer,
// too, with a line end behind it.
constexpr std::size_t longestLine = 1 << 20;

// Whole lines of an input that stand together, or none where it waits.
struct LineBlock {
    std::string text;            // each line with its end, but for the last one of an input without
    std::string name;            // of the input, as messages show it
    std::size_t table = 0;       // of several, from 0
    std::size_t firstLine = 1;   // of the text, from 1
    bool inputWouldWait = false; // no further input is at hand
    bool brokenOff = false;      // reading, behind these lines
    bool mayBeCut = false;       // the last line, which has no end
    std::string said{};          // about the input's end, behind these lines
};

// Reads an input block by block; what has come in is never held back for more of it.
class LineBlockReader {
public:
    // Of all bytes, where they are known, the input has at least so many.
    LineBlockReader(std::istream& stream, std::string shownName, std::size_t blockBytes,
                    std::uintmax_t allBytes = 0)
        : in(stream), name(std::move(shownName)), size(blockBytes), expected(allBytes) {}

    // False at the end. A block is about as large as asked, which is less than a line may be, or as
    // what is at hand.
    bool next(LineBlock& block);

private:
    bool readSome(std::string& text);
    void cutFirstLine(std::string& text, std::size_t from);
    void dropRestOfLine(std::string& text);
    void endWithoutLineEnd(LineBlock& block);
    void breakOff(LineBlock& block);
    bool isCutShort() const;

    std::istream& in;
    std::string name;
    std::size_t size;
    std::uintmax_t expected;
    std::uintmax_t taken = 0; // bytes
    int error = 0;            // of the system, where reading has failed
    std::string begun;        // read, but not given: the start of a line
    std::size_t lines = 0;    // given so far
    bool dropping = false;    // what is left of a line that was too long
    bool finished = false;
};

} // namespace kiv::host
