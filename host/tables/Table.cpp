#include "host/tables/Table.h"

#include <algorithm>
#include <ostream>
#include <utility>

namespace kiv::host {

namespace {

bool contains(std::span<const std::string_view> names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::string cellCount(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " cell" : " cells");
}

} // namespace

Table::Table(std::istream& in, std::string shownName, std::ostream& messages,
             std::span<const std::string_view> columnNames)
    : csv(in), name(std::move(shownName)), err(messages), wanted(columnNames) {}

void Table::reportAt(std::size_t place, std::string_view expected, std::string_view found) const {
    err << name << ':' << csv.lineNumber() << ':' << csv.column(place) << ": expected " << expected
        << ", found " << found << '\n';
}

bool Table::readHeader(std::span<const std::string_view> reserved) {
    if (!csv.nextRow()) {
        err << name << ":1:1: expected a row of column names, found "
            << (csv.failed() ? "a file that cannot be read" : "end of file") << '\n';
        return false;
    }
    bool good = true;
    std::vector<std::string_view> found;
    for (const std::string_view cell : csv.cells()) {
        const std::string_view columnName = cellText(cell);
        if (contains(found, columnName)) {
            reportAt(found.size(), "each column name once", quoted(columnName) + " again");
            good = false;
        } else if (contains(reserved, columnName)) {
            reportAt(found.size(), "a name that no column of results has", quoted(columnName));
            good = false;
        }
        if (!contains(wanted, columnName))
            carried.push_back(found.size());
        found.push_back(columnName);
        names.emplace_back(cell);
    }
    for (const std::string_view columnName : wanted) {
        const auto place = std::find(found.begin(), found.end(), columnName);
        if (place == found.end()) {
            reportAt(found.size(), "a column " + quoted(columnName), "end of line");
            good = false;
        }
        columns.push_back(static_cast<std::size_t>(place - found.begin()));
    }
    return good;
}

bool Table::checkRow() const {
    const std::size_t cells = csv.cells().size();
    if (!csv.quotesClosed()) {
        reportAt(cells, "a closing quote", "end of line");
        return false;
    }
    if (cells != names.size()) {
        reportAt(std::min(cells, names.size()), cellCount(names.size()) + " as in the row of names",
                 cellCount(cells));
        return false;
    }
    return true;
}

std::optional<std::size_t> Table::find(std::string_view columnName) const {
    for (const std::size_t place : carried)
        if (cellText(names[place]) == columnName)
            return place;
    return std::nullopt;
}

void Table::appendCarriedNames(std::string& out) const {
    for (const std::size_t place : carried)
        out.append(names[place]).push_back(',');
}

void Table::appendCarriedCells(std::string& out) const {
    for (const std::size_t place : carried) {
        if (place < csv.cells().size())
            out.append(csv.cells()[place]);
        out.push_back(',');
    }
}

} // namespace kiv::host
