#include "host/Readings.h"

#include <algorithm>
#include <cmath>
#include <ostream>
#include <utility>

namespace kiv::host {

namespace {

std::string quoted(std::string_view text) {
    constexpr std::size_t most = 40;
    std::string shown = "\"";
    shown += text.substr(0, most);
    shown += text.size() > most ? "...\"" : "\"";
    return shown;
}

std::string cellCount(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " cell" : " cells");
}

} // namespace

ReadingsTable::ReadingsTable(std::istream& in, std::string shownName, std::ostream& messages)
    : csv(in), name(std::move(shownName)), err(messages) {}

void ReadingsTable::report(std::size_t cell, std::string_view expected,
                           std::string_view found) const {
    err << name << ':' << csv.lineNumber() << ':' << csv.column(cell) << ": expected " << expected
        << ", found " << found << '\n';
}

bool ReadingsTable::readHeader(const std::vector<std::string_view>& reserved) {
    if (!csv.nextRow()) {
        err << name << ":1:1: expected a row of column names, found "
            << (csv.failed() ? "a file that cannot be read" : "end of file") << '\n';
        return false;
    }
    bool good = true;
    std::vector<std::string_view> names;
    for (const std::string_view cell : csv.cells())
        names.push_back(cellText(cell));
    width = names.size();
    for (std::size_t i = 0; i < width; ++i) {
        if (std::find(names.begin(), names.begin() + static_cast<std::ptrdiff_t>(i), names[i])
            != names.begin() + static_cast<std::ptrdiff_t>(i)) {
            report(i, "each column name once", quoted(names[i]) + " again");
            good = false;
        } else if (std::find(reserved.begin(), reserved.end(), names[i]) != reserved.end()) {
            report(i, "a name that no column of results has", quoted(names[i]));
            good = false;
        }
        if (std::find(readingColumns.begin(), readingColumns.end(), names[i])
            == readingColumns.end()) {
            carried.push_back(i);
            carriedNames.emplace_back(csv.cells()[i]);
        }
    }
    for (std::size_t i = 0; i < readingColumns.size(); ++i) {
        const auto place = std::find(names.begin(), names.end(), readingColumns[i]);
        if (place == names.end()) {
            report(width, "a column " + quoted(readingColumns[i]), "end of line");
            good = false;
        }
        columns[i] = static_cast<std::size_t>(place - names.begin());
    }
    for (const std::string_view truthName : truthColumns) {
        const auto place = std::find(names.begin(), names.end(), truthName);
        if (place != names.end())
            truthAt.push_back(static_cast<std::size_t>(place - names.begin()));
    }
    if (truthAt.size() < truthColumns.size())
        truthAt.clear();
    return good;
}

bool ReadingsTable::readNumber(Field field, float& value) const {
    const std::size_t cell = columnOf(field);
    const std::string_view text = cellText(csv.cells()[cell]);
    const auto number = numberIn<float>(text);
    if (number && std::isfinite(*number)) {
        value = *number;
        return true;
    }
    const std::string_view column = readingColumns[static_cast<std::size_t>(field)];
    std::string expected = "a finite number within single precision in column ";
    report(cell, expected.append(column), quoted(text));
    return false;
}

bool ReadingsTable::readings(KIV_RAWINFO& raw) {
    const std::size_t cells = csv.cells().size();
    if (!csv.quotesClosed()) {
        report(cells, "a closing quote", "end of line");
        return false;
    }
    if (cells != width) {
        report(std::min(cells, width), cellCount(width) + " as in the row of names",
               cellCount(cells));
        return false;
    }

    raw = {};
    bool good = true;
    const std::string_view status = cellText(csv.cells()[columnOf(Field::status)]);
    if (const auto number = numberIn<int>(status)) {
        raw.status = *number;
    } else {
        report(columnOf(Field::status), "a whole number in column status", quoted(status));
        good = false;
    }
    const std::pair<Field, float&> numbers[] = {
        {Field::x, raw.vector[0]},
        {Field::y, raw.vector[1]},
        {Field::z, raw.vector[2]},
        {Field::azimuth, raw.azimuthRaw},
        {Field::elevation, raw.elevationRaw},
        {Field::levelX, raw.levelXRaw},
        {Field::levelY, raw.levelYRaw},
        {Field::temperature, raw.temperature},
        {Field::refMetric, raw.refMetric},
    };
    bool vectorGood = true;
    for (const auto& [field, value] : numbers) {
        const bool read = readNumber(field, value);
        good = good && read;
        if (field <= Field::z)
            vectorGood = vectorGood && read;
    }
    if (vectorGood && raw.vector[0] == 0 && raw.vector[1] == 0 && raw.vector[2] == 0) {
        report(columnOf(Field::x), "a measured vector that is not zero", "0, 0, 0");
        good = false;
    }
    const std::string_view blocked = cellText(csv.cells()[columnOf(Field::refBlocked)]);
    if (blocked == "1" || blocked == "true") {
        raw.refBlocked = true;
    } else if (blocked != "0" && blocked != "false") {
        report(columnOf(Field::refBlocked), "0, 1, false or true in column ref_blocked",
               quoted(blocked));
        good = false;
    }
    return good;
}

bool ReadingsTable::truth(std::array<double, 3>& angles) const {
    if (truthAt.empty() || csv.cells().size() != width)
        return false;
    for (std::size_t i = 0; i < 3; ++i) {
        const auto number = numberIn<double>(cellText(csv.cells()[truthAt[i]]));
        if (!number || !std::isfinite(*number))
            return false;
        angles[i] = *number;
    }
    return true;
}

void ReadingsTable::appendCarriedNames(std::string& text) const {
    for (const std::string& carriedName : carriedNames)
        text.append(carriedName).push_back(',');
}

void ReadingsTable::appendCarriedCells(std::string& text) const {
    for (const std::size_t i : carried) {
        if (i < csv.cells().size())
            text.append(csv.cells()[i]);
        text.push_back(',');
    }
}

} // namespace kiv::host
