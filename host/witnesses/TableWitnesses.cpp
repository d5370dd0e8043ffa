#include "host/witnesses/TableWitnesses.h"

#include <algorithm>
#include <cmath>

#include "host/rows/RowResult.h"
#include "host/witnesses/Fillers.h"

namespace kiv::host {

namespace {

constexpr std::array<std::string_view, readingCount> columnNames{
    "azimuth_deg", "elevation_deg", "level_x", "level_y", "temperature", "vector"};
constexpr int orientationStatus = 2;
constexpr double day = 86400;          // seconds
constexpr double aroundMidnight = 600; // seconds that may be missing on both sides together
constexpr float turnInRadians = 6.3F;
constexpr float mostOfATurn = 5.5F; // radians
constexpr std::size_t fewestRowsInRadians = 100;

std::array<bool, readingCount> countedOf(const WatchedSensor& sensor) {
    return {true, true, sensor.levelX.read, sensor.levelY.read, sensor.temperature, true};
}

} // namespace

TableWitnesses::TableWitnesses(const WatchedSensor& watched, std::size_t number)
    : sensor(watched), table(number), jumps(countedOf(watched)), repeats(countedOf(watched)) {}

void TableWitnesses::Count::add(Place place) {
    if (rows++ == 0)
        first = place;
}

// Repeated stamps and pauses are none; a stamp with a zone and one without cannot be compared.
void TableWitnesses::watchClock(const RowPlaces& places, Place place) {
    if (!places.time || (lastTime && lastTime->zoned != places.time->zoned))
        return;
    if (lastTime && places.time->seconds < lastTime->seconds) {
        const double back = lastTime->seconds - places.time->seconds;
        overMidnight = overMidnight && lastTime->seconds <= day && places.time->seconds >= 0
                       && std::abs(back - day) < aroundMidnight;
        clock.add(place);
    }
    lastTime = places.time;
}

// Most rows have none, as one look shows.
inline bool TableWitnesses::countFillers(const KIV_RAWINFO& raw, Place place) {
    const std::array<float, 2> angles{raw.azimuthRaw, raw.elevationRaw};
    const float(&v)[3] = raw.vector;
    const float largest = std::max({std::abs(angles[0]), std::abs(angles[1]),
                                    std::abs(raw.levelXRaw), std::abs(raw.levelYRaw)});
    if (largest >= leastFiller || v[0] == v[1] || isFillerOfTemperature(raw.temperature))
        if (countAnyFillers(raw, place))
            return true;
    lastAngles = angles;
    return false;
}

// An encoder that has counted its turns up to such a number has been near it before.
bool TableWitnesses::countAnyFillers(const KIV_RAWINFO& raw, Place place) {
    const float(&v)[3] = raw.vector;
    const auto ofAngle = [&](float angle, float before) {
        return mayBeFiller(angle) && std::abs(angle - before) >= 360;
    };
    const std::array<bool, readingCount> are{
        ofAngle(raw.azimuthRaw, lastAngles[0]),
        ofAngle(raw.elevationRaw, lastAngles[1]),
        sensor.levelX.read && isFillerOfLevel(raw.levelXRaw, sensor.levelX),
        sensor.levelY.read && isFillerOfLevel(raw.levelYRaw, sensor.levelY),
        sensor.temperature && isFillerOfTemperature(raw.temperature),
        v[0] == v[1] && v[1] == v[2] && mayBeFiller(v[0])};
    for (std::size_t i = 0; i < are.size(); ++i)
        if (are[i])
            fillers[i].add(place);
    return std::find(are.begin(), are.end(), true) != are.end();
}

bool TableWitnesses::countBeyond(const KIV_RAWINFO& raw, const KIV_INFO& info, Place place) {
    const bool ofAzimuth = sensor.azimuth.beyond(raw.azimuthRaw, info.azimuth);
    const bool ofElevation = sensor.elevation.beyond(raw.elevationRaw, info.elevation);
    if (ofAzimuth)
        beyond[at(Reading::azimuth)].add(place);
    if (ofElevation)
        beyond[at(Reading::elevation)].add(place);
    return ofAzimuth || ofElevation;
}

void TableWitnesses::watchAzimuth(const KIV_RAWINFO& raw, Place place) {
    leastAzimuth = std::min(leastAzimuth, raw.azimuthRaw);
    largestAzimuth = std::max(largestAzimuth, raw.azimuthRaw);
    quadrants[(raw.vector[0] < 0 ? 1U : 0U) + (raw.vector[1] < 0 ? 2U : 0U)] = true;
    counted.add(place);
}

bool TableWitnesses::inRadians() const {
    return counted.rows >= fewestRowsInRadians && largestAzimuth - leastAzimuth > mostOfATurn
           && leastAzimuth >= -turnInRadians && largestAzimuth <= turnInRadians
           && std::all_of(quadrants.begin(), quadrants.end(), [](bool been) { return been; });
}

// Behind a row of names another recording begins.
bool TableWitnesses::add(const RowResult& result, const RowPlaces& places, std::size_t row) {
    const Place place{places.line, row};
    if (places.namesAgain) {
        joins.add(place);
        lastTime.reset();
    }
    watchClock(places, place);
    const KIV_RAWINFO& raw = result.raw;
    const bool watched = result.state != RowState::refused && raw.status == orientationStatus;
    const bool filled = watched && countFillers(raw, place);
    if (!watched || filled) {
        jumps.interrupt();
        return !filled;
    }
    const bool outside = countBeyond(raw, result.info, place);
    watchAzimuth(raw, place);
    const Attitude now(raw, result.info);
    repeats.add(raw, now, place);
    if (const auto found = jumps.add(now, !outside)) {
        if (found->back)
            spikes[std::min(at(found->reading), at(Reading::vector))].add(lastPlace);
        else if (found->reading == Reading::distance)
            otherTargets.add(lastPlace);
    }
    lastPlace = place;
    return true;
}

std::vector<Witness> TableWitnesses::finished() const {
    std::vector<Witness> all;
    const auto take = [&](WitnessKind kind, std::string_view column, const Count& count) {
        if (count.rows > 0)
            all.push_back({kind, column, table, count.first.line, count.rows, count.first.row});
    };
    const auto takeColumns = [&](WitnessKind kind, const std::array<Count, readingCount>& counts) {
        for (std::size_t i = 0; i < readingCount; ++i)
            take(kind, columnNames[i], counts[i]);
    };
    for (std::size_t i = 0; i < readingCount; ++i)
        if (const auto found = repeats.found(static_cast<Reading>(i)))
            take(WitnessKind::stuck, columnNames[i], {found->first, found->rows});
    takeColumns(WitnessKind::spike, spikes);
    take(WitnessKind::otherTarget, columnNames[at(Reading::vector)], otherTargets);
    if (inRadians())
        take(WitnessKind::radians, columnNames[at(Reading::azimuth)], counted);
    takeColumns(WitnessKind::beyondRange, beyond);
    take(WitnessKind::clock, "", clock);
    if (clock.rows > 0)
        all.back().overMidnight = overMidnight;
    take(WitnessKind::joined, "", joins);
    takeColumns(WitnessKind::filler, fillers);
    return all;
}

} // namespace kiv::host
