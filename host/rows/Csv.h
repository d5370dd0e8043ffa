#pragma once

#include <array>
#include <string_view>
#include <vector>

// Values separated by commas, semicolons or tabs, one row a line, cells optionally in double
// quotes, which they begin with.
namespace kiv::host {

class CsvReader {
public:
    // Takes whole lines, the first of which is the firstLine-th of the table; they stay where they
    // are.
    void start(std::string_view lines, std::size_t firstLine);

    // False behind the last line. The cells are raw text.
    bool nextRow();
    // The row once more, and all later ones, with another separator.
    void separateBy(char character);
    char separator() const { return between; }

    std::string_view text() const { return line; }   // of the whole row
    std::string_view rest() const { return behind; } // the lines behind it

    const std::vector<std::string_view>& cells() const { return row; }
    bool quotesClosed() const { return closed; } // false: the last cell's quote is never closed
    std::size_t openQuote() const;               // its column
    bool quotesInside() const { return inside; } // the first one of a cell
    // The row has nothing but separators, blanks and quotes.
    bool blank() const {
        if (!line.empty() && line[0] >= '-' && line[0] <= '9') // most rows
            return false;
        const std::string_view blanks(nothing.data(), nothing.size());
        return line.find_first_not_of(blanks) == line.npos && closed;
    }
    std::size_t lineNumber() const { return number; }
    // The column of a cell, or of the line's end for an index behind the last; from 1, in bytes.
    std::size_t column(std::size_t cell) const;

private:
    void splitLine();
    void splitAroundQuotes(std::string_view text);

    std::string_view behind;
    std::string_view line;
    std::vector<std::string_view> row;
    char between = ',';
    std::array<char, 5> nothing{',', ' ', '\t', '\r', '"'};
    std::size_t number = 0;
    bool closed = true;
    bool inside = false;
};

// A blank line, or one of sep=; or the like, also in quotes, as a spreadsheet may put it above the
// row of names.
bool isAboveNames(std::string_view line);

// The cell without surrounding blanks and quotes.
std::string_view cellText(std::string_view cell);

} // namespace kiv::host
