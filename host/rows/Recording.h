#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/InputFacts.h"
#include "host/rows/TableInput.h"

namespace kiv::host {

// Tables with the same columns, in any order, one after the other. Files are looked at in advance,
// other inputs in their turn: what writes them may be writing those in front.
class Recording {
public:
    Recording(const std::vector<std::string>& tableFiles, const TableFormat& asked,
              const Streams& own)
        : files(tableFiles), format(asked), streams(own) {}

    // False, and messages, when a file is there twice, or the first table or a file cannot be read,
    // has a column of results, or other columns than the first. The facts are those of all tables,
    // complete once they have been read.
    bool open(std::span<const std::string_view> results, std::vector<TableFacts>* facts);

    const TableInput& first() const { return *tables[0]; }
    const Table& table() const { return first().table(); } // for the columns of all
    std::string name() const;
    bool hasSeveral() const { return files.size() > 1; }
    std::uintmax_t size() const { return bytes; } // 0 where unknown

    // False behind the last table. Before a table is opened that may wait, a block without lines
    // says so. What is wrong with a table then is said by its block.
    bool nextBlock(LineBlock& block);

    // Lets a copy of table() read such a block, with the columns where the block's table has them.
    void start(Table& cursor, const LineBlock& block) const;

private:
    bool openTable(std::size_t i, std::ostream& err, bool forRows);
    bool openInTurn(LineBlock& block);

    const std::vector<std::string>& files;
    const TableFormat& format;
    const Streams& streams;
    std::span<const std::string_view> reserved;
    std::vector<TableFacts>* facts = nullptr;
    std::vector<std::unique_ptr<TableInput>> tables; // null: not open now
    std::vector<Table::Places> stand;
    std::size_t current = 0;
    bool announced = false; // that the current one may wait
    std::uintmax_t bytes = 0;
};

} // namespace kiv::host
