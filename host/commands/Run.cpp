#include "host/commands/Run.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/Files.h"
#include "host/rows/ResultChoice.h"
#include "host/rows/ResultColumns.h"
#include "host/run/ReadingsRun.h"
#include "judged/RowResults.h"

namespace kiv::host {

namespace {

constexpr auto resultNames = [] {
    std::array<std::string_view, resultColumns.size()> names;
    for (std::size_t i = 0; i < names.size(); ++i)
        names[i] = resultColumns[i].name;
    return names;
}();

constexpr auto isWord = [] {
    std::array<bool, resultColumns.size()> words{};
    for (const std::string_view name : {"state", "reason", "trust"})
        words[resultColumnAt(name)] = true;
    return words;
}();

// Whether a run's rows have a column.
bool gives(const ReadingsRun& run, std::size_t column) {
    const auto& [ofReadings, calibration] = run.givenUncertainties();
    if (column >= resultColumnAt("u_calibration_rx_deg"))
        return calibration.has_value();
    if (column >= resultColumnAt("u_reference_rx_deg"))
        return ofReadings && run.localFrame();
    return column < resultColumnAt("u_rx_deg") || ofReadings;
}

// The columns of a row that are asked for, side by side in the text that the row becomes.
class ResultCells {
public:
    using Columns = std::array<bool, resultColumns.size()>;

    ResultCells(const Columns& columns, char mark) : asked(columns), separator(mark) {}

    void word(const char* letters) {
        if (asked[next]) {
            while (*letters)
                *end++ = *letters++;
            *end++ = separator;
        }
        ends[next++] = end;
    }

    template <typename Number>
    void numbers(const Number* values, std::size_t count, bool computed) {
        for (std::size_t i = 0; i < count; ++i) {
            if (asked[next]) {
                if (computed && std::isfinite(static_cast<double>(values[i])))
                    end = std::to_chars(end, std::end(row), values[i]).ptr; // shortest
                *end++ = separator;
            }
            ends[next++] = end;
        }
    }

    // Of a column that is asked for.
    Cell operator[](std::size_t column) const {
        const char* const start = column == 0 ? row : ends[column - 1];
        const std::string_view text(start, ends[column] - 1);
        return isWord[column] ? Cell(text) : WrittenNumber{text};
    }

    void appendTo(std::string& text, bool decimalComma) {
        end[-1] = '\n';
        if (decimalComma)
            std::replace(row, end, '.', ','); // no word has a point
        text.append(row, end);
    }

private:
    const Columns& asked;
    char separator;
    char row[32 * resultColumns.size()]; // no number and no word takes more
    char* end = row;
    const char* ends[resultColumns.size()]; // behind the separator
    std::size_t next = 0;
};

// What the update did not compute, and what is no number, stays empty.
void giveResult(ResultCells& cells, const RowResult& result, const ReadingsRun& run) {
    const KIV_INFO& info = result.info;
    const bool reached = hasCorrectedReadings(result.state);
    const bool oriented = hasAngles(result.state);

    cells.word(rowStateNames[static_cast<std::size_t>(result.state)]);
    cells.word(wordsOf(result.reason).word);
    const float corrected[] = {info.azimuth, info.elevation, info.levelX, info.levelY};
    const float angles[] = {info.rx, info.ry, info.rz};
    cells.numbers(corrected, 4, reached);
    cells.numbers(angles, 3, oriented);
    cells.numbers(info.qvc, 3, hasQvc(result.state, run.mountMode()));
    cells.numbers(result.matrix, 9, hasMatrix(result.state, run.mountMode()));
    const std::int64_t code = result.code;
    cells.numbers(&code, 1, reached);
    cells.word(oriented ? wordOf(result.trust.trust) : "");
    const auto modelError = static_cast<float>(result.trust.modelError);
    cells.numbers(&modelError, 1, oriented);
    const auto triple = [&](const AngleTriple& values, bool computed) {
        const float digits[] = {static_cast<float>(values[0]), static_cast<float>(values[1]),
                                static_cast<float>(values[2])};
        cells.numbers(digits, 3, computed);
    };
    triple(result.uncertainty.standard, result.hasUncertainty);
    triple(result.uncertainty.reference, result.hasUncertainty);
    triple(result.calibration, result.hasCalibration);
}

// Rows of the columns that are asked for, in any order and format.
class ChosenRows {
public:
    void open(const RunOptions& options, const ReadingsRun& run) {
        for (const auto& [column, byName] :
             chosenResults(options.results.empty() ? "all" : options.results))
            if (byName || gives(run, column)) {
                columns.push_back(column);
                asked[column] = true;
            }
        inOrder = std::is_sorted(columns.begin(), columns.end());
        if (options.source)
            for (const std::string& table : options.readings)
                tables.push_back(shownInput(table));
        json = options.rowFormat == RowFormat::jsonl;
        const Table& table = run.table();
        carried = json ? table.carriedNames() : std::vector<std::string>();
        std::vector<std::string_view> names(carried.begin(), carried.end());
        if (options.source)
            names.insert(names.end(), sourceColumns.begin(), sourceColumns.end());
        for (const std::size_t column : columns)
            names.push_back(resultNames[column]);
        writer.emplace(RowWriter::Marks{options.rowFormat, table.separator(), table.decimalComma()},
                       names);
    }

    void appendNames(const Table& table, std::string& text) const {
        if (!json)
            table.appendCarriedNames(text);
        writer->appendNames(text);
    }

    void append(const Table& table, const ComputedRow& row, const ReadingsRun& run,
                std::string& text) const {
        std::size_t at = 0;
        if (json)
            for (; at < carried.size(); ++at)
                writer->appendCell(text, at, CarriedText{table.carriedCell(at)});
        else
            table.appendCarriedCells(text);
        if (!tables.empty()) {
            writer->appendCell(text, at++, std::string_view(tables[row.table]));
            writer->appendCell(text, at++, static_cast<std::int64_t>(row.line));
        }
        ResultCells cells(asked, table.separator());
        giveResult(cells, row.result, run);
        if (inOrder && !json)
            return cells.appendTo(text, table.decimalComma());
        for (const std::size_t column : columns)
            writer->appendCell(text, at++, cells[column]);
        writer->endRow(text);
    }

private:
    bool json = false;
    std::vector<std::string> carried; // names, in JSON alone
    std::vector<std::string> tables;  // names, with the source of each row alone
    std::vector<std::size_t> columns; // of resultColumns
    ResultCells::Columns asked{};
    bool inOrder = true;
    std::optional<RowWriter> writer;
};

// False, and a message, where a column that is asked for by its name would be empty in all rows.
bool canGive(const RunOptions& options, const ReadingsRun& run, std::ostream& err) {
    for (const auto& [column, byName] : chosenResults(options.results)) {
        if (!byName || gives(run, column))
            continue;
        const std::string_view name = resultNames[column];
        const char* needed = name.starts_with("u_calibration")
                                 ? "a result of kiv calibrate in --uncertainties"
                             : run.givenUncertainties().ofReadings ? "--frame local"
                                                                   : "uncertainties of readings";
        err << "kiv run --results: expected " << needed << " for " << name << ", found none\n";
        return false;
    }
    return true;
}

// A copy of the options that asks for no more than what is put out.
RunOptions withoutUnused(RunOptions options) {
    if (options.results.empty())
        return options;
    const auto asks = [chosen = chosenResults(options.results)](std::string_view first,
                                                                std::string_view last) {
        return std::any_of(chosen.begin(), chosen.end(), [&](const ChosenResult& each) {
            return resultColumnAt(first) <= each.column && each.column <= resultColumnAt(last);
        });
    };
    options.withMatrix = asks("m00", "code");
    options.withUncertainty =
        !options.summary.empty() || asks("u_rx_deg", resultColumns.back().name);
    return options;
}

} // namespace

int runReadings(const RunOptions& asked, const Streams& streams) {
    const RunOptions options = withoutUnused(asked);
    ReadingsRun run(options, streams, !options.summary.empty());
    std::vector<std::string_view> reserved(resultNames.begin(), resultNames.end());
    if (options.source)
        reserved.insert(reserved.end(), sourceColumns.begin(), sourceColumns.end());
    ChosenRows chosen;
    const auto usable = [&] {
        return options.results.empty() || canGive(options, run, streams.err);
    };
    if (!run.open(reserved, nullptr, usable))
        return unusable;
    chosen.open(options, run);
    chosen.appendNames(run.table(), run.output().text());
    run.forEach([&](const Table& row, const ComputedRow& computed,
                    std::string& results) { chosen.append(row, computed, run, results); },
                [&](const ComputedRow&) { return !options.stopOnBad || run.summary().allGood(); });
    return run.finish();
}

} // namespace kiv::host
