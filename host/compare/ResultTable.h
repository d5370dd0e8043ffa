#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "host/compare/Difference.h"
#include "host/rows/TableInput.h"

namespace kiv::host {

// How rows of two tables belong together.
struct Join {
    enum class By : unsigned char { line, time, column };
    By by = By::line;
    std::string column;          // its name, or that of the column of the time
    std::optional<bool> zoned{}; // whether the first time had a zone, which all must have then
};

// A row of a table of results.
struct ResultRow {
    std::size_t line = 0;
    double order = 0; // the line, or the time in seconds, which rises
    std::string key;  // the cell that rows are joined by; by line that of the time
    std::optional<Orientation> orientation;
};

// The rows of a table of results or of poses, one after the other.
class ResultTable {
public:
    ResultTable(const TableFormat& format, const Streams& own)
        : streams(own), input(angleColumns, format), limit(format.mostMessages, own.err) {}

    // False, and messages, when the table cannot be read so. The column of the time is found here.
    bool open(const std::string& file, Join& join, Sha256* hash = nullptr);
    // False at the end, and where reading ends with a message.
    bool next(ResultRow& row);
    // Shows what was wrong with rows; false where not all could be read.
    bool finish();

    const std::string& name() const { return input.name(); }
    const Table& table() const { return input.table(); }
    bool allUsed() const { return refused == 0; } // no row was refused

    // Says at the row what is wrong with its key; nothing is read behind it.
    void refuseKey(std::string_view expected, std::string_view found);

private:
    static constexpr std::array<std::string_view, 3> angleColumns{"rx_deg", "ry_deg", "rz_deg"};

    bool readRow(ResultRow& row);
    bool readKey(ResultRow& row);

    const Streams& streams;
    TableInput input;
    MessageLimit limit;
    Join* how = nullptr; // of both tables
    std::optional<std::size_t> keyPlace;
    std::array<std::optional<std::size_t>, 3> uncertainties;
    double last = 0;
    bool any = false; // row with a time
    std::size_t refused = 0;
    bool ended = false; // with a message
};

} // namespace kiv::host
