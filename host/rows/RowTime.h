#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "host/rows/TimeStamp.h"

namespace kiv::host {

class Table;

// The time of a table's rows: that of the column time_s or, where there is none, time.
class RowTime {
public:
    explicit RowTime(const Table& table);

    bool there() const { return place.has_value(); }
    bool stamps() const { return ofDay; } // no numbers
    // As the tool calls it, the default where there is none.
    std::string_view column() const;

    // Nothing where the row has none.
    std::optional<TimeStamp> of(const Table& row) const;

private:
    std::optional<std::size_t> place;
    bool ofDay = false;
};

} // namespace kiv::host
