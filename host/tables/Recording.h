#pragma once

#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "host/tables/TableInput.h"

namespace kiv::host {

// Tables with the same columns, one after the other. Files are open only in their turn.
class Recording {
public:
    // Columns of readings; of results no table may have one.
    Recording(const std::vector<std::string>& tableFiles, const TableFormat& asked,
              const Streams& own)
        : files(tableFiles), format(asked), streams(own) {}

    // False, and messages, when one cannot be read or has other columns than the first. The hash
    // takes in the first one.
    bool open(std::span<const std::string_view> results, Sha256* hash);

    const Table& table() const { return tables[0]->table(); } // for the columns of all
    std::string name() const;
    bool hasSeveral() const { return files.size() > 1; }
    std::uintmax_t size() const { return bytes; } // 0 where unknown

    bool startWaits() const { return tables[0]->wouldWait(); }
    // False behind the last table, or where one cannot be read on.
    bool nextBlock(Block& block);

    bool brokenOff() const { return broken; }
    // Ends a run: false, and a message, where not all was read; warnings of cut last rows.
    bool reportEnd(std::ostream& err);

private:
    bool openTable(std::size_t i, const Streams& own, Sha256* hash);

    const std::vector<std::string>& files;
    const TableFormat& format;
    const Streams& streams;
    std::span<const std::string_view> reserved;
    std::vector<std::unique_ptr<TableInput>> tables; // null: not open now
    std::size_t current = 0;
    std::uintmax_t bytes = 0;
    bool broken = false;
    std::ostringstream ends; // messages about ends and starts of tables, shown behind those of rows
};

} // namespace kiv::host
