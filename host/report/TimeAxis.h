#pragma once

#include <cmath>
#include <optional>
#include <string>
#include <string_view>

#include "host/rows/RowTime.h"

namespace kiv::host {

// What the charts of a report run over.
struct XAxis {
    enum class Kind : unsigned char {
        row,      // the row number
        seconds,  // of the column time_s
        dateTime, // of the column time, as clocks show
        utc,      // of the column time
    };
    Kind kind = Kind::row;
    std::string whyRow; // why there is no time

    bool overTime() const { return kind != Kind::row; }
    bool overDates() const { return kind >= Kind::dateTime; }
    const char* name() const;
    std::string text(double time) const;
};

// Follows the column time_s or, where there is none, time. It can carry a chart when the first row
// has a time and none is before the last; a row without one, or with cells missing, takes that of
// the row before.
class TimeColumn {
public:
    explicit TimeColumn(const Table& table);

    // A row's time; nothing where it has none. It is of the axis' kind alone, so that rows can be
    // read in any order.
    std::optional<TimeStamp> timeIn(const Table& table) const { return times.of(table); }

    struct Point {
        double time;               // in seconds
        std::optional<double> own; // the same, where it is the row's own
    };
    // The next row's point, from its time and, where there are several tables, that of its line.
    Point next(const std::optional<TimeStamp>& time, std::size_t line, std::string_view table);
    const XAxis& axis() const { return shown; }

private:
    void giveUp(std::string why);

    RowTime times;
    double last = -INFINITY;
    XAxis shown;
};

} // namespace kiv::host
