#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "host/rows/Readings.h"
#include "host/rows/RowTime.h"
#include "host/rows/Table.h"
#include "host/run/ComputedRow.h"

namespace kiv::host {

inline constexpr std::array<std::string_view, 4> resultRowColumns{"state", "rx_deg", "ry_deg",
                                                                  "rz_deg"};

// Reads rows of results, as kiv run and the Python package write them, back to what poses are made
// of. Without a column trust all rows with angles are used; without matrices, or where one is not
// complete, the angles count. What else is not there is no number.
class ResultRows {
public:
    ResultRows(const Table& table, bool localFrame); // at its row of names

    bool hasMatrices() const { return matrices; }
    bool hasTrust() const { return trust.has_value(); }
    bool hasUncertainties() const { return uncertainty[0] && uncertainty[1] && uncertainty[2]; }
    bool hasTruth() const { return truth.comparable(); }

    // The row where the table stands; what is wrong with it is reported there, and the row refused.
    void read(Table& table, ComputedRow& row) const;

private:
    using Place = std::optional<std::size_t>;

    bool local;
    bool matrices = true; // all nine columns
    std::array<Place, 9> matrix;
    std::array<Place, 5> reading; // corrected readings and temperature
    std::array<Place, 3> uncertainty;
    Place trust;
    Truth truth;
    RowTime time;
};

} // namespace kiv::host
