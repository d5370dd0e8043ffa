#include "host/tables/GivenReference.h"

#include <ostream>

#include "host/tables/TableInput.h"

namespace kiv::host {

namespace {

constexpr const char* expectedRow = "a row that can become the reference";

} // namespace

bool takeReference(const ReadingsOptions& options, RowRunner& runner, const Streams& streams,
                   std::optional<RowResult>& ownRow) {
    const std::size_t line = options.referenceLine;
    if (line == 0 && options.referenceFile.empty())
        return true;
    const std::string& file = line > 0 ? options.readings[0] : options.referenceFile;
    std::error_code ignored;
    if (line > 0 && !std::filesystem::is_regular_file(pathOf(file), ignored)) {
        streams.err
            << "kiv: expected a file for --reference-line, found one that is read only once\n";
        return false;
    }
    TableInput input(readingColumns, options.format);
    if (!input.open(file, {}, streams))
        return false;
    MessageLimit limit(options.format.mostMessages, streams.err);
    Table& table = input.table();
    RowResult result;
    while (input.nextRow()) {
        if (line > 0 && table.lineNumber() != line)
            continue;
        runner.run(table, result);
        if (result.state == RowState::reference) {
            if (line > 0)
                ownRow = result;
            return true;
        }
        if (line > 0)
            table.reportRow(expectedRow, wordsOf(result.reason).text);
        limit.take(table.messages());
        if (line > 0)
            return false;
    }
    limit.reportOthers(input.name());
    streams.err << input.name() << ':' << table.lineNumber() + 1 << ":1: expected " << expectedRow
                << (line > 0 ? " in line " + std::to_string(line) : "") << ", found end of file\n";
    return false;
}

} // namespace kiv::host
