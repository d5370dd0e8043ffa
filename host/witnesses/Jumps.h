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
    // Of readings that count.
    explicit Jumps(const std::array<bool, readingCount>& counted);

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
    using Row = std::array<float, Attitude::size>;
    enum class Move : unsigned char { usual, lively, jump };
    struct Moves {
        std::size_t readings = 0; // that do not move as usual
        std::optional<Reading> jump;
    };

    bool isKnown(Reading reading) const; // its median
    void learn(const Row& bend);
    Move moveOf(Reading reading, const Row& step, const Row& bend) const;
    Moves movesOf(const Row& step, const Row& bend) const;
    bool follow(const Attitude& now, Row& step, Row& bend) const;
    std::optional<Found> settle(const Attitude& now) const;

    std::array<bool, readingCount> counts;
    // Magnitudes of second differences that are not 0.
    std::array<RunningMedian, readingCount + 1> bends;
    Row lively{}; // the least second differences that need a look
    Row lastStep{};
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
