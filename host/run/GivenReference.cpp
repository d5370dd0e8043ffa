#include "host/run/GivenReference.h"

#include <ostream>

#include "host/parameters/ParameterFile.h"
#include "host/rows/RowLoop.h"
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
    if (line == 0)
        input.showWarnings(streams.err);
    runner.expectRowsOf(parseParameterFileName(options.parameterFile)->id, input.table());
    MessageLimit limit(options.format.mostMessages, streams.err);
    Table& table = input.table();
    bool tried = false; // the line that was asked for
    bool found = false;
    const auto next = [&] { return input.nextRow(); };
    forEachRow(input, next, [&](bool) {
        if (line > 0 && table.lineNumber() < line)
            return true;
        tried = line > 0;
        if (tried && table.lineNumber() > line) {
            streams.err << input.name() << ':' << line << ":1: expected " << expectedRow
                        << ", found a blank row\n";
            return false;
        }
        runner.run(table, given.result);
        found = given.result.state == RowState::reference;
        if (tried && !found) { // which ends the run
            table.reportRow(expectedRow, wordsOf(given.result.reason).text, {});
            show(table.messages(), streams.err);
        } else if (!found) {
            limit.take(table.messages());
        }
        return !tried && !found;
    });
    if (tried && !found)
        return false;
    limit.reportOthers(input.name());
    if (found) {
        given.table = input.name();
        given.line = table.lineNumber();
        if (line == 0 && input.rowMayBeCut()) { // else the run says so
            given.mayBeCut = true;
            input.reportEnd(streams.err);
        }
        for (LineBlock rest; hash && input.nextBlock(rest);) { // the digest is that of all
        }
        return true;
    }
    if (!input.reportEnd(streams.err))
        return false;
    streams.err << input.name() << ':' << table.lineNumber() + 1 << ":1: expected " << expectedRow
                << (line > 0 ? " in line " + std::to_string(line) : "") << ", found end of file\n";
    return false;
}

} // namespace kiv::host
