#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <utility>

namespace kiv::host {

// Whole lines of an input that stand together, or none where it waits.
struct LineBlock {
    std::string text;            // each line with its end, but for the last one of an input without
    std::string name;            // of the input, as messages show it
    std::size_t table = 0;       // of several, from 0
    std::size_t firstLine = 1;   // of the text, from 1
    bool inputWouldWait = false; // no further input is at hand
    bool brokenOff = false;      // reading, behind these lines
    std::string said{};          // about the input's end, behind these lines
};

// Reads an input block by block; what has come in is never held back for more of it.
class LineBlockReader {
public:
    LineBlockReader(std::istream& stream, std::string shownName, std::size_t blockBytes)
        : in(stream), name(std::move(shownName)), size(blockBytes) {}

    // False at the end. A block is about as large as asked, or as what is at hand.
    bool next(LineBlock& block);

private:
    bool readSome(std::string& text);
    void endWithoutLineEnd(LineBlock& block);
    void breakOff(LineBlock& block);

    std::istream& in;
    std::string name;
    std::size_t size;
    std::string begun;     // read, but not given: the start of a line
    std::size_t lines = 0; // given so far
    bool finished = false;
};

} // namespace kiv::host
