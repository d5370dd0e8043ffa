#include "host/tables/TableInput.h"

#include <ostream>

namespace kiv::host {

namespace {

void tellAll(std::span<const Message> messages, std::ostream& err) {
    for (const Message& message : messages)
        err << message.text;
}

} // namespace

bool TableInput::open(const std::string& file, std::span<const std::string_view> reserved,
                      const Streams& streams, Sha256* hash) {
    if (!input.open(file, streams, hash))
        return false;
    blocks.emplace(input.stream(), input.name(), format.blockBytes);
    if (!read(block)) {
        streams.err << name() << ":1:1: expected a row of column names, found "
                    << (blocks->failed() ? "a file that cannot be read" : "end of file") << '\n';
        return false;
    }
    rows.start(block);
    if (rows.readHeader(reserved))
        return true;
    tellAll(rows.messages(), streams.err);
    return false;
}

// A file never waits, not even where it ends for now.
bool TableInput::read(Block& next) {
    const bool found = blocks->next(next);
    next.inputWouldWait = next.inputWouldWait && input.size() == 0;
    return found;
}

bool TableInput::hasColumnsOf(const TableInput& first, std::ostream& err) {
    if (rows.hasColumnsOf(first.rows, first.name()))
        return true;
    tellAll(rows.messages(), err);
    return false;
}

bool TableInput::nextRow() {
    while (!rows.nextRow()) {
        if (!read(block))
            return false;
        rows.start(block);
    }
    return true;
}

bool TableInput::finish(const MessageLimit& limit, Output& output, std::ostream& err) const {
    limit.reportOthers(name());
    const bool readAll = reportEnd(err);
    return output.finish(err) && readAll;
}

bool TableInput::nextBlock(Block& next) {
    if (byBlock || rows.rest().empty())
        return read(next);
    byBlock = true;
    next = block;
    next.text = rows.rest();
    next.firstLine = rows.lineNumber() + 1;
    return true;
}

} // namespace kiv::host
