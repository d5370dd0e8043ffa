#include "host/rows/Table.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <utility>

#include "host/base/ShellWord.h"
#include "host/rows/CloseNames.h"
#include "host/rows/HeaderFault.h"
#include "host/rows/RowWriter.h"

namespace kiv::host {

namespace {

bool contains(std::span<const std::string_view> names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

constexpr std::size_t mostNamesShown = 12;

constexpr std::string_view saveWithSemicolons =
    "save it with semicolons between columns and give --decimal-comma";

static_assert(longestLine == 1048576);
constexpr std::string_view expectedLine = "a line of at most 1048576 bytes";
constexpr std::string_view foundLonger = "a longer one; look whether line ends are missing";

std::string listOf(std::span<const std::string_view> names, std::size_t most) {
    std::string list;
    for (const std::string_view name : names.first(std::min(names.size(), most)))
        list += (list.empty() ? "" : ", ") + inQuotes(name);
    if (names.size() > most)
        list += " and " + std::to_string(names.size() - most) + " more";
    return list;
}

std::string cellCount(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " cell" : " cells");
}

} // namespace

Table::Table(std::span<const std::string_view> columnNames, const TableFormat& tableFormat)
    : format(tableFormat), asked(columnNames.begin(), columnNames.end()) {
    for (const std::string_view column : asked)
        wanted.push_back(format.nameOf(column));
}

void Table::reportAt(std::size_t place, std::string_view expected, std::string_view found,
                     std::string_view kind) {
    reportAtColumn(csv.column(place), expected, found, kind);
}

void Table::reportAtColumn(std::size_t column, std::string_view expected, std::string_view found,
                           std::string_view kind) {
    std::string message = *name + ':' + std::to_string(csv.lineNumber()) + ':'
                          + std::to_string(column) + ": expected ";
    message.append(expected).append(", found ").append(found).push_back('\n');
    said.push_back({kind, std::move(message)});
}

std::vector<std::string> Table::columnNames() const {
    std::vector<std::string> all;
    for (const std::string& cell : names)
        all.emplace_back(cellText(cell));
    return all;
}

// The one that finds most of the names.
void Table::chooseSeparator() {
    char best = ',';
    std::ptrdiff_t most = -1;
    for (const char separator : {',', ';', '\t'}) {
        csv.separateBy(separator);
        const auto found =
            std::count_if(csv.cells().begin(), csv.cells().end(),
                          [&](std::string_view cell) { return contains(wanted, cellText(cell)); });
        if (found > most)
            best = separator;
        most = std::max(most, found);
    }
    csv.separateBy(best);
}

// The names show their separator themselves, whatever a line sep=; above them says. False, and a
// message, where there is no row of names.
bool Table::readNames() {
    bool found = csv.nextRow();
    while (found && isAboveNames(csv.text()))
        found = csv.nextRow();
    if (!found)
        reportRow("a row of column names behind it", "end of file", {});
    else if (tooLong())
        reportRow(expectedLine, foundLonger, {});
    else
        chooseSeparator();
    names.assign(csv.cells().begin(), csv.cells().end());
    return said.empty();
}

bool Table::readHeader(std::span<const std::string_view> reserved) {
    if (!readNames())
        return false;
    std::vector<std::string_view> found, repeated, taken;
    std::unordered_map<std::string_view, std::size_t> places; // the first of each name
    std::size_t firstRepeated = 0;
    for (const std::string& cell : names) {
        const std::string_view columnName = cellText(cell);
        if (!places.emplace(columnName, found.size()).second) {
            firstRepeated = repeated.empty() ? found.size() : firstRepeated;
            repeated.push_back(columnName);
        }
        if (contains(reserved, columnName))
            taken.push_back(columnName);
        if (format.keepAll || (!format.keepNone && !contains(wanted, columnName)))
            stand.carried.push_back(found.size());
        found.push_back(columnName);
    }
    stand.findRuns();
    const auto placeOf = [&](std::string_view columnName) {
        const auto place = places.find(columnName);
        return place == places.end() ? found.size() : place->second;
    };
    std::vector<std::string_view> missing;
    for (const std::string_view columnName : wanted) {
        stand.wanted.push_back(placeOf(columnName));
        if (stand.wanted.back() == found.size())
            missing.push_back(columnName);
    }
    if (!missing.empty())
        reportHeader(found, missing);
    else if (!csv.quotesClosed())
        reportAtColumn(csv.openQuote(), "a closing quote", "end of line");
    else if (!repeated.empty())
        reportAt(firstRepeated, "each column name once",
                 listOf(repeated, mostNamesShown) + " again");
    else if (!taken.empty())
        reportAt(placeOf(taken[0]), "names that no column of results has",
                 listOf(taken, mostNamesShown));
    else if (format.decimalComma && separator() == ',' && found.size() > 1)
        reportAt(0, "semicolons or tabs between columns with decimal commas",
                 "commas; if numbers have points, leave out --decimal-comma");
    const bool usable = said.empty();
    if (const std::size_t other = firstNotUtf8(); usable && other < found.size()) {
        reportAt(other, "column names in UTF-8", inQuotes(found[other]));
        said.back().text.insert(said.back().text.size() - 1, " (warning)");
    }
    return usable;
}

std::size_t Table::firstNotUtf8() const {
    return static_cast<std::size_t>(std::find_if_not(names.begin(), names.end(), isUtf8)
                                    - names.begin());
}

// The names that are there in place of the missing ones, and how to say so.
std::string Table::closeNames(std::span<const std::string_view> found,
                              std::span<const std::string_view> missing) const {
    std::vector<std::string_view> free;
    for (const std::string_view other : found)
        if (!contains(wanted, other) && !contains(asked, other) && printable(other) == other)
            free.push_back(other);
    std::string list;
    for (const auto& [m, f] : closePairs(missing, free)) {
        const auto place = std::find(wanted.begin(), wanted.end(), missing[m]) - wanted.begin();
        const std::string_view ours = asked[static_cast<std::size_t>(place)];
        const std::string pair = std::string(ours).append("=").append(free[f]);
        if (format.hasOptions)
            list.append(list.empty() ? "; if these are meant, give" : "")
                .append(" --column ")
                .append(shellWord(pair));
        else
            list.append(list.empty() ? "; close are " : ", ")
                .append(inQuotes(free[f]) + " to " + inQuotes(missing[m]));
    }
    return list;
}

// The names that are missing only because they are to be called otherwise.
std::string Table::ownNames(std::span<const std::string_view> found,
                            std::span<const std::string_view> missing) const {
    std::string list;
    for (std::size_t i = 0; i < asked.size(); ++i)
        if (asked[i] != wanted[i] && contains(missing, wanted[i]) && contains(found, asked[i]))
            list += "; " + inQuotes(asked[i]) + " is there, so leave out that it is called "
                    + inQuotes(wanted[i]);
    return list;
}

void Table::reportHeader(std::span<const std::string_view> found,
                         std::span<const std::string_view> missing) {
    std::string shownNames = listOf(found, mostNamesShown);
    const std::string look = lookOfHeader(csv.text(), found, csv.rest(), missing);
    if (!look.empty())
        shownNames += ", which looks like " + look;
    if (const std::size_t other = firstNotUtf8(); other < found.size())
        shownNames += "; column " + std::to_string(other + 1) + ", " + inQuotes(found[other])
                      + ", is not in UTF-8: save the table in UTF-8";
    if (look.empty())
        shownNames += closeNames(found, missing) + ownNames(found, missing);
    reportAt(0, (missing.size() == 1 ? "a column " : "columns ") + listOf(missing, missing.size()),
             shownNames);
}

bool Table::followColumnsOf(const Table& other, std::string_view otherName) {
    said.clear(); // a warning of the names stands with the other table
    if (names == other.names && separator() == other.separator())
        return true;
    const auto placeIn = [](const Table& table, const std::string& columnName) {
        return static_cast<std::size_t>(
            std::find_if(table.names.begin(), table.names.end(),
                         [&](const auto& each) { return cellText(each) == cellText(columnName); })
            - table.names.begin());
    };
    // The first name that the second table has not; behind all where it has each.
    const auto firstNotIn = [&](const Table& one, const Table& second) {
        std::size_t place = 0;
        while (place < one.names.size() && placeIn(second, one.names[place]) < second.names.size())
            ++place;
        return place;
    };
    const auto nameAt = [](const Table& table, std::size_t place) {
        return place < table.names.size() ? inQuotes(cellText(table.names[place])) : "end of line";
    };
    const auto between = [](const Table& table) {
        return inQuotes(std::string(1, table.separator())) + " between columns";
    };
    const std::size_t missing = firstNotIn(other, *this), further = firstNotIn(*this, other);
    if (separator() != other.separator())
        reportAt(0, between(other).append(" as in ").append(otherName), between(*this));
    else if (missing < other.names.size() || further < names.size())
        reportAt(further, nameAt(other, missing).append(" as in ").append(otherName),
                 nameAt(*this, further));
    if (!said.empty())
        return false;
    std::vector<std::size_t> moved;
    for (const std::string& columnName : other.names)
        moved.push_back(placeIn(*this, columnName));
    if (std::is_sorted(moved.begin(), moved.end()))
        return true;
    for (std::size_t i = 0; i < stand.carried.size(); ++i)
        stand.carried[i] = moved[other.stand.carried[i]];
    stand.findRuns();
    stand.moved = std::move(moved);
    return true;
}

void Table::Places::findRuns() {
    carriedRuns.clear();
    for (const std::size_t place : carried)
        if (carriedRuns.empty() || carriedRuns.back().second + 1 != place)
            carriedRuns.emplace_back(place, place);
        else
            carriedRuns.back().second = place;
}

bool Table::repeatsNames() const {
    const auto found = std::count_if(wanted.begin(), wanted.end(), [&](std::string_view column) {
        return csv.text().find(column) != std::string_view::npos;
    });
    return 2 * static_cast<std::size_t>(found) > wanted.size();
}

bool Table::readFlag(std::size_t i, bool& value) {
    const std::string_view cell = text(i);
    const auto is = [cell](std::string_view word) {
        return std::equal(
            cell.begin(), cell.end(), word.begin(), word.end(),
            [](char c, char letter) { return c == letter || c == letter - 'a' + 'A'; });
    };
    value = cell == "1" || is("true");
    if (value || cell == "0" || is("false"))
        return true;
    const auto number = numberOf<int>(cell);
    value = number == 1;
    if (value || number == 0)
        return true;
    if (reportWords())
        return false;
    report(i, "0, 1, false or true in column " + printable(wanted[i]), inQuotes(cell),
           "with a ref_blocked that is not 0, 1, false or true");
    return false;
}

bool Table::reportedForRow(std::string_view kind) const {
    return std::any_of(said.begin(), said.end(), [&](const Message& m) { return m.kind == kind; });
}

// Of most cells being names or units or empty one message tells; false where they are not.
bool Table::reportWords() {
    constexpr std::string_view words = "with words for numbers";
    if (reportedForRow(words))
        return true;
    std::size_t without = 0, blank = 0, repeated = 0;
    for (std::size_t i = 0; i < stand.wanted.size(); ++i) {
        without += text(i).find_first_of("0123456789") == std::string_view::npos ? 1U : 0U;
        blank += text(i).empty() ? 1U : 0U;
        repeated += text(i) == wanted[i] ? 1U : 0U;
    }
    const auto most = [&](std::size_t cells) { return 2 * cells > stand.wanted.size(); };
    if (!said.empty() || !most(std::max(without, repeated)))
        return false;
    reportRow("a row of numbers",
              most(repeated) ? "the row of names again"
              : most(blank)  ? "a row of empty cells"
                             : "a row of words",
              words);
    return true;
}

// A decimal mark of the other kind is told once: it is in every row, and in most of its cells.
void Table::reportNoNumber(std::size_t i, const std::string& expected) {
    const std::string_view cell = text(i);
    const std::string column = " in column " + printable(wanted[i]);
    if (reportWords())
        return;
    // A point may be one between thousands where the row has decimal commas.
    const bool otherMark = format.decimalComma
                               ? isNumberWithMark(cell, '.') && csv.text().find(',') == cell.npos
                               : isNumberWithMark(cell, ',');
    if (!otherMark)
        return report(i, expected + column, inQuotes(cell) + markOfNumber(cell),
                      "with a cell that is no number");
    const std::string_view kind =
        format.decimalComma ? "with points for commas" : "with commas for points";
    if (reportedForRow(kind))
        return;
    std::string found = inQuotes(cell) + column;
    if (format.decimalComma)
        found += "; if numbers have points, leave out --decimal-comma";
    else if (format.hasOptions)
        found += separator() == ','
                     ? std::string("; if commas stand for points, ").append(saveWithSemicolons)
                     : "; if commas stand for points, give --decimal-comma";
    report(i, format.decimalComma ? "numbers with a decimal comma" : "numbers with a decimal point",
           found, kind);
    said.back().once = true;
}

bool Table::checkRow() {
    const std::size_t cells = csv.cells().size();
    if (tooLong()) {
        reportRow(expectedLine, foundLonger, "that are too long");
        return false;
    }
    if (!csv.quotesClosed()) {
        reportAtColumn(csv.openQuote(), "a closing quote", "end of line", "with an open quote");
        return false;
    }
    if (cells == names.size())
        return true;
    // Commas for points make nearly twice the cells: some numbers are whole.
    const bool twofold = separator() == ',' && !format.decimalComma && 2 * cells > 3 * names.size()
                         && format.hasOptions;
    std::string found = cellCount(cells);
    if (twofold)
        found.append("; if commas stand for points too, ").append(saveWithSemicolons);
    else if (cells == names.size() + 1 && cellText(csv.cells().back()).empty())
        found += ", the last one empty: a separator stands at the line's end";
    reportAt(std::min(cells, names.size()), cellCount(names.size()) + " as in the row of names",
             found, twofold ? "with nearly twice the cells" : "with too few or too many cells");
    said.back().once = twofold;
    return false;
}

std::optional<std::size_t> Table::find(std::string_view columnName) const {
    const auto place = std::find_if(names.begin(), names.end(), [&](const std::string& columnCell) {
        return cellText(columnCell) == format.nameOf(columnName);
    });
    if (place == names.end())
        return std::nullopt;
    return static_cast<std::size_t>(place - names.begin());
}

bool Table::numberAt(std::size_t column, double& value) const {
    const std::size_t place = placeOf(column);
    if (place >= csv.cells().size())
        return false;
    const std::string_view cell = csv.cells()[place];
    if (readPlainNumber(cell, value))
        return true;
    const auto number = numberOf<double>(cellText(cell));
    if (!number || !std::isfinite(*number))
        return false;
    value = *number;
    return true;
}

void Table::appendCarriedNames(std::string& out) const {
    for (const std::size_t place : stand.carried) {
        appendAsItStands(out, names[place]);
        out.push_back(separator());
    }
}

void Table::appendCarriedCells(std::string& out) const {
    const auto& cells = csv.cells();
    if (cells.size() == names.size() && csv.quotesClosed() && !csv.quotesInside() && !tooLong()) {
        for (const auto& [first, last] : stand.carriedRuns)
            out.append(cells[first].data(), cells[last].data() + cells[last].size())
                .push_back(separator());
        return;
    }
    const std::size_t whole = cells.size() - (tooLong() ? 1 : 0);
    for (const std::size_t place : stand.carried) {
        if (place + 1 == whole && !csv.quotesClosed())
            appendInQuotes(out, cells[place]);
        else if (place < whole)
            appendAsItStands(out, cells[place]);
        out.push_back(separator());
    }
}

std::vector<std::string> Table::carriedNames() const {
    std::vector<std::string> plain;
    for (const std::size_t place : stand.carried)
        plain.push_back(unquoted(names[place]));
    return plain;
}

std::string_view Table::carriedCell(std::size_t i) const {
    const std::size_t whole = csv.cells().size() - (tooLong() ? 1 : 0);
    return stand.carried[i] < whole ? csv.cells()[stand.carried[i]] : std::string_view{};
}

void Table::appendNumber(std::string& out, double value) const {
    std::string text = shown(value);
    if (format.decimalComma)
        std::replace(text.begin(), text.end(), '.', ',');
    out += text;
}

} // namespace kiv::host
