#include "host/Run.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <ostream>

#include "host/Csv.h"
#include "host/Files.h"
#include "host/ParameterFile.h"
#include "host/Readings.h"
#include "host/Summary.h"
#include "module/ConfigureSensor.h"
#include "params/CKivPrm.h"
#include "sensor/SensorAccess.h"

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

constexpr int firstThreeVectorMode = 7;

struct Result {
    RowState state = RowState::refused;
    UpdateOutcome outcome = UpdateOutcome::badStatus;
    KIV_INFO info{};
    double matrix[9] = {};
    int code = 0;
};

RowState stateOf(UpdateOutcome outcome) {
    switch (outcome) {
    case UpdateOutcome::badStatus:
        return RowState::status;
    case UpdateOutcome::modelFailed:
        return RowState::noOrientation;
    case UpdateOutcome::noReference:
        return RowState::noReference;
    case UpdateOutcome::reference:
        return RowState::reference;
    case UpdateOutcome::oriented:
        break;
    }
    return RowState::ok;
}

// The models of modes 5 to 10 report a result also where its entries are no numbers.
bool transformFinite(const CKiv& sensor) {
    const double* t = SensorAccess::transform(sensor);
    return std::all_of(t, t + 9, [](double v) { return std::isfinite(v); });
}

Result computeRow(CKiv& sensor, const KIV_RAWINFO& raw) {
    Result result;
    result.outcome = SensorAccess::update(sensor, raw, result.info);
    result.state = stateOf(result.outcome);
    if (result.outcome > UpdateOutcome::modelFailed && !transformFinite(sensor))
        result.state = RowState::noOrientation;
    result.code = sensor.ReadMatrix(result.matrix);
    return result;
}

// How messages speak of a model and of readings that it has no orientation for.
struct ModelWords {
    std::string expected;
    const char* whereItFails;
    const char* whereNotFinite;
};

ModelWords wordsFor(int mode) {
    constexpr const char* overflow = "values too large to compute with";
    constexpr const char* alongVertical =
        "a line of sight along the vertical or in a level's plane with it";
    const auto words = [&](const char* name, const char* fails, const char* notFinite) {
        return ModelWords{std::string("readings that the ") + name + " model solves (mount mode "
                              + std::to_string(mode) + ")",
                          fails, notFinite};
    };
    switch (mode) {
    case 1:
    case 2:
        return words("dual-level", "no tilted vertical that both levels show", overflow);
    case 5:
    case 6:
        return words("polarizer", overflow, overflow);
    case 7:
    case 8:
        return words("three-vector", alongVertical, alongVertical);
    case 9:
    case 10:
        return words("two-level", "both levels outside their tables", alongVertical);
    default:
        return words("pendulum", "no transverse axis that shows their inclination", overflow);
    }
}

// What the update did not compute stays empty.
void appendResult(std::string& text, const Result& result, int mode) {
    const auto cells = [&](const auto* values, std::size_t count, bool computed) {
        for (std::size_t i = 0; i < count; ++i) {
            text.push_back(',');
            if (computed)
                appendNumber(text, values[i]);
        }
    };
    const KIV_INFO& info = result.info;
    const bool reached = result.state != RowState::refused;
    const bool modelled = result.state == RowState::ok || result.state == RowState::reference
                          || result.state == RowState::noReference;
    const bool oriented = result.state == RowState::ok;
    const bool threeVector = mode >= firstThreeVectorMode;

    const float corrected[] = {info.azimuth, info.elevation, info.levelX, info.levelY};
    const float angles[] = {info.rx, info.ry, info.rz};
    text += rowStateNames[static_cast<std::size_t>(result.state)];
    cells(corrected, 4, reached);
    cells(angles, 3, oriented);
    cells(info.qvc, 3, modelled && threeVector);
    cells(result.matrix, 9, oriented && !threeVector);
    cells(&result.code, 1, reached);
    text.push_back('\n');
}

} // namespace

int runReadings(const RunOptions& options, const Streams& streams) {
    CKivPrm record;
    if (!loadParameterFile(options.parameterFile, record, streams.err))
        return unusable;
    CKiv sensor;
    if (const int code = configureSensor(sensor, record); code != KIV_OK) {
        streams.err << options.parameterFile
                    << ":1:1: expected values that a sensor takes, found code " << code << " ("
                    << kivStatusText(code) << ")\n";
        return unusable;
    }
    if (refuseOverwriting(options.results, {options.parameterFile, options.readings}, streams.err))
        return unusable;

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
    const ModelWords model = wordsFor(mode);
    const Truth truth(table);
    Summary summary;
    KIV_RAWINFO raw{};
    while (table.nextRow()) {
        const Result result = readReadings(table, raw) ? computeRow(sensor, raw) : Result{};
        if (result.state == RowState::noOrientation)
            table.reportRow(model.expected, result.outcome == UpdateOutcome::modelFailed
                                                ? model.whereItFails
                                                : model.whereNotFinite);
        table.appendCarriedCells(text);
        appendResult(text, result, mode);
        summary.count(result.state, table.lineNumber());
        if (result.state == RowState::ok)
            if (const auto angles = truth.angles(table))
                summary.compare({result.info.rx, result.info.ry, result.info.rz}, *angles);
        output.endRow(table.wouldWait());
    }
    if (!finishTable(table, input, output, streams.err))
        return unusable;
    summary.print(streams.err);
    return summary.allGood() ? allGood : someRowsBad;
}

} // namespace kiv::host
