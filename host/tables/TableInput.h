#pragma once

#include <optional>

#include "host/Files.h"
#include "host/tables/Table.h"

namespace kiv::host {

// A table in a file, or on the tool's own input.
class TableInput {
public:
    // False, and messages, when the file cannot be read or its row of names is not as asked for.
    bool open(const std::string& file, std::span<const std::string_view> columns,
              std::span<const std::string_view> reserved, const TableFormat& format,
              const Streams& streams, Sha256* hash = nullptr);

    Table& table() { return *rows; }
    const Table& table() const { return *rows; }
    const std::string& name() const { return input.name(); }
    std::uintmax_t size() const { return input.size(); } // bytes, 0 where unknown

    // Ends a run: false, and a message, when the table could not be read to its end or the output
    // not be written.
    bool finish(Output& output, std::ostream& err) const;

private:
    Input input;
    std::optional<Table> rows;
};

} // namespace kiv::host
