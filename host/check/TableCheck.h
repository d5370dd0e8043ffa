#pragma once

#include <array>
#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "KIVInterface/CKiv.h"
#include "KIVInterface/CKivPrm.h"
#include "host/base/Cli.h"
#include "host/check/TimeSteps.h"
#include "host/mistakes/MistakeSearch.h"
#include "host/rows/RowResult.h"
#include "host/summary/Summary.h"
#include "host/witnesses/Witness.h"
#include "params/Parser.h"

namespace kiv::host {

struct ExaminedFile;

// The sensor by which tables are checked.
struct CheckedSensor {
    std::string file; // its parameter file, as messages show it
    int mountMode = 0;
    CKiv sensor;
    F_VECTOR4 levelLimits{};
    CKivPrm record;
    ParsedFile parsed;
    std::int32_t serialNumber = 0;
    std::optional<Uncertainties> uncertainties; // of its readings
};

// Of a parameter file without errors; null, and a message, where a sensor does not take it.
std::unique_ptr<CheckedSensor> sensorOf(const std::string& path, const ExaminedFile& examined,
                                        std::ostream& err);

// A reading's ends; the least is above the largest where there are no values.
struct Range {
    float least = INFINITY;
    float largest = -INFINITY;

    void add(float value) {
        least = value < least ? value : least;
        largest = value > largest ? value : largest;
    }
    bool there() const { return least <= largest; }
};

// What a table of readings shows without its results being of interest: one recording by itself.
struct TableCheck {
    std::string file;          // as messages show it
    std::string parameterFile; // in front of it
    int mountMode = 0;
    std::vector<std::string> columnsRead; // as the table names them, in its order
    std::vector<std::string> columnsNotRead;
    Summary summary{false};
    std::vector<Witness> witnesses;
    std::optional<MistakeSearch> mistakes; // where there is something to go by

    static constexpr std::array<Field, 9> ranged{
        Field::x,      Field::y,      Field::z,           Field::azimuth,  Field::elevation,
        Field::levelX, Field::levelY, Field::temperature, Field::refMetric};
    std::array<Range, ranged.size()> ranges; // raw, of rows that are not refused

    std::string timeColumn; // as the table names it; empty: there is none
    bool timeOfDay = false; // no seconds
    TimeSteps time;
    bool brokenOff = false; // reading, before the end

    // Some of the table is not good in any case, or where warnings count.
    bool faulty(bool strict) const;
    // Warnings alone.
    std::size_t warnings() const;
};

// Nothing, and messages, where the table cannot be read as one of readings.
std::optional<TableCheck> checkTable(const std::string& file, const TableFormat& format,
                                     const CheckedSensor& by, const Streams& streams);

// Whether a file's first row is that of a table rather than a parameter file's first title: it has
// names of readings' columns, or as many cells. What can be read only once is not looked into.
bool looksLikeTable(const std::string& file, const TableFormat& format);

} // namespace kiv::host
