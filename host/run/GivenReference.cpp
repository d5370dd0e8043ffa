#include "host/run/GivenReference.h"

#include <ostream>

#include "host/rows/TableInput.h"

namespace kiv::host {

namespace {

constexpr const char* expectedRow = "a row that can become the reference";

} // namespace

bool takeReference(const ReadingsOptions& options, RowRunner& runner, const Streams& streams,
                   GivenReference& given, Sha256* hash) {
    const std::size_t line = options.referenceLine;
    if (line == 0 && options.referenceFile.empty())
        return true;
    const std::string& file = line > 0 ? options.readings[0] : options.referenceFile;
    TableInput input(readingColumns, options.format);
    if (!input.open(file, {}, streams, line > 0 ? nullptr : hash))
        return false;
    MessageLimit limit(options.format.mostMessages, streams.err);
    Table& table = input.table();
    while (input.nextRow()) {
        if (line > 0 && table.lineNumber() != line)
            continue;
        runner.run(table, given.result);
        if (given.result.state == RowState::reference) {
            given.table = input.name();
            given.line = table.lineNumber();
            limit.reportOthers(input.name());
            for (LineBlock rest; hash && input.nextBlock(rest);) {
            }
            return true;
        }
        if (line > 0)
            table.reportRow(expectedRow, wordsOf(given.result.reason).text);
        limit.take(table.messages());
        if (line > 0)
            return false;
    }
    limit.reportOthers(input.name());
    if (!input.reportEnd(streams.err))
        return false;
    streams.err << input.name() << ':' << table.lineNumber() + 1 << ":1: expected " << expectedRow
                << (line > 0 ? " in line " + std::to_string(line) : "") << ", found end of file\n";
    return false;
}

} // namespace kiv::host
