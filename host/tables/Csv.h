#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

// Values separated by commas, semicolons or tabs, one row a line, cells optionally in double
// quotes.
namespace kiv::host {

class CsvReader {
public:
    explicit CsvReader(std::istream& stream) : in(stream) {}

    // False at the end. The cells are raw text, valid until the next call.
    bool nextRow();
    // The row once more, and all later ones, with another separator.
    void separateBy(char character);
    char separator() const { return between; }

    std::string_view text() const { return line; } // of the whole row

    const std::vector<std::string_view>& cells() const { return row; }
    bool quotesClosed() const { return closed; } // false: the last cell's quote is never closed
    std::size_t lineNumber() const { return lines; }
    std::size_t rowBytes() const { return line.size() + 1; } // with the line's end
    // Of a cell, or of the line's end for an index behind the last; from 1, in bytes.
    std::size_t column(std::size_t cell) const;
    bool endsOpen() const { return open; } // no line end behind the last row
    bool failed() const;                   // reading broke off before the end
    bool wouldWait() const;                // no further input is at hand

private:
    void splitLine();

    std::istream& in;
    std::string line;
    std::vector<std::string_view> row;
    char between = ',';
    std::size_t lines = 0;
    bool closed = true;
    bool open = false;
};

// The cell without surrounding blanks and quotes.
std::string_view cellText(std::string_view cell);

} // namespace kiv::host
