#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "host/base/Files.h"
#include "host/rows/LineBlocks.h"
#include "host/rows/Table.h"

namespace kiv::host {

// A table in a file, or on the tool's own input.
class TableInput {
public:
    TableInput(std::span<const std::string_view> columns, const TableFormat& asked)
        : format(asked), rows(columns, asked) {}

    // False, and messages, when the file cannot be read or its row of names is not as asked for.
    bool open(const std::string& file, std::span<const std::string_view> reserved,
              const Streams& streams, Sha256* hash = nullptr);

    void showWarnings(std::ostream& err) const { show(rows.messages(), err); } // once it is open

    Table& table() { return rows; } // at its row of names, then where nextRow has taken it
    const Table& table() const { return rows; }
    const std::string& name() const { return input.name(); }
    std::uintmax_t size() const { return input.size(); } // bytes, 0 where unknown

    // The lines behind the row of names, block by block; false at the end.
    bool nextBlock(LineBlock& next);

    // The same blocks row by row; false at the end.
    bool nextRow();
    bool rowMayBeCut() const { return block.mayBeCut; } // the last one, which has no end
    bool wouldWait() const { return rows.rest().empty() && block.inputWouldWait; }
    // Ends such a run of rows: false, and a message, where reading broke off; a warning of a cut
    // last row.
    bool reportEnd(std::ostream& err) const;
    // The same and more: false, and a message, when the table was not read to its end or the output
    // not written; shows how many messages were too many.
    bool finish(const MessageLimit& limit, Output& output, std::ostream& err) const;

    // False, and a message, when the names are not the same. The table then has the first one's
    // order.
    bool followColumnsOf(const TableInput& first, std::ostream& err);

    // False, and a message, when a column is missing that is said to have another name; also one
    // that can be missing.
    bool hasRenamedColumns(std::ostream& err) const;

private:
    bool readBlock(LineBlock& next);
    void readHead();

    const TableFormat& format;
    Input input;
    std::optional<LineBlockReader> blocks;
    LineBlock head;         // with the row of names
    bool headGiven = false; // what is behind that row
    LineBlock block;        // of the row
    bool broken = false;
    std::string ends; // what was said of the end
    Table rows;
};

} // namespace kiv::host
