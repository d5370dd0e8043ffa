#include "host/rows/RowTime.h"

#include "host/rows/Readings.h"
#include "host/rows/Table.h"

namespace kiv::host {

RowTime::RowTime(const Table& table) : place(table.find(timeColumn)) {
    if (place)
        return;
    place = table.find(timeStampColumn);
    ofDay = true;
}

std::string_view RowTime::column() const {
    return ofDay ? timeStampColumn : timeColumn;
}

std::optional<TimeStamp> RowTime::of(const Table& row) const {
    if (!place)
        return std::nullopt;
    if (ofDay)
        return timeStampIn(row.cell(*place));
    TimeStamp time{};
    return row.numberAt(*place, time.seconds) ? std::optional(time) : std::nullopt;
}

} // namespace kiv::host
