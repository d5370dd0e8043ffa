#include "host/report/TimeAxis.h"

#include "host/base/MessageLimit.h"
#include "host/rows/Readings.h"
#include "host/rows/Table.h"

namespace kiv::host {

const char* XAxis::name() const {
    return kind == Kind::row       ? "row"
           : kind == Kind::seconds ? "time, s"
           : kind == Kind::utc     ? "time, UTC"
                                   : "time";
}

std::string XAxis::text(double time) const {
    return overDates() ? timeStampText({time, kind == Kind::utc}) : shown(time);
}

TimeColumn::TimeColumn(const Table& table) : times(table) {
    if (times.there())
        shown.kind = times.stamps() ? XAxis::Kind::dateTime : XAxis::Kind::seconds;
    else
        giveUp("the readings have no column time_s or time");
}

void TimeColumn::giveUp(std::string why) {
    shown = {XAxis::Kind::row, std::move(why)};
}

// Stamps with a zone and those without cannot be compared: the first one decides.
TimeColumn::Point TimeColumn::next(const std::optional<TimeStamp>& time, std::size_t line,
                                   std::string_view table) {
    if (!shown.overTime())
        return {0, std::nullopt};
    const bool first = !std::isfinite(last);
    if (first && time && time->zoned)
        shown.kind = XAxis::Kind::utc;
    const bool comparable = time && time->zoned == (shown.kind == XAxis::Kind::utc);
    if (comparable && time->seconds < last)
        giveUp((times.stamps() ? "time goes back in " : "time_s goes back in ")
               + linePlace(line, table));
    else if (!comparable && first)
        giveUp((times.stamps() ? "time is no ISO 8601 time in " : "time_s is no number in ")
               + linePlace(line, table));
    else if (comparable)
        last = time->seconds;
    return {last, comparable ? std::optional(last) : std::nullopt};
}

} // namespace kiv::host
