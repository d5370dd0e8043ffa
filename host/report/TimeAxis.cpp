#include "host/report/TimeAxis.h"

#include "host/tables/Readings.h"
#include "host/tables/Table.h"

namespace kiv::host {

const char* XAxis::name() const {
    return kind == Kind::row       ? "row"
           : kind == Kind::seconds ? "time, s"
           : kind == Kind::utc     ? "time, UTC"
                                   : "time";
}

std::string XAxis::text(double time) const {
    return overDates() ? timeStampText({time, kind == Kind::utc}) : host::shown(time);
}

TimeColumn::TimeColumn(const Table& table) : place(table.find(timeColumn)) {
    if (!place) {
        place = table.find(timeStampColumn);
        stamps = true;
    }
    if (place)
        shown.kind = stamps ? XAxis::Kind::dateTime : XAxis::Kind::seconds;
    else
        giveUp("the readings have no column time_s or time");
}

void TimeColumn::giveUp(std::string why) {
    shown = {XAxis::Kind::row, std::move(why)};
}

// Stamps with a zone and those without cannot be compared: the first one decides.
std::optional<double> TimeColumn::timeOf(const Table& table) {
    double time = 0;
    if (!stamps)
        return table.numberAt(*place, time) ? std::optional(time) : std::nullopt;
    const auto stamp = timeStampIn(table.cell(*place));
    if (!stamp)
        return std::nullopt;
    if (!std::isfinite(last) && stamp->zoned)
        shown.kind = XAxis::Kind::utc;
    return stamp->zoned == (shown.kind == XAxis::Kind::utc) ? std::optional(stamp->seconds)
                                                            : std::nullopt;
}

double TimeColumn::at(const Table& table, Reason reason) {
    if (!shown.overTime())
        return 0;
    const std::string line = std::to_string(table.lineNumber());
    const auto time = reason == Reason::rowShape ? std::nullopt : timeOf(table);
    if (time && *time < last)
        giveUp(std::string(stamps ? "time" : "time_s") + " goes back in line " + line);
    else if (!time && !std::isfinite(last))
        giveUp((stamps ? "time is no ISO 8601 time in line " : "time_s is no number in line ")
               + line);
    else if (time)
        last = *time;
    return last;
}

} // namespace kiv::host
