#pragma once

#include <charconv>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Comma-separated values, one row a line, cells optionally in double quotes. All digits go through
// std::from_chars and std::to_chars.
namespace kiv::host {

class CsvReader {
public:
    explicit CsvReader(std::istream& stream) : in(stream) {}

    // False at the end. The cells are raw text, valid until the next call.
    bool nextRow();

    const std::vector<std::string_view>& cells() const { return row; }
    bool quotesClosed() const { return closed; } // false: the last cell's quote is never closed
    std::size_t lineNumber() const { return lines; }
    std::size_t rowBytes() const { return line.size() + 1; } // with the line's end
    // Of a cell, or of the line's end for an index behind the last; from 1, in bytes.
    std::size_t column(std::size_t cell) const;
    bool failed() const;    // reading broke off before the end
    bool wouldWait() const; // no further input is at hand

private:
    std::istream& in;
    std::string line;
    std::vector<std::string_view> row;
    std::size_t lines = 0;
    bool closed = true;
};

// The cell without surrounding blanks and quotes.
std::string_view cellText(std::string_view cell);

// The whole text as a decimal number; a plus sign is fine, anything left over is not. inf and nan
// are numbers here; what does not fit in the type is none.
template <typename Number>
std::optional<Number> numberIn(std::string_view text) {
    const char* first = text.data();
    const char* last = first + text.size();
    if (first != last && *first == '+' && last - first > 1 && first[1] != '-')
        ++first;
    Number value{};
    const auto [end, error] = std::from_chars(first, last, value);
    if (error != std::errc() || end != last)
        return std::nullopt;
    return value;
}

// The shortest digits that read back to the same value.
template <typename Number>
void appendNumber(std::string& text, Number value) {
    char digits[32];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, value);
    text.append(digits, end);
}

// With so many significant digits at most.
inline void appendRounded(std::string& text, double value, int significant) {
    char digits[64];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, value,
                                            std::chars_format::general, significant);
    text.append(digits, end);
}

} // namespace kiv::host
