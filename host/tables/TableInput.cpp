#include "host/tables/TableInput.h"

#include <ostream>

namespace kiv::host {

bool TableInput::open(const std::string& file, std::span<const std::string_view> columns,
                      std::span<const std::string_view> reserved, const TableFormat& format,
                      const Streams& streams, Sha256* hash) {
    if (!input.open(file, streams, hash))
        return false;
    rows.emplace(input.stream(), input.name(), streams.err, columns, format);
    return rows->readHeader(reserved);
}

bool TableInput::finish(Output& output, std::ostream& err) const {
    rows->reportEnd();
    const bool readAll = !rows->failed();
    if (!readAll)
        err << input.name() << ':' << rows->lineNumber() + 1
            << ":1: expected to read on, found a read error\n";
    return output.finish(err) && readAll;
}

} // namespace kiv::host
