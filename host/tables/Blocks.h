#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <utility>

namespace kiv::host {

// Whole lines of an input that stand together.
struct Block {
    std::string text;            // each line with its end, but for the last one of an input without
    std::string name;            // of the input, as messages show it
    std::size_t table = 0;       // of several, from 0
    std::size_t firstLine = 1;   // of the text, from 1
    bool inputWouldWait = false; // no further input is at hand
};

// Reads an input block by block; what has come in is never held back for more of it.
class BlockReader {
public:
    BlockReader(std::istream& stream, std::string shownName, std::size_t blockBytes)
        : in(stream), name(std::move(shownName)), size(blockBytes) {}

    // False at the end. A block is as large as asked, or as what is at hand, but at least a line.
    bool next(Block& block);

    // False, and a message, where reading has broken off; a warning where the last line has no end
    // and may be cut.
    bool reportEnd(std::ostream& err) const;
    bool failed() const;

private:
    std::istream& in;
    std::string name;
    std::size_t size;
    std::string begun;          // the start of a line whose end is yet to come
    std::size_t lines = 0;      // given so far
    std::size_t openColumn = 0; // behind a last line without an end
};

} // namespace kiv::host
