#include "host/commands/Run.h"

#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <ostream>

#include "KIVInterface/CKivPrm.h"
#include "host/Files.h"
#include "host/ParameterFile.h"
#include "host/Progress.h"
#include "host/Summary.h"
#include "host/tables/Csv.h"
#include "host/tables/RowLoop.h"
#include "sensor/SensorAccess.h"
#include "support/MountMode.h"

namespace kiv::host {

namespace {

// Behind the carried columns. Angles are degrees; m<row><column> is the result matrix, code that of
// ReadMatrix.
constexpr std::array<std::string_view, 21> resultColumns{"state",
                                                         "azimuth_corrected_deg",
                                                         "elevation_corrected_deg",
                                                         "level_x_corrected_deg",
                                                         "level_y_corrected_deg",
                                                         "rx_deg",
                                                         "ry_deg",
                                                         "rz_deg",
                                                         "qvc_x",
                                                         "qvc_y",
                                                         "qvc_z",
                                                         "m00",
                                                         "m01",
                                                         "m02",
                                                         "m10",
                                                         "m11",
                                                         "m12",
                                                         "m20",
                                                         "m21",
                                                         "m22",
                                                         "code"};

// What the update did not compute, and what is no number, stays empty.
void appendResult(std::string& text, const RowResult& result, int mode) {
    char row[32 * resultColumns.size()]; // no number takes more
    char* end = row;
    const auto cells = [&](const auto* values, std::size_t count, bool computed) {
        for (std::size_t i = 0; i < count; ++i) {
            *end++ = ',';
            if (computed && std::isfinite(static_cast<double>(values[i])))
                end = std::to_chars(end, std::end(row), values[i]).ptr; // shortest
        }
    };
    const KIV_INFO& info = result.info;
    const bool reached = result.state != RowState::refused;
    const bool modelled = result.state == RowState::ok || result.state == RowState::reference
                          || result.state == RowState::noReference;
    const bool oriented = result.state == RowState::ok;
    const bool threeVector = reportsOwnMatrix(mode);

    const float corrected[] = {info.azimuth, info.elevation, info.levelX, info.levelY};
    const float angles[] = {info.rx, info.ry, info.rz};
    cells(corrected, 4, reached);
    cells(angles, 3, oriented);
    cells(info.qvc, 3, modelled && threeVector);
    cells(result.matrix, 9, oriented && !threeVector);
    cells(&result.code, 1, reached);
    *end++ = '\n';
    text += rowStateNames[static_cast<std::size_t>(result.state)];
    text.append(row, end);
}

} // namespace

int runReadings(const RunOptions& options, const Streams& streams) {
    CKivPrm record;
    CKiv sensor;
    if (!loadSensor(options.parameterFile, record, sensor, streams.err)
        || refuseOverwriting(options.results, {options.parameterFile, options.readings},
                             streams.err))
        return unusable;
    sensor.setMcsFlag(!options.localFrame);

    Input input;
    if (!input.open(options.readings, streams))
        return unusable;
    Table table(input.stream(), input.name(), streams.err, readingColumns);
    if (!table.readHeader(resultColumns))
        return unusable;
    Output output;
    if (!output.open(options.results, streams))
        return unusable;

    std::string& text = output.text();
    table.appendCarriedNames(text);
    for (const std::string_view name : resultColumns)
        text.append(name).push_back(name == resultColumns.back() ? '\n' : ',');

    const int mode = SensorAccess::mountMode(sensor);
    const Truth truth(table, !options.localFrame || reportsOwnMatrix(mode));
    Summary summary;
    RowRunner rows(sensor, table);
    RowResult result;
    {
        Progress progress(streams.err, streams.errIsTerminal && !options.quiet, input.size());
        const auto next = [&] { return rows.next(result); };
        forEachRow(table, next, [&](bool inputWouldWait) {
            progress.row(table.rowBytes());
            table.appendCarriedCells(text);
            appendResult(text, result, mode);
            summary.add(result, table.lineNumber(), truth.angles(table));
            return output.endRow(inputWouldWait) && (!options.stopOnBad || summary.allGood());
        });
    }
    if (!finishTable(table, input, output, streams.err))
        return unusable;
    return finishRun(summary, options.quiet, streams.err);
}

} // namespace kiv::host
