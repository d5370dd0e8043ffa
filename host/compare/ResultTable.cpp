#include "host/compare/ResultTable.h"

#include <cmath>
#include <ostream>

#include "host/base/Interrupt.h"
#include "host/rows/Readings.h"
#include "host/rows/TimeStamp.h"

namespace kiv::host {

namespace {

constexpr std::array<std::string_view, 3> uncertaintyColumns{"u_rx_deg", "u_ry_deg", "u_rz_deg"};

} // namespace

bool ResultTable::open(const std::string& file, Join& join, Sha256* hash) {
    const Interrupt::Waiting waiting(true); // nothing is written yet
    if (!input.open(file, {}, streams, hash))
        return false;
    input.showWarnings(streams.err);
    if (join.by == Join::By::time && join.column.empty())
        join.column = table().find(timeColumn) ? timeColumn : timeStampColumn;
    how = &join;
    if (how->by == Join::By::line) {
        keyPlace = table().find(timeColumn);
    } else {
        keyPlace = table().find(how->column);
        if (!keyPlace) {
            streams.err << name() << ":1:1: expected a column " << inQuotes(how->column)
                        << " for --join, found none\n";
            return false;
        }
    }
    for (std::size_t i = 0; i < uncertainties.size(); ++i)
        uncertainties[i] = table().find(uncertaintyColumns[i]);
    return true;
}

bool ResultTable::next(ResultRow& row) {
    while (!ended && input.nextRow()) {
        const bool good = readRow(row);
        limit.take(input.table().messages());
        if (good)
            return true;
        ++refused;
    }
    return false;
}

bool ResultTable::readRow(ResultRow& row) {
    Table& rows = input.table();
    if (!rows.checkRow() || !readKey(row))
        return false;
    row.line = rows.lineNumber();
    if (how->by == Join::By::line)
        row.order = static_cast<double>(row.line);
    row.orientation.reset();
    if (rows.text(0).empty() && rows.text(1).empty() && rows.text(2).empty())
        return true;
    Orientation found;
    bool good = true;
    for (std::size_t i = 0; i < 3; ++i) {
        good = rows.readNumber(i, found.angles[i]) && good;
        if (good && std::abs(found.angles[i]) > 360) {
            rows.report(i, "an angle from -360 to 360 degrees", inQuotes(rows.text(i)),
                        "with an angle beyond a turn");
            good = false;
        }
    }
    std::array<double, 3> standard{};
    bool known = true;
    for (std::size_t i = 0; i < 3; ++i)
        known = known && uncertainties[i] && rows.numberAt(*uncertainties[i], standard[i]);
    if (known)
        found.uncertainty = standard;
    if (good)
        row.orientation = found;
    return good;
}

bool ResultTable::readKey(ResultRow& row) {
    const Table& rows = input.table();
    row.key = keyPlace ? rows.cell(*keyPlace) : std::string_view();
    if (how->by != Join::By::time)
        return true;
    const auto stamp = timeStampIn(row.key);
    if (how->column == timeStampColumn && stamp) {
        row.order = stamp->seconds;
        if (stamp->zoned != how->zoned.value_or(stamp->zoned)) {
            refuseKey("stamps with a zone or without, as the first one", inQuotes(row.key));
            return false;
        }
        how->zoned = stamp->zoned;
    } else if (how->column == timeStampColumn || !rows.numberAt(*keyPlace, row.order)) {
        input.table().reportRow("a time in column " + how->column, inQuotes(row.key),
                                "without a time");
        return false;
    }
    if (any && row.order <= last) {
        refuseKey("times that rise for --join time", inQuotes(row.key) + " behind a later one");
        return false;
    }
    any = true;
    last = row.order;
    return true;
}

void ResultTable::refuseKey(std::string_view expected, std::string_view found) {
    streams.err << name() << ':' << input.table().lineNumber() << ":1: expected " << expected
                << ", found " << found << '\n';
    ended = true;
}

bool ResultTable::finish() {
    limit.reportOthers(name());
    return input.reportEnd(streams.err) && !ended;
}

} // namespace kiv::host
