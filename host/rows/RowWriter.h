#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kiv::host {

enum class RowFormat : unsigned char { csv, jsonl };

// A cell of another table, as it stands there.
struct CarriedText {
    std::string_view text;
};

// The digits of a number, with a point; none for what is nothing.
struct WrittenNumber {
    std::string_view digits;
};

// What a row has in a column: nothing, a word, a carried text, or a number, which is printed with
// the shortest digits of its type and is nothing where it is not finite.
using Cell = std::variant<std::monostate, std::string_view, CarriedText, WrittenNumber, float,
                          double, std::int64_t>;

// Writes rows of named cells: as CSV, or each as one JSON object on a line of its own. Names and
// digits are the same. In JSON nothing is null, numbers have a point, and a carried text is a
// number where it is written as JSON writes one; with decimal commas, also where it has one.
class RowWriter {
public:
    struct Marks {
        RowFormat format = RowFormat::csv;
        char separator = ',';
        bool decimalComma = false;
    };

    RowWriter(const Marks& asked, std::span<const std::string_view> names);

    void appendNames(std::string& out) const; // of CSV alone
    void append(std::string& out, std::span<const Cell> cells) const;

    // The same cell by cell, from the first on.
    void appendCell(std::string& out, std::size_t column, const Cell& cell) const;
    void endRow(std::string& out) const;

private:
    Marks marks;
    std::vector<std::string> starts; // CSV: names; JSON: all that stands in front of a value
};

// A cell of CSV without quotes around it, and with single ones in it.
std::string unquoted(std::string_view cell);

// A word as a cell, in quotes where it has what would end the cell.
std::string csvCell(std::string_view word, char separator);

// What a table's row has, whatever is in it: in quotes of its own where a quote stands inside.
void appendAsItStands(std::string& out, std::string_view cell);
void appendInQuotes(std::string& out, std::string_view text);

} // namespace kiv::host
