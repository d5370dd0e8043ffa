#include "host/witnesses/Jumps.h"

#include <algorithm>

namespace kiv::host {

namespace {

constexpr std::size_t firstRow = 100;
constexpr std::size_t fewestBends = 50;
// Second differences for the median; to spare time it takes one row of some.
constexpr std::size_t densely = 256;
constexpr std::size_t sampleEvery = 16;
constexpr float farBend = 30; // times the median
constexpr float farStep = 5;  // times the step before
// A second reading that is less far from its usual way moves with the first one all the same.
constexpr float livelyBend = 8;
constexpr float livelyStep = 2;
constexpr float livelyFloor = 0.1F;   // of that of a jump
constexpr float floorOfAngles = 0.1F; // degrees, also of the temperature
constexpr float floorOfSight = floorOfAngles / 57.29578F;
constexpr float floorOfDistance = 1e-3F; // of it
constexpr float nearlyBack = 0.2F;       // of the jump

float between(Reading reading, const Attitude& to, const Attitude& from) {
    if (reading == Reading::sight)
        return chord(to.of, from.of);
    const float difference = to[reading] - from[reading];
    return reading <= Reading::elevation ? turned(difference) : difference;
}

// Of a row of differences, a magnitude.
float sizeOf(Reading reading, const std::array<float, Attitude::size>& row) {
    constexpr std::array<float, Attitude::size> none{};
    return reading == Reading::sight ? chord(row, none) : std::abs(row[at(reading)]);
}

constexpr std::array<Reading, readingCount + 1> everything{
    Reading::azimuth,     Reading::elevation, Reading::levelX, Reading::levelY,
    Reading::temperature, Reading::distance,  Reading::sight};

} // namespace

Jumps::Jumps(const std::array<bool, readingCount>& counted) : counts(counted) {
    for (std::size_t i = 0; i < counts.size(); ++i)
        lively[i] = counts[i] ? 0 : INFINITY;
    std::fill(lively.begin() + Attitude::sightFrom + 3, lively.end(), INFINITY);
}

bool Jumps::isKnown(Reading reading) const {
    return bends[at(reading)].count() >= fewestBends;
}

void Jumps::learn(const Row& bend) {
    for (const Reading reading : everything) {
        const float size = sizeOf(reading, bend);
        if (!(size > 0) || (reading < Reading::vector && !counts[at(reading)]))
            continue;
        RunningMedian& median = bends[at(reading)];
        if (!median.add(size) && median.count() != fewestBends)
            continue;
        if (!isKnown(reading))
            continue;
        const float least = livelyBend * median.value();
        if (reading == Reading::sight) // one of its three is as large as the whole by this
            std::fill_n(lively.begin() + Attitude::sightFrom, 3, least * 0.577F);
        else
            lively[at(reading)] = least;
    }
}

Jumps::Move Jumps::moveOf(Reading reading, const Row& step, const Row& bend) const {
    const float size = sizeOf(reading, step);
    const float turn = sizeOf(reading, bend);
    const float before = sizeOf(reading, lastStep);
    const float floor = reading == Reading::distance ? floorOfDistance * last[reading]
                        : reading == Reading::sight  ? floorOfSight
                                                     : floorOfAngles;
    const float median = isKnown(reading) ? bends[at(reading)].value() : 0;
    const float limit = std::max(farBend * median, floor);
    if (turn > limit && size > limit && size >= farStep * before)
        return Move::jump;
    const float livelyLimit = std::max(livelyBend * median, livelyFloor * floor);
    return turn > livelyLimit && size > livelyLimit && size >= livelyStep * before ? Move::lively
                                                                                   : Move::usual;
}

Jumps::Moves Jumps::movesOf(const Row& step, const Row& bend) const {
    Moves moves;
    bool ofVector = false;
    for (const Reading reading : everything) {
        if (reading < Reading::vector && !counts[at(reading)])
            continue;
        const Move move = moveOf(reading, step, bend);
        if (move == Move::jump)
            moves.jump = reading;
        const bool moved = move != Move::usual;
        if (reading < Reading::vector)
            moves.readings += moved ? 1U : 0U;
        else
            ofVector = ofVector || moved;
    }
    moves.readings += ofVector ? 1U : 0U;
    return moves;
}

// The step to a row and its second difference. False where all of that is usual, as in most rows.
inline bool Jumps::follow(const Attitude& now, Row& step, Row& bend) const {
    for (std::size_t i = 0; i < Attitude::size; ++i)
        step[i] = now.of[i] - last.of[i];
    for (std::size_t i = 0; i <= at(Reading::elevation); ++i)
        step[i] = turned(step[i]);
    int far = 0;
    for (std::size_t i = 0; i < Attitude::size; ++i) {
        bend[i] = std::abs(step[i] - lastStep[i]);
        far |= bend[i] > lively[i] ? 1 : 0;
    }
    return far != 0;
}

std::optional<Jumps::Found> Jumps::settle(const Attitude& now) const {
    const auto& [reading, before] = *pending;
    const auto jump = [&, &was = before](Reading of) { return std::abs(between(of, last, was)); };
    const auto isBack = [&, &was = before](Reading of) {
        return std::abs(between(of, now, was)) <= nearlyBack * jump(of);
    };
    if (isBack(reading))
        return Found{reading, true};
    if (isKnown(reading) && std::abs(between(reading, now, last)) <= nearlyBack * jump(reading))
        return Found{reading, false};
    return std::nullopt;
}

std::optional<Jumps::Found> Jumps::add(const Attitude& now, bool mayJump) {
    std::optional<Found> found;
    if (pending && inARow > 0)
        found = settle(now);
    pending.reset();
    ++rows;
    if (inARow > 0) {
        Row step, bend;
        const bool far = follow(now, step, bend);
        if (inARow > 1 && far && mayJump && rows >= firstRow) {
            const Moves moves = movesOf(step, bend);
            if (moves.readings == 1 && moves.jump)
                pending = Pending{*moves.jump, last};
        }
        if (inARow > 1 && (rows <= densely || rows % sampleEvery == 0))
            learn(bend);
        lastStep = step;
    }
    inARow = std::min<std::size_t>(inARow + 1, 2);
    last = now;
    return found;
}

} // namespace kiv::host
