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
        : azimuth(std::abs(turned(to.azimuth, from.azimuth))),
          elevation(std::abs(turned(to.elevation, from.elevation))),
          sight(2 * degrees * std::asin(std::min(1.0F, chord(to.sight, from.sight) / 2))),
          sightRise(degrees
                    * std::abs(std::asin(std::clamp(to.sight[2], -1.0F, 1.0F))
                               - std::asin(std::clamp(from.sight[2], -1.0F, 1.0F)))),
          levelX(std::abs(to.levelX - from.levelX)), levelY(std::abs(to.levelY - from.levelY)) {}

    // As the elevation shows it that the line of sight has no part in.
    float tilt() const { return std::abs(elevation - sightRise); }
};

} // namespace

void Repeats::look(Run& run, Reading reading, const Attitude& now) const {
    const Moved by(run.start, now);
    const float otherX = counts[levelX] ? by.levelX : 0;
    const bool turns = by.azimuth > turnedBy || by.elevation > turnedBy || by.sight > turnedBy;
    switch (reading) {
    case azimuth:
        run.moved = run.moved || turns;
        run.movedFar = run.movedFar || by.sight > sightTurnedFar;
        break;
    case elevation: {
        const bool tilts = std::max({by.sightRise, otherX, by.levelY}) > tiltedBy;
        run.moved = run.moved || (turns && tilts);
        run.movedFar = run.movedFar || (by.sight > sightTurnedFar && tilts);
        break;
    }
    case levelX:
    case levelY: {
        const float other = reading == levelX ? by.levelY : otherX;
        const float tilt = std::max(by.tilt(), other);
        run.moved = run.moved || (turns && tilt > tiltedBy) || other > tiltedFar;
        run.movedFar = run.movedFar || tilt > tiltedFar;
        break;
    }
    case temperature:
    case vector:
        run.moved = run.moved || turns;
        break;
    }
}

void Repeats::end(Series& series) {
    const Run& run = series.run;
    if (run.rows >= fewestRows && run.moved) {
        if (series.kept.rows == 0)
            series.kept.first = run.first;
        series.kept.rows += run.rows;
    } else if (run.rows > 0) {
        series.repeats += run.rows - 1;
    }
}

inline void Repeats::addTo(Series& series, Reading reading, bool same, const Attitude& now,
                           Place place) {
    Run& run = series.run;
    if (!same) {
        if (run.rows > 1)
            end(series);
        ++series.changes;
        run.first = place;
        run.rows = 1;
        run.moved = false;
        run.movedFar = false;
        return;
    }
    if (++run.rows == 2)
        run.start = now;
    else if (run.rows % looksEvery == 0)
        look(run, reading, now);
}

void Repeats::add(const KIV_RAWINFO& raw, const Attitude& now, Place place) {
    const auto take = [&](Reading reading, bool same) {
        if (counts[reading])
            addTo(all[reading], reading, begun && same, now, place);
    };
    take(azimuth, raw.azimuthRaw == last.azimuthRaw);
    take(elevation, raw.elevationRaw == last.elevationRaw);
    take(levelX, raw.levelXRaw == last.levelXRaw);
    take(levelY, raw.levelYRaw == last.levelYRaw);
    take(temperature, raw.temperature == last.temperature);
    take(vector, std::equal(raw.vector, raw.vector + 3, last.vector));
    last = raw;
    begun = true;
}

std::optional<Repeats::Found> Repeats::found(Reading reading) const {
    Series series = all[reading];
    if (series.changes <= 1 && series.run.rows >= fewestRows && series.run.movedFar)
        return Found{series.run.first, series.run.rows};
    end(series);
    const bool lively = series.changes >= fewestChanges && series.changes >= 9 * series.repeats;
    return lively && series.kept.rows > 0 ? std::optional(series.kept) : std::nullopt;
}

} // namespace kiv::host
