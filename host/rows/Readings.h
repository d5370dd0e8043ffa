#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "KIVInterface/Records.h"
#include "host/rows/Table.h"
#include "judged/Reason.h"

namespace kiv::host {

enum class Field : unsigned char {
    status,
    x,
    y,
    z,
    azimuth,
    elevation,
    levelX,
    levelY,
    temperature,
    refMetric,
    refBlocked,
};

// Columns of a table of readings, in the order in which they are written. Angles are degrees.
inline constexpr std::array<std::string_view, 11> readingColumns{
    "status",  "x",       "y",           "z",          "azimuth_deg", "elevation_deg",
    "level_x", "level_y", "temperature", "ref_metric", "ref_blocked"};

// The readings of a row of a table with these columns, or why they are no use; then also messages.
Reason readReadings(Table& table, KIV_RAWINFO& raw);

// The sensor that a table says its rows are of, in a column that may be there.
inline constexpr std::string_view sensorColumn = "sensor_id";

// True angles that a simulation adds as further columns, in the order rx, ry, rz.
inline constexpr std::array<std::string_view, 3> truthColumns{"true_rx_deg", "true_ry_deg",
                                                              "true_rz_deg"};

// The column of the temperature, which poses may have, too.
inline constexpr std::string_view temperatureColumn = readingColumns[8];

// The column of the time stamp, in seconds.
inline constexpr std::string_view timeColumn = "time_s";
// The column of the time stamp as a date and a time of day.
inline constexpr std::string_view timeStampColumn = "time";

// Whether a row is of the sensor whose parameter file is used.
class Owner {
public:
    Owner(const Table& table, std::int32_t serialNumber)
        : place(table.find(sensorColumn)), id(serialNumber) {}

    // False, and a message, where the row has the number of another one.
    bool owns(Table& table) const;

private:
    std::optional<std::size_t> place;
    std::int32_t id;
};

class Truth {
public:
    // Nothing is comparable where the results are not in machine coordinates; then no row has
    // angles.
    Truth(const Table& table, bool comparable);

    bool comparable() const { return places[0] && places[1] && places[2]; }

    // Degrees, where the row has all three.
    std::optional<std::array<double, 3>> angles(const Table& table) const;

private:
    std::array<std::optional<std::size_t>, 3> places;
};

} // namespace kiv::host
