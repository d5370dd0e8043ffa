#pragma once

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "KIVInterface/Records.h"
#include "host/rows/TimeStamp.h"
#include "host/witnesses/WatchedSensor.h"
#include "host/witnesses/Witness.h"

namespace kiv::host {

class TableWitnesses;
struct RowResult;

// Where a row stands, and what of it is no reading.
struct RowPlaces {
    std::size_t table = 0; // of several, from 0
    std::size_t line = 0;
    std::optional<TimeStamp> time;
    bool namesAgain = false; // a row of names, refused
};

// Watches the rows of a recording as they come, whatever they are taken for: what a person would
// see at a glance. Of rows that are refused, or have another status than 2, the time alone counts.
class Witnesses {
public:
    // The column of the time, where there is one, as the tool calls it.
    Witnesses(const CKivPrm& record, std::string_view ofTime);
    ~Witnesses();
    Witnesses(const Witnesses&) = delete;
    Witnesses& operator=(const Witnesses&) = delete;

    // False for a row that has a filler in place of a reading.
    bool add(const RowResult& result, const RowPlaces& places);
    // Behind the last row.
    void finish();

    std::span<const Witness> found() const { return all; } // once it is finished, table by table

private:
    WatchedSensor sensor;
    std::string_view timeName;
    std::unique_ptr<TableWitnesses> current; // of the table of the last row
    std::size_t currentTable = 0;
    std::size_t rows = 0;
    std::vector<Witness> all;
};

// A line for each of some, the first ones in full, each with the name of its table as messages show
// it.
void print(std::span<const Witness> found, const std::vector<std::string>& tables, std::size_t most,
           std::ostream& err);

} // namespace kiv::host
