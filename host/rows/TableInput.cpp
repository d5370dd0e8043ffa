#include "host/rows/TableInput.h"

#include <filesystem>
#include <ostream>

#include "host/base/FileKind.h"
#include "host/base/Interrupt.h"
#include "host/rows/TableFolder.h"
#include "params/Quoted.h"

namespace kiv::host {

// A file never waits, not even where it ends for now.
bool TableInput::readBlock(LineBlock& next) {
    const bool found = blocks->next(next);
    next.inputWouldWait = next.inputWouldWait && input.size() == 0;
    return found;
}

// As far as the row of names, which may have lines above it.
void TableInput::readHead() {
    std::size_t seen = 0; // of the text: lines above the row of names
    const auto complete = [&] {
        const std::string_view text = head.text;
        for (std::size_t end; (end = text.find('\n', seen)) != text.npos; seen = end + 1)
            if (!isAboveNames(text.substr(seen, end - seen)))
                return true;
        return false;
    };
    for (LineBlock next; !complete() && !head.brokenOff && readBlock(next);) {
        head.text += next.text;
        next.text.swap(head.text);
        next.firstLine = 1;
        std::swap(head, next);
    }
}

bool TableInput::open(const std::string& file, std::span<const std::string_view> reserved,
                      const Streams& streams, Sha256* hash) {
    std::error_code ignored;
    if (file != "-" && std::filesystem::is_directory(pathOf(file), ignored)) {
        streams.err << printable(file) << ": " << lookOfFolder(file) << '\n';
        return false;
    }
    if (!input.open(file, streams, hash))
        return false;
    blocks.emplace(input.stream(), input.name(), format.blockBytes, input.size());
    readHead();
    if (const std::string_view kind = otherKind(head.text); !kind.empty()) {
        streams.err << name() << ":1:1: expected a table as text, found " << kind << '\n';
        return false;
    }
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

bool TableInput::followColumnsOf(const TableInput& first, std::ostream& err) {
    if (rows.followColumnsOf(first.rows, first.name()))
        return true;
    show(rows.messages(), err);
    return false;
}

bool TableInput::hasRenamedColumns(std::ostream& err) const {
    for (const auto& [ours, theirs] : format.otherNames) {
        if (rows.find(ours))
            continue;
        err << name() << ":1:1: expected a column " << inQuotes(theirs) << " for " << ours
            << ", found none\n";
        return false;
    }
    return true;
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
