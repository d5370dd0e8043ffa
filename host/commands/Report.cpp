#include "host/commands/Report.h"

#include <cmath>
#include <ostream>
#include <sstream>

#include "KIVInterface/CKivPrm.h"
#include "host/Files.h"
#include "host/Interrupt.h"
#include "host/ParameterFile.h"
#include "host/Progress.h"
#include "host/report/ReportPage.h"
#include "host/tables/Csv.h"
#include "host/tables/RowLoop.h"
#include "sensor/SensorAccess.h"
#include "support/MountMode.h"

namespace kiv::host {

namespace {

// Follows the column time_s. It can carry a chart when the first row has a time and none is before
// the last; a row without one, or with cells missing, takes that of the row before.
class TimeColumn {
public:
    explicit TimeColumn(const Table& table) : place(table.find("time_s")) {
        if (!place)
            problem = "the readings have no column time_s";
    }

    double at(const Table& table, Refusal refusal) {
        if (!problem.empty())
            return 0;
        const auto time =
            refusal == Refusal::rowShape ? std::nullopt : numberIn<double>(table.cell(*place));
        const std::string line = std::to_string(table.lineNumber());
        if (time && std::isfinite(*time)) {
            if (*time < last)
                problem = "time_s goes back in line " + line;
            last = *time;
        } else if (!std::isfinite(last)) {
            problem = "time_s is no number in line " + line;
        }
        return last;
    }

    const std::string& whyNot() const { return problem; }

private:
    std::optional<std::size_t> place;
    double last = -INFINITY;
    std::string problem; // empty: the column can carry a chart
};

// A row's messages without the place in front that they share.
std::string reasonIn(std::string_view messages, const std::string& fileName, std::size_t line) {
    const std::string start = fileName + ':' + std::to_string(line) + ':';
    std::string reason;
    while (!messages.empty()) {
        if (messages.starts_with(start))
            messages.remove_prefix(start.size());
        const std::size_t end = std::min(messages.find('\n' + start), messages.size() - 1);
        reason.append(reason.empty() ? "byte " : "\nbyte ").append(messages.substr(0, end));
        messages.remove_prefix(end + 1);
    }
    return reason;
}

Envelope::Mark markOf(RowState state) {
    return state == RowState::refused         ? Envelope::Mark::refused
           : state == RowState::noOrientation ? Envelope::Mark::noOrientation
                                              : Envelope::Mark::none;
}

void addRow(ReportContent& content, const RowResult& result, double time,
            const std::optional<std::array<double, 3>>& truth) {
    std::array<double, quantityCount> values;
    values.fill(NAN);
    const auto set = [&](Quantity quantity, double value) {
        if (std::isfinite(value))
            values[at(quantity)] = content.statistics[at(quantity)].add(value);
    };
    const KIV_INFO& info = result.info;
    if (result.state != RowState::refused) {
        set(Quantity::tiltX, info.levelX);
        set(Quantity::tiltY, info.levelY);
        set(Quantity::azimuth, info.azimuth);
        set(Quantity::elevation, info.elevation);
    }
    if (result.state == RowState::ok) {
        set(Quantity::rx, info.rx);
        set(Quantity::ry, info.ry);
        set(Quantity::rz, info.rz);
        if (truth) {
            set(Quantity::residualX, std::remainder(info.rx - (*truth)[0], 360.0));
            set(Quantity::residualY, std::remainder(info.ry - (*truth)[1], 360.0));
            set(Quantity::residualZ, std::remainder(info.rz - (*truth)[2], 360.0));
        }
    }
    content.envelope.addRow(time, values, markOf(result.state));
    if (result.state == RowState::reference)
        content.referenceTime = time;
}

} // namespace

int reportReadings(const ReportOptions& options, const Streams& streams) {
    CKivPrm record;
    CKiv sensor;
    if (!loadSensor(options.parameterFile, record, sensor, streams.err)
        || refuseOverwriting(options.page, {options.parameterFile, options.readings}, streams.err))
        return unusable;
    sensor.setMcsFlag(!options.localFrame);

    Input input;
    if (!input.open(options.readings, streams))
        return unusable;
    std::ostringstream messages; // of a row
    const auto passOn = [&] {
        streams.err << messages.str();
        messages.str("");
    };
    Table table(input.stream(), input.name(), messages, readingColumns);
    const bool usable = table.readHeader({});
    passOn();
    Output output;
    if (!usable || !output.open(options.page, streams))
        return unusable;

    ReportContent content;
    content.parameterFile = options.parameterFile;
    content.readings = input.name();
    content.sensorId = parseParameterFileName(options.parameterFile)->id;
    content.mountMode = SensorAccess::mountMode(sensor);
    content.localFrame = options.localFrame;
    record.GetKIVLevelLimits(content.levelLimits);

    TimeColumn time(table);
    const Truth truth(table, !options.localFrame || reportsOwnMatrix(content.mountMode));
    RowRunner rows(sensor, table);
    RowResult result;
    {
        Progress progress(streams.err, streams.errIsTerminal && !options.quiet, input.size());
        const auto next = [&] { return rows.next(result); };
        forEachRow(table, next, [&](bool) {
            progress.row(table.rowBytes());
            const double t = time.at(table, result.refusal);
            const auto trueAngles = truth.angles(table);
            content.summary.add(result, table.lineNumber(), trueAngles);
            addRow(content, result, t, trueAngles);
            if (markOf(result.state) != Envelope::Mark::none) {
                if (content.badRows.size() < mostBadRowsListed)
                    content.badRows.push_back(
                        {table.lineNumber(), t, result.state,
                         reasonIn(messages.str(), input.name(), table.lineNumber())});
                passOn();
            }
            return true;
        });
    }
    content.whyNotOverTime = time.whyNot();
    content.cutShort = table.failed()           ? "reading broke off"
                       : Interrupt::requested() ? "the run was interrupted"
                                                : nullptr;
    output.text() = reportPage(content);
    if (!finishTable(table, input, output, streams.err))
        return unusable;
    return finishRun(content.summary, options.quiet, streams.err);
}

} // namespace kiv::host
