#include "host/witnesses/Jumps.h"

#include <algorithm>

namespace kiv::host {

namespace {

constexpr std::size_t firstRow = 100;
constexpr float farBend = 30; // times the median
constexpr float farStep = 5;  // times the step before
// A second reading that is less far from its usual way moves with the first one all the same.
constexpr float livelyBend = 8;
constexpr float livelyStep = 2;
constexpr float least = 0.1F; // degrees, also of the temperature
constexpr float leastOfDistance = 1e-3F;
constexpr float leastOfSight = 0.1F / 57.29578F;
constexpr float back = 0.2F; // of the jump

constexpr std::size_t fewestBends = 50;

float valueOf(Jumps::Reading reading, const Attitude& at) {
    switch (reading) {
    case Jumps::azimuth:
        return at.azimuth;
    case Jumps::elevation:
        return at.elevation;
    case Jumps::levelX:
        return at.levelX;
    case Jumps::levelY:
        return at.levelY;
    case Jumps::temperature:
        return at.temperature;
    default:
        return at.distance;
    }
}

float between(Jumps::Reading reading, const Attitude& to, const Attitude& from) {
    if (reading == Jumps::sight)
        return chord(to.sight, from.sight);
    const float a = valueOf(reading, to), b = valueOf(reading, from);
    return reading <= Jumps::elevation ? turned(a, b) : a - b;
}

} // namespace

bool Jumps::isKnown(const Series& series) {
    return series.bends.count() >= fewestBends;
}

Jumps::Move Jumps::moveOf(const Series& series, float step, float before, float bend,
                          float floor) const {
    if (inARow < 2 || rows < firstRow)
        return Move::usual;
    const float median = isKnown(series) ? series.bends.value() : 0;
    const float limit = std::max(farBend * median, floor);
    if (bend > limit && step > limit && step >= farStep * before)
        return Move::jump;
    const float lively = std::max(livelyBend * median, floor / 10);
    return bend > lively && step > lively && step >= livelyStep * before ? Move::lively
                                                                         : Move::usual;
}

Jumps::Move Jumps::moveOf(Reading reading, const Attitude& now) {
    Series& series = all[reading];
    const float step = between(reading, now, last);
    const float bend = std::abs(step - series.step);
    const float floor = reading == distance ? leastOfDistance * last.distance : least;
    const Move move = moveOf(series, std::abs(step), std::abs(series.step), bend, floor);
    if (inARow >= 2 && bend > 0)
        series.bends.add(bend);
    series.step = step;
    return move;
}

Jumps::Move Jumps::moveOfSight(const Attitude& now) {
    std::array<float, 3> step;
    for (std::size_t i = 0; i < 3; ++i)
        step[i] = now.sight[i] - last.sight[i];
    constexpr std::array<float, 3> none{};
    Series& series = all[sight];
    const float size = chord(step, none);
    const float bend = chord(step, sightStep);
    const Move move = moveOf(series, size, series.step, bend, leastOfSight);
    if (inARow >= 2 && bend > 0)
        series.bends.add(bend);
    series.step = size;
    sightStep = step;
    return move;
}

std::optional<Jumps::Found> Jumps::settle(const Attitude& now) const {
    const auto [reading, before] = *pending;
    const auto within = [&](Reading of) {
        const float jump = std::abs(between(of, last, before));
        return std::abs(between(of, now, before)) <= back * jump;
    };
    const bool ofVector = reading >= distance;
    if (within(reading) && (!ofVector || (within(distance) || within(sight))))
        return Found{reading, true};
    const float jump = std::abs(between(reading, last, before));
    if (isKnown(all[reading]) && std::abs(between(reading, now, last)) <= back * jump)
        return Found{reading, false};
    return std::nullopt;
}

std::optional<Jumps::Found> Jumps::add(const Attitude& now, bool mayJump) {
    std::optional<Found> found;
    if (inARow == 0)
        pending.reset();
    if (pending)
        found = settle(now);
    pending.reset();
    ++rows;
    if (inARow > 0) {
        std::size_t moves = 0;
        std::optional<Reading> jump;
        const auto take = [&](Reading reading, Move move) {
            if (move == Move::jump)
                jump = reading;
            return move != Move::usual;
        };
        for (std::size_t i = 0; i < distance; ++i)
            if (const auto reading = static_cast<Reading>(i); counts[i])
                moves += take(reading, moveOf(reading, now)) ? 1U : 0U;
        // The vector's two are one.
        const bool further = take(distance, moveOf(distance, now));
        const bool aside = take(sight, moveOfSight(now));
        moves += further || aside ? 1U : 0U;
        if (moves == 1 && jump && mayJump)
            pending = Pending{*jump, last};
    }
    inARow = std::min<std::size_t>(inARow + 1, 2);
    last = now;
    return found;
}

} // namespace kiv::host
