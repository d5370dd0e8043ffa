#include "host/rows/TableInput.h"

#include <ostream>

#include "host/base/Interrupt.h"

namespace kiv::host {

// A file never waits, not even where it ends for now.
bool TableInput::readBlock(LineBlock& next) {
    const bool found = blocks->next(next);
    next.inputWouldWait = next.inputWouldWait && input.size() == 0;
    return found;
}

bool TableInput::open(const std::string& file, std::span<const std::string_view> reserved,
                      const Streams& streams, Sha256* hash) {
    if (!input.open(file, streams, hash))
        return false;
    blocks.emplace(input.stream(), input.name(), format.blockBytes, input.size());
    bool found = true;
    while (found && head.text.empty() && !head.brokenOff)
        found = readBlock(head);
    if (head.text.empty()) {
        streams.err << (head.brokenOff
                            ? head.said
                            : name() + ":1:1: expected a row of column names, found end of file\n");
        return false;
    }
    rows.start(head);
    if (rows.readHeader(reserved))
        return true;
    show(rows.messages(), streams.err);
    return false;
}

bool TableInput::hasColumnsOf(const TableInput& first, std::ostream& err) {
    if (rows.hasColumnsOf(first.rows, first.name()))
        return true;
    show(rows.messages(), err);
    return false;
}

bool TableInput::nextBlock(LineBlock& next) {
    if (headGiven)
        return readBlock(next);
    headGiven = true;
    next = head;
    next.text = rows.rest();
    next.firstLine = rows.lineNumber() + 1;
    return true;
}

bool TableInput::nextRow() {
    while (!rows.nextRow()) {
        const Interrupt::Waiting waiting(block.inputWouldWait);
        if (Interrupt::requested() || !nextBlock(block))
            return false;
        rows.start(block);
        ends += block.said;
        broken = broken || block.brokenOff;
    }
    return true;
}

bool TableInput::reportEnd(std::ostream& err) const {
    err << ends;
    return !broken;
}

bool TableInput::finish(const MessageLimit& limit, Output& output, std::ostream& err) const {
    limit.reportOthers(name());
    const bool readAll = reportEnd(err);
    return output.finish(err) && readAll;
}

} // namespace kiv::host
