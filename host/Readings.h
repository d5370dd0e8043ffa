#pragma once

#include <array>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "host/Csv.h"
#include "sensor/Records.h"

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

// True angles that a simulation adds, in the order rx, ry, rz.
inline constexpr std::array<std::string_view, 3> truthColumns{"true_rx_deg", "true_ry_deg",
                                                              "true_rz_deg"};

// A CSV table of readings: columns by name in any order, all others carried along as they stand.
class ReadingsTable {
public:
    ReadingsTable(std::istream& in, std::string shownName, std::ostream& messages);

    // False, and messages, when a column is missing, stands twice, or has a name in reserved.
    bool readHeader(const std::vector<std::string_view>& reserved);

    // False at the end of the table, or when reading broke off (see failed).
    bool nextRow() { return csv.nextRow(); }

    // The row's readings; false, and messages, when one of them is no use.
    bool readings(KIV_RAWINFO& raw);

    // True angles in degrees where the table has them and they are numbers.
    bool truth(std::array<double, 3>& angles) const;

    void appendCarriedNames(std::string& text) const; // each with a comma behind it
    void appendCarriedCells(std::string& text) const;

    void report(std::size_t cell, std::string_view expected, std::string_view found) const;
    bool failed() const { return csv.failed(); }
    bool wouldWait() const { return csv.wouldWait(); }
    std::size_t lineNumber() const { return csv.lineNumber(); }

private:
    std::size_t columnOf(Field field) const { return columns[static_cast<std::size_t>(field)]; }
    bool readNumber(Field field, float& value) const;

    CsvReader csv;
    std::string name;
    std::ostream& err;
    std::size_t width = 0;
    std::array<std::size_t, readingColumns.size()> columns{};
    std::vector<std::size_t> carried;
    std::vector<std::string> carriedNames;
    std::vector<std::size_t> truthAt; // all three or none
};

} // namespace kiv::host
