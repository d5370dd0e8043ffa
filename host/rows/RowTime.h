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
    std::optional<TimeStamp> of(const Table& row) const { return in(row, text(row)); }
    std::string_view text(const Table& row) const;
    // Of such a text, also of another row.
    std::optional<TimeStamp> in(const Table& row, std::string_view text) const;

private:
    std::optional<std::size_t> place;
    bool ofDay = false;
};

// The texts of two times show that the second is not before the first, as those in one format do as
// a rule. They are not read for it, which takes far longer.
bool risesAsText(std::string_view first, std::string_view second);

} // namespace kiv::host
