#include "host/witnesses/Repeats.h"

#include <algorithm>

namespace kiv::host {

namespace {

constexpr std::size_t fewestRows = 100;
constexpr std::size_t fewestChanges = 100;
constexpr std::size_t looksEvery = 8; // rows, which is often enough in 100
constexpr float turnedBy = 5;         // degrees
constexpr float tiltedBy = 1;
constexpr float tiltedFar = 5;
constexpr float sightTurnedFar = 30;
constexpr float degrees = 57.29578F; // in a radian

// Degrees between an attitude and another.
struct Moved {
    float azimuth, elevation, sight, sightRise, levelX, levelY;

    Moved(const Attitude& from, const Attitude& to)
        : azimuth(std::abs(turned(to[Reading::azimuth] - from[Reading::azimuth]))),
          elevation(std::abs(turned(to[Reading::elevation] - from[Reading::elevation]))),
          sight(2 * degrees * std::asin(std::min(1.0F, chord(to.of, from.of) / 2))),
          sightRise(degrees
                    * std::abs(std::asin(std::clamp(to.sightRise(), -1.0F, 1.0F))
                               - std::asin(std::clamp(from.sightRise(), -1.0F, 1.0F)))),
          levelX(std::abs(to[Reading::levelX] - from[Reading::levelX])),
          levelY(std::abs(to[Reading::levelY] - from[Reading::levelY])) {}

    // As the elevation shows it that the line of sight has no part in.
    float tilt() const { return std::abs(elevation - sightRise); }
};

} // namespace

void Repeats::look(Run& run, Reading reading, const Attitude& now) const {
    const Moved by(run.start, now);
    const float otherX = counts[at(Reading::levelX)] ? by.levelX : 0;
    const bool turns = by.azimuth > turnedBy || by.elevation > turnedBy || by.sight > turnedBy;
    switch (reading) {
    case Reading::azimuth:
        run.moved = run.moved || turns;
        run.movedFar = run.movedFar || by.sight > sightTurnedFar;
        break;
    case Reading::elevation: {
        const float levels = std::max(otherX, by.levelY);
        const bool tilts = std::max(by.sightRise, levels) > tiltedBy;
        run.moved = run.moved || (turns && tilts) || levels > tiltedFar;
        run.movedFar = run.movedFar || (by.sight > sightTurnedFar && tilts);
        break;
    }
    case Reading::levelX:
    case Reading::levelY: {
        const float other = reading == Reading::levelX ? by.levelY : otherX;
        const float tilt = std::max(by.tilt(), other);
        run.moved = run.moved || (turns && tilt > tiltedBy) || other > tiltedFar;
        run.movedFar = run.movedFar || tilt > tiltedFar;
        break;
    }
    default:
        run.moved = run.moved || turns;
        break;
    }
}

void Repeats::endRun(Series& series) {
    Run& run = series.run;
    if (run.rows >= fewestRows && run.moved) {
        if (series.kept.rows == 0)
            series.kept.first = run.first;
        series.kept.rows += run.rows;
    } else {
        series.repeats += run.rows - 1;
    }
    run.rows = 1;
    run.moved = run.movedFar = false;
}

void Repeats::extend(Run& run, Reading reading, const Attitude& now) const {
    if (++run.rows == 2) {
        run.first = lastPlace;
        run.start = now;
    } else if (run.rows % looksEvery == 0) {
        look(run, reading, now);
    }
}

void Repeats::add(const KIV_RAWINFO& raw, const Attitude& now, Place place) {
    const auto take = [&](Reading reading, bool same) {
        Series& series = all[at(reading)];
        if (same && begun && counts[at(reading)])
            return extend(series.run, reading, now);
        ++series.changes;
        if (series.run.rows > 1)
            endRun(series);
    };
    take(Reading::azimuth, raw.azimuthRaw == last.azimuthRaw);
    take(Reading::elevation, raw.elevationRaw == last.elevationRaw);
    take(Reading::levelX, raw.levelXRaw == last.levelXRaw);
    take(Reading::levelY, raw.levelYRaw == last.levelYRaw);
    take(Reading::temperature, raw.temperature == last.temperature);
    take(Reading::vector, raw.vector[0] == last.vector[0] && raw.vector[1] == last.vector[1]
                              && raw.vector[2] == last.vector[2]);
    last = raw;
    lastPlace = place;
    begun = true;
}

std::optional<Repeats::Found> Repeats::found(Reading reading) const {
    Series series = all[at(reading)];
    if (series.changes <= 1 && series.run.rows >= fewestRows && series.run.movedFar)
        return Found{series.run.first, series.run.rows};
    endRun(series);
    const bool lively = series.changes >= fewestChanges && series.changes >= 9 * series.repeats;
    return lively && series.kept.rows > 0 ? std::optional(series.kept) : std::nullopt;
}

} // namespace kiv::host
