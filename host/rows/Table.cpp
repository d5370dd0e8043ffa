#include "host/rows/Table.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "host/rows/HeaderFault.h"

namespace kiv::host {

namespace {

bool contains(std::span<const std::string_view> names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

constexpr std::size_t mostNamesShown = 12;

std::string listOf(std::span<const std::string_view> names, std::size_t most) {
    std::string list;
    for (const std::string_view name : names.first(std::min(names.size(), most)))
        list += (list.empty() ? "" : ", ") + quoted(name);
    if (names.size() > most)
        list += " and " + std::to_string(names.size() - most) + " more";
    return list;
}

std::string cellCount(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " cell" : " cells");
}

// A quote that is never closed would take the rows behind it into its cell.
void appendQuoted(std::string& out, std::string_view text) {
    out.push_back('"');
    for (const char c : text)
        out.append(c == '"' ? 2 : 1, c);
    out.push_back('"');
}

} // namespace

Table::Table(std::span<const std::string_view> columnNames, const TableFormat& asked)
    : format(asked) {
    for (const std::string_view column : columnNames)
        wanted.push_back(format.nameOf(column));
}

void Table::reportAt(std::size_t place, std::string_view expected, std::string_view found,
                     std::string_view kind) {
    std::string message = *name + ':' + std::to_string(csv.lineNumber()) + ':'
                          + std::to_string(csv.column(place)) + ": expected ";
    message.append(expected).append(", found ").append(found).push_back('\n');
    said.push_back({kind, std::move(message)});
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

bool Table::readHeader(std::span<const std::string_view> reserved) {
    nextRow();
    chooseSeparator();
    names.assign(csv.cells().begin(), csv.cells().end());
    std::vector<std::string_view> found, repeated, taken;
    std::size_t firstRepeated = 0;
    for (const std::string& cell : names) {
        const std::string_view columnName = cellText(cell);
        if (contains(found, columnName)) {
            firstRepeated = repeated.empty() ? found.size() : firstRepeated;
            repeated.push_back(columnName);
        }
        if (contains(reserved, columnName))
            taken.push_back(columnName);
        if (format.keepAll || !contains(wanted, columnName))
            carried.push_back(found.size());
        found.push_back(columnName);
    }
    for (const std::size_t place : carried)
        if (carriedRuns.empty() || carriedRuns.back().second + 1 != place)
            carriedRuns.emplace_back(place, place);
        else
            carriedRuns.back().second = place;
    const auto placeOf = [&](std::string_view columnName) {
        return static_cast<std::size_t>(std::find(found.begin(), found.end(), columnName)
                                        - found.begin());
    };
    std::vector<std::string_view> missing;
    for (const std::string_view columnName : wanted) {
        columns.push_back(placeOf(columnName));
        if (columns.back() == found.size())
            missing.push_back(columnName);
    }
    if (!missing.empty())
        reportHeader(found, missing);
    else if (!csv.quotesClosed())
        reportAt(names.size(), "a closing quote", "end of line");
    else if (!repeated.empty())
        reportAt(firstRepeated, "each column name once",
                 listOf(repeated, mostNamesShown) + " again");
    else if (!taken.empty())
        reportAt(placeOf(taken[0]), "names that no column of results has",
                 listOf(taken, mostNamesShown));
    else if (format.decimalComma && separator() == ',' && found.size() > 1)
        reportAt(0, "semicolons or tabs between columns with decimal commas", "commas");
    return said.empty();
}

void Table::reportHeader(std::span<const std::string_view> found,
                         std::span<const std::string_view> missing) {
    std::string shownNames = listOf(found, mostNamesShown);
    const std::string_view row = csv.text();
    const std::string_view nextRow = csv.rest().substr(0, csv.rest().find('\n'));
    const std::string look = lookOfHeader(row, found, nextRow, missing);
    if (!look.empty())
        shownNames += ", which looks like " + look;
    reportAt(0, (missing.size() == 1 ? "a column " : "columns ") + listOf(missing, missing.size()),
             shownNames);
}

bool Table::hasColumnsOf(const Table& other, std::string_view otherName) {
    const auto place = static_cast<std::size_t>(
        std::mismatch(
            names.begin(), names.end(), other.names.begin(), other.names.end(),
            [](const std::string& a, const std::string& b) { return cellText(a) == cellText(b); })
            .first
        - names.begin());
    const auto nameAt = [place](const Table& table) {
        return place < table.names.size() ? quoted(cellText(table.names[place])) : "end of line";
    };
    const auto between = [](const Table& table) {
        return quoted(std::string(1, table.separator())) + " between columns";
    };
    if (separator() != other.separator())
        reportAt(0, between(other).append(" as in ").append(otherName), between(*this));
    else if (place < std::max(names.size(), other.names.size()))
        reportAt(place, nameAt(other).append(" as in ").append(otherName), nameAt(*this));
    return said.empty();
}

bool Table::checkRow() {
    const std::size_t cells = csv.cells().size();
    if (!csv.quotesClosed()) {
        reportAt(cells, "a closing quote", "end of line", "with an open quote");
        return false;
    }
    if (cells != names.size()) {
        reportAt(std::min(cells, names.size()), cellCount(names.size()) + " as in the row of names",
                 cellCount(cells), "with too few or too many cells");
        return false;
    }
    return true;
}

std::optional<std::size_t> Table::find(std::string_view columnName) const {
    const auto place = std::find_if(names.begin(), names.end(), [&](const std::string& columnCell) {
        return cellText(columnCell) == format.nameOf(columnName);
    });
    if (place == names.end())
        return std::nullopt;
    return static_cast<std::size_t>(place - names.begin());
}

bool Table::numberAt(std::size_t place, double& value) const {
    if (place >= csv.cells().size())
        return false;
    if (readPlainNumber(csv.cells()[place], value))
        return true;
    const auto number = numberOf<double>(cell(place));
    if (!number || !std::isfinite(*number))
        return false;
    value = *number;
    return true;
}

void Table::appendCarriedNames(std::string& out) const {
    for (const std::size_t place : carried)
        out.append(names[place]).push_back(separator());
}

void Table::appendCarriedCells(std::string& out) const {
    const auto& cells = csv.cells();
    if (cells.size() == names.size() && csv.quotesClosed()) {
        for (const auto& [first, last] : carriedRuns)
            out.append(cells[first].data(), cells[last].data() + cells[last].size())
                .push_back(separator());
        return;
    }
    for (const std::size_t place : carried) {
        if (place + 1 == cells.size() && !csv.quotesClosed())
            appendQuoted(out, cells[place]);
        else if (place < cells.size())
            out.append(cells[place]);
        out.push_back(separator());
    }
}

void Table::appendNumber(std::string& out, double value) const {
    std::string text = shown(value);
    if (format.decimalComma)
        std::replace(text.begin(), text.end(), '.', ',');
    out += text;
}

} // namespace kiv::host
