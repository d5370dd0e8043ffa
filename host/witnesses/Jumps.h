#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include "host/witnesses/Attitude.h"
#include "host/witnesses/RunningMedian.h"

namespace kiv::host {

// Finds rows in which one reading alone jumps, and says once the next row is there whether it is
// back.
//
// A reading jumps where its second difference and its step are beyond 30 times the median of the
// second differences so far and beyond 0.1 degrees (the distance: a thousandth of it), and its step
// is at least 5 times the one before: a walk that starts or stops, noise and quantised readings
// have none. Another reading that leaves its usual way less far in the same row tells of a motion.
class Jumps {
public:
    enum Reading : unsigned char {
        azimuth,
        elevation,
        levelX,
        levelY,
        temperature,
        distance,
        sight
    };
    static constexpr std::size_t readings = 7;

    // Of readings that count.
    explicit Jumps(const std::array<bool, readings>& counted) : counts(counted) {}

    struct Found {
        Reading reading; // distance or sight: of the vector
        bool back;       // else it stays
    };
    // The next row. Gives what is known now of the row in front of it; mayJump is false for a row
    // whose readings are known to be none.
    std::optional<Found> add(const Attitude& now, bool mayJump);
    // Rows are left out: the next one does not follow the last.
    void interrupt() { inARow = 0; }

private:
    struct Series {
        float step = 0;
        RunningMedian bends; // magnitudes of second differences that are not 0
    };
    enum class Move : unsigned char { usual, lively, jump };

    static bool isKnown(const Series& series); // its median
    // Of a series whose step and second difference have these magnitudes.
    Move moveOf(const Series& series, float step, float before, float bend, float floor) const;
    Move moveOf(Reading reading, const Attitude& now);
    Move moveOfSight(const Attitude& now);
    std::optional<Found> settle(const Attitude& now) const;

    std::array<bool, readings> counts;
    std::array<Series, readings> all;
    std::array<float, 3> sightStep{};
    Attitude last{};
    std::size_t inARow = 0; // rows that follow each other, to 2
    std::size_t rows = 0;
    // Of the last row, where one reading alone jumped in it.
    struct Pending {
        Reading reading;
        Attitude before;
    };
    std::optional<Pending> pending;
};

} // namespace kiv::host
