#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "host/base/MessageLimit.h"
#include "host/rows/Csv.h"
#include "host/rows/LineBlocks.h"
#include "host/rows/NumberText.h"
#include "host/rows/TableFormat.h"
#include "params/Quoted.h"
#include "support/Numbers.h"

namespace kiv::host {

// A table with a row of names: the columns that are asked for are found by name in any order, all
// others are carried along as they stand. Everything that is wrong has a message with its place. A
// copy takes other lines of the same table.
class Table {
public:
    Table(std::span<const std::string_view> columnNames, const TableFormat& format);

    // The lines of a block, which has to stay as it is.
    void start(const LineBlock& block) {
        name = &block.name;
        csv.start(block.text, block.firstLine);
        blanks = 0;
    }

    // False, and a message, when columns are missing, a name stands twice or is in reserved. A
    // message of a name that is no UTF-8 is a warning.
    bool readHeader(std::span<const std::string_view> reserved);

    // False, and a message at its row of names, when another table has not the same names, in any
    // order, and separators. Else places are from now on the other's, and columns are carried in
    // its order.
    bool followColumnsOf(const Table& other, std::string_view otherName);

    // Where columns stand in the cells of a row.
    struct Places {
        std::vector<std::size_t> wanted; // each that was asked for
        std::vector<std::size_t> carried;
        // The same as runs of columns side by side: the first and the last of each.
        std::vector<std::pair<std::size_t, std::size_t>> carriedRuns;
        std::vector<std::size_t> moved; // each of the table that is followed; empty: where it was

        void findRuns();
    };
    const Places& places() const { return stand; }
    void take(const Places& ofTable) { stand = ofTable; }

    // False at the end of the block. Blank rows are passed over.
    bool nextRow() {
        said.clear();
        bool found = csv.nextRow();
        for (; found && csv.blank(); found = csv.nextRow())
            ++blanks;
        return found;
    }
    std::size_t blankRows() const { return blanks; } // passed over in the block

    // The row has a cell for each name, closes its quotes and is whole; else a message.
    bool checkRow();

    // As far as the row of names has been read, also where it is not as asked for.
    std::vector<std::string> columnNames() const;
    // How the table calls the i-th column that was asked for.
    std::string_view nameOf(std::size_t i) const { return wanted[i]; }
    std::string_view nameOf(std::string_view column) const { return format.nameOf(column); }

    char separator() const { return csv.separator(); }
    bool decimalComma() const { return format.decimalComma; }

    // The row has most of the names once more, whatever its shape.
    bool repeatsNames() const;

    // The text of the i-th column that was asked for, in a row that checkRow has passed.
    std::string_view text(std::size_t i) const { return cellText(csv.cells()[stand.wanted[i]]); }

    // False, and a message, when the cell is no finite number that the type holds.
    template <typename Number>
    bool readNumber(std::size_t i, Number& value);

    // The same of 0 and 1, false and true.
    bool readFlag(std::size_t i, bool& value);

    // The place of a carried column in a row's cells; the cell there is empty in a row too short.
    std::optional<std::size_t> find(std::string_view columnName) const;
    std::string_view cell(std::size_t column) const {
        const std::size_t place = placeOf(column);
        return place < csv.cells().size() ? cellText(csv.cells()[place]) : std::string_view{};
    }

    // False when such a cell is no finite number; nothing is reported.
    bool numberAt(std::size_t column, double& value) const;

    void appendCarriedNames(std::string& out) const; // each with a separator behind it
    void appendCarriedCells(std::string& out) const;
    // The same one by one: plain names, and cells as they stand, empty where a row is too short.
    std::vector<std::string> carriedNames() const;
    std::string_view carriedCell(std::size_t i) const;

    // The separator and the decimal mark are those of the table's own numbers.
    void appendNumber(std::string& out, double value) const;

    // Reports at the i-th column that was asked for.
    void report(std::size_t i, std::string_view expected, std::string_view found,
                std::string_view kind) {
        reportAt(stand.wanted[i], expected, found, kind);
    }
    // Reports at the start of the row.
    void reportRow(std::string_view expected, std::string_view found, std::string_view kind) {
        reportAt(0, expected, found, kind);
    }

    // Reports at the cell of a column that was found by its name.
    void reportCell(std::size_t column, std::string_view expected, std::string_view found,
                    std::string_view kind) {
        reportAt(placeOf(column), expected, found, kind);
    }

    std::span<const Message> messages() const { return said; } // of the row

    std::size_t lineNumber() const { return csv.lineNumber(); }
    std::string_view rest() const { return csv.rest(); } // of the block, behind the row

private:
    std::size_t placeOf(std::size_t column) const {
        return stand.moved.empty() ? column : stand.moved[column];
    }
    // The reader has cut the row.
    bool tooLong() const {
        return csv.text().size() > longestLine + (csv.text().ends_with('\r') ? 1 : 0);
    }
    void reportAt(std::size_t place, std::string_view expected, std::string_view found,
                  std::string_view kind = {});
    void reportAtColumn(std::size_t column, std::string_view expected, std::string_view found,
                        std::string_view kind = {});
    void reportNoNumber(std::size_t i, const std::string& expected);
    bool reportedForRow(std::string_view kind) const;
    bool reportWords();
    void chooseSeparator();
    bool readNames();
    std::size_t firstNotUtf8() const; // of the names; behind them where all are
    std::string closeNames(std::span<const std::string_view> found,
                           std::span<const std::string_view> missing) const;
    std::string ownNames(std::span<const std::string_view> found,
                         std::span<const std::string_view> missing) const;
    void reportHeader(std::span<const std::string_view> found,
                      std::span<const std::string_view> missing);
    template <typename Number>
    std::optional<Number> numberWithMark(std::string_view text) const;
    template <typename Number>
    std::optional<Number> numberOf(std::string_view text) const;
    template <typename Number>
    bool readPlainNumber(std::string_view cell, Number& value) const;
    template <typename Number>
    bool readOrReport(std::size_t i, Number& value);

    CsvReader csv;
    const std::string* name = nullptr;
    const TableFormat& format;
    std::vector<Message> said;
    std::size_t blanks = 0;
    std::vector<std::string_view> asked;  // for these columns
    std::vector<std::string_view> wanted; // as the table names them
    std::vector<std::string> names;       // raw text of all
    Places stand;
};

template <typename Number>
std::optional<Number> Table::numberWithMark(std::string_view text) const {
    if (!format.decimalComma)
        return numberIn<Number>(text);
    if (text.find('.') != text.npos)
        return std::nullopt;
    std::string withPoint(text);
    std::replace(withPoint.begin(), withPoint.end(), ',', '.');
    return numberIn<Number>(withPoint);
}

// A whole number may have decimals that are 0.
template <typename Number>
std::optional<Number> Table::numberOf(std::string_view text) const {
    if (const auto number = numberWithMark<Number>(text))
        return number;
    const std::string plain = asciiNumber(text);
    if (std::is_integral_v<Number>)
        return numberWithMark<Number>(withoutZeroDecimals(plain, format.decimalComma ? ',' : '.'));
    return plain == text ? std::nullopt : numberWithMark<Number>(plain);
}

// Most cells are digits alone: no blanks, quotes or plus.
template <typename Number>
bool Table::readPlainNumber(std::string_view cell, Number& value) const {
    if (format.decimalComma)
        return false;
    const char* const last = cell.data() + cell.size();
    const auto [end, error] = std::from_chars(cell.data(), last, value);
    return end == last && error == std::errc() && std::isfinite(static_cast<double>(value));
}

template <typename Number>
bool Table::readNumber(std::size_t i, Number& value) {
    return readPlainNumber(csv.cells()[stand.wanted[i]], value) || readOrReport(i, value);
}

template <typename Number>
bool Table::readOrReport(std::size_t i, Number& value) {
    const std::optional<Number> number = numberOf<Number>(text(i));
    if (number && std::isfinite(static_cast<double>(*number))) {
        value = *number;
        return true;
    }
    std::string expected =
        std::is_integral_v<Number>
            ? "a whole number"
            : expectedNumber(numberOf<long double>(text(i)), std::numeric_limits<Number>::max());
    if (format.decimalComma && !std::is_integral_v<Number>)
        expected += " with a decimal comma";
    reportNoNumber(i, expected);
    return false;
}

} // namespace kiv::host
