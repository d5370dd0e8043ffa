#pragma once

#include <cmath>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/report/RowRuns.h"
#include "host/rows/RowTime.h"
#include "host/summary/Quantile.h"

namespace kiv::host {

// What the charts of a report run over.
struct XAxis {
    enum class Kind : unsigned char {
        row,      // the row number
        seconds,  // of the column time_s
        dateTime, // of the column time, as clocks show
        utc,      // of the column time
    };
    // Where the clock goes back, or pauses for longer than ten usual steps: no line of a chart
    // leads across.
    struct Break {
        RowPlace place; // behind it
        double before;  // seconds, of the time before it
        double after;
        double shift =
            0; // of all rows from here on, seconds, so that they stand behind those before

        bool goesBack() const { return after < before; }
    };

    Kind kind = Kind::row;
    std::string whyRow; // why there is no time
    std::vector<Break> breaks;

    bool overTime() const { return kind != Kind::row; }
    bool overDates() const { return kind >= Kind::dateTime; }
    const char* name() const;
    std::string text(double time) const;
};

// Follows the column time_s or, where there is none, time. It can carry a chart when the first row
// has a time and few rows go back; a row without one, or with cells missing, takes that of the row
// before.
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
    // The next row's point, from its time and place; a table is named where there are several.
    Point next(const std::optional<TimeStamp>& time, const RowPlace& place, std::string_view table);
    // Of the rows so far.
    XAxis axis() const;

private:
    void giveUp(std::string why);
    void takeStep(double time, const RowPlace& place, std::string_view table);

    RowTime times;
    double last = -INFINITY;
    XAxis shown;
    std::vector<XAxis::Break> backwards;
    std::vector<XAxis::Break> longest; // steps on, the shortest of them in front
    Quantile steps;
    double lastStep = 0; // on
    double sumOfSteps = 0;
};

} // namespace kiv::host
