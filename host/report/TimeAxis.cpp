#include "host/report/TimeAxis.h"

#include <algorithm>
#include <utility>

#include "host/base/MessageLimit.h"
#include "host/rows/Readings.h"
#include "host/rows/Table.h"

namespace kiv::host {

namespace {

constexpr std::size_t mostBreaks = 200; // of each kind
constexpr double pauseSteps = 10;       // usual ones, their median
constexpr double gapShare = 0.02;       // of the time that is drawn, where it is not to scale

bool longer(const XAxis::Break& a, const XAxis::Break& b) {
    return a.after - a.before > b.after - b.before;
}

} // namespace

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
    shown = {XAxis::Kind::row, std::move(why), {}};
}

// Stamps with a zone and those without cannot be compared: the first one decides.
TimeColumn::Point TimeColumn::next(const std::optional<TimeStamp>& time, const RowPlace& place,
                                   std::string_view table) {
    if (!shown.overTime())
        return {0, std::nullopt};
    const bool first = !std::isfinite(last);
    if (first && time && time->zoned)
        shown.kind = XAxis::Kind::utc;
    const bool comparable = time && time->zoned == (shown.kind == XAxis::Kind::utc);
    if (!comparable && first)
        giveUp((times.stamps() ? "time is no date and time in " : "time_s is no number in ")
               + linePlace(place.line, table));
    if (comparable) {
        if (!first)
            takeStep(time->seconds, place, table);
        last = time->seconds;
    }
    return {last, comparable ? std::optional(last) : std::nullopt};
}

void TimeColumn::takeStep(double time, const RowPlace& place, std::string_view table) {
    const XAxis::Break step{place, last, time};
    if (step.goesBack()) {
        if (backwards.size() == mostBreaks)
            giveUp((times.stamps() ? "time goes back in " : "time_s goes back in ")
                   + linePlace(place.line, table) + " for the " + std::to_string(mostBreaks + 1)
                   + "st time");
        backwards.push_back(step);
        return;
    }
    if (time == last)
        return;
    const double before = std::exchange(lastStep, time - last);
    steps.add(lastStep);
    sumOfSteps += lastStep;
    if (lastStep <= pauseSteps * before)
        return;
    if (longest.size() == mostBreaks) {
        if (!longer(step, longest.front()))
            return;
        std::pop_heap(longest.begin(), longest.end(), longer);
        longest.pop_back();
    }
    longest.push_back(step);
    std::push_heap(longest.begin(), longest.end(), longer);
}

// A pause that is longer than all that is left of the time is not drawn to scale, nor is one after
// it in that order: what it parts stands side by side, as does what a clock that goes back parts.
XAxis TimeColumn::axis() const {
    XAxis axis = shown;
    if (!axis.overTime())
        return axis;
    std::vector<XAxis::Break> pauses = longest;
    std::erase_if(pauses, [&](const XAxis::Break& step) {
        return step.after - step.before <= pauseSteps * steps.at(0.5);
    });
    std::sort(pauses.begin(), pauses.end(), longer);
    double drawn = sumOfSteps;
    std::size_t cut = 0;
    for (const XAxis::Break& pause : pauses) {
        const double rest = drawn - (pause.after - pause.before);
        if (pause.after - pause.before <= rest)
            break;
        drawn = rest;
        ++cut;
    }
    const double gap = gapShare * drawn;
    const auto close = [&](XAxis::Break& parts) { parts.shift = parts.before - parts.after + gap; };
    axis.breaks = backwards;
    std::for_each(axis.breaks.begin(), axis.breaks.end(), close);
    std::for_each(pauses.begin(), pauses.begin() + static_cast<std::ptrdiff_t>(cut), close);
    axis.breaks.insert(axis.breaks.end(), pauses.begin(), pauses.end());
    std::sort(
        axis.breaks.begin(), axis.breaks.end(),
        [](const XAxis::Break& a, const XAxis::Break& b) { return a.place.row < b.place.row; });
    double shift = 0;
    for (XAxis::Break& each : axis.breaks)
        each.shift = shift += each.shift;
    return axis;
}

} // namespace kiv::host
