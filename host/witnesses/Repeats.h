#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include "host/witnesses/Attitude.h"

namespace kiv::host {

// Finds readings that repeat to the last digit in 100 rows or more while others tell that they
// should not.
//
// Of a reading that changes in nine of ten steps else, such a run is one where an encoder or the
// line of sight turns by more than 5 degrees; for a level or the elevation the sensor has to tilt,
// too, as a turn about the vertical leaves them alone. A level that never changes is one where the
// sensor tilts by more than 5 degrees, an encoder where the line of sight turns by 30.
class Repeats {
public:
    struct Place {
        std::size_t line = 0;
        std::size_t row = 0;
    };

    explicit Repeats(const std::array<bool, readingCount>& counted) : counts(counted) {}

    void add(const KIV_RAWINFO& raw, const Attitude& now, Place place);

    struct Found {
        Place first;
        std::size_t rows;
    };
    // Of all rows so far, which end here.
    std::optional<Found> found(Reading reading) const;

private:
    struct Run {
        std::size_t rows = 1;
        Place first{}; // from 2 rows on, as all that follows
        Attitude start{};
        bool moved = false; // the sensor has, as this reading should have seen
        bool movedFar = false;
    };
    struct Series {
        Run run;
        std::size_t changes = 0;
        std::size_t repeats = 0; // but for those of runs that are found
        Found kept{{}, 0};       // in runs that have ended
    };
    void extend(Run& run, Reading reading, const Attitude& now) const;
    void look(Run& run, Reading reading, const Attitude& now) const;
    static void endRun(Series& series);

    std::array<bool, readingCount> counts;
    std::array<Series, readingCount> all;
    KIV_RAWINFO last{};
    Place lastPlace;
    bool begun = false;
};

} // namespace kiv::host
