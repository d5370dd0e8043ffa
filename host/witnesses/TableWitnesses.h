#pragma once

#include <array>
#include <limits>
#include <vector>

#include "host/witnesses/Jumps.h"
#include "host/witnesses/Repeats.h"
#include "host/witnesses/WatchedSensor.h"
#include "host/witnesses/Witnesses.h"

namespace kiv::host {

// Those of one table.
class TableWitnesses {
public:
    TableWitnesses(const WatchedSensor& watched, std::size_t number);

    // The row's own number is that of the whole recording, from 1. False for a row with a filler.
    bool add(const RowResult& result, const RowPlaces& places, std::size_t row);
    std::vector<Witness> finished() const; // in the order of their kinds

private:
    using Place = Repeats::Place;

    struct Count {
        Place first;
        std::size_t rows = 0;

        void add(Place place);
    };
    void watchClock(const RowPlaces& places, Place place);
    bool countFillers(const KIV_RAWINFO& raw, Place place);
    bool countAnyFillers(const KIV_RAWINFO& raw, Place place);
    bool countBeyond(const KIV_RAWINFO& raw, const KIV_INFO& info, Place place);
    void watchAzimuth(const KIV_RAWINFO& raw, Place place);
    bool inRadians() const;

    WatchedSensor sensor;
    std::size_t table;
    Jumps jumps;
    Repeats repeats;
    Place lastPlace;
    std::array<Count, readingCount> fillers, beyond, spikes;
    Count otherTargets, joins, clock;
    std::optional<TimeStamp> lastTime;
    bool overMidnight = true;          // every time that the clock goes back
    std::array<float, 2> lastAngles{}; // raw, that are no fillers
    float leastAzimuth = std::numeric_limits<float>::max();
    float largestAzimuth = std::numeric_limits<float>::lowest();
    std::array<bool, 4> quadrants{};
    Count counted;
};

} // namespace kiv::host
