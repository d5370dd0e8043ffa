#include "host/commands/Run.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <ostream>
#include <vector>

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

std::vector<std::string_view> namesOf(const ReadingsRun& run) {
    const auto& [ofReadings, calibration] = run.givenUncertainties();
    const auto end = resultNames.end();
    std::vector<std::string_view> names(resultNames.begin(), end - 9);
    if (ofReadings)
        names.insert(names.end(), end - 9, end - 6);
    if (ofReadings && run.localFrame())
        names.insert(names.end(), end - 6, end - 3);
    if (calibration)
        names.insert(names.end(), end - 3, end);
    return names;
}

// What the update did not compute, and what is no number, stays empty.
void appendResult(std::string& text, const RowResult& result, const ReadingsRun& run) {
    const Table& table = run.table();
    const char separator = table.separator();
    char row[32 * resultColumns.size()]; // no number and no word takes more
    char* end = row;
    const auto word = [&](const char* letters) {
        while (*letters)
            *end++ = *letters++;
    };
    const auto cells = [&](const auto* values, std::size_t count, bool computed) {
        for (std::size_t i = 0; i < count; ++i) {
            *end++ = separator;
            if (computed && std::isfinite(static_cast<double>(values[i])))
                end = std::to_chars(end, std::end(row), values[i]).ptr; // shortest
        }
    };
    const KIV_INFO& info = result.info;
    const bool reached = hasCorrectedReadings(result.state);
    const bool oriented = hasAngles(result.state);

    word(rowStateNames[static_cast<std::size_t>(result.state)]);
    *end++ = separator;
    word(wordsOf(result.reason).word);
    char* const numbers = end;
    const float corrected[] = {info.azimuth, info.elevation, info.levelX, info.levelY};
    const float angles[] = {info.rx, info.ry, info.rz};
    cells(corrected, 4, reached);
    cells(angles, 3, oriented);
    cells(info.qvc, 3, hasQvc(result.state, run.mountMode()));
    cells(result.matrix, 9, hasMatrix(result.state, run.mountMode()));
    cells(&result.code, 1, reached);
    *end++ = separator;
    if (oriented)
        word(wordOf(result.trust.trust));
    const auto modelError = static_cast<float>(result.trust.modelError);
    cells(&modelError, 1, oriented);
    const auto triple = [&](const AngleTriple& values, bool computed) {
        const float digits[] = {static_cast<float>(values[0]), static_cast<float>(values[1]),
                                static_cast<float>(values[2])};
        cells(digits, 3, computed);
    };
    const auto& [ofReadings, calibration] = run.givenUncertainties();
    if (ofReadings)
        triple(result.uncertainty.standard, result.hasUncertainty);
    if (ofReadings && run.localFrame())
        triple(result.uncertainty.reference, result.hasUncertainty);
    if (calibration)
        triple(result.calibration, result.hasCalibration);
    *end++ = '\n';
    if (table.decimalComma())
        std::replace(numbers, end, '.', ',');
    text.append(row, end);
}

} // namespace

int runReadings(const RunOptions& options, const Streams& streams) {
    ReadingsRun run(options, streams, !options.summary.empty());
    if (!run.open(resultNames))
        return unusable;
    const Table& table = run.table();
    std::string& text = run.output().text();
    table.appendCarriedNames(text);
    for (const std::string_view name : namesOf(run))
        text.append(name).push_back(table.separator());
    text.back() = '\n';

    run.forEach(
        [&](const Table& row, const ComputedRow& computed, std::string& results) {
            row.appendCarriedCells(results);
            appendResult(results, computed.result, run);
        },
        [&](const ComputedRow&) { return !options.stopOnBad || run.summary().allGood(); });
    return run.finish();
}

} // namespace kiv::host
