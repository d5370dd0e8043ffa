#include "host/commands/Report.h"

#include <cmath>
#include <ostream>

#include "host/Interrupt.h"
#include "host/parameters/ParameterFile.h"
#include "host/report/ReportPage.h"
#include "host/tables/Numbers.h"
#include "host/tables/ReadingsRun.h"
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

    double at(const Table& table, Reason reason) {
        if (!problem.empty())
            return 0;
        const std::string line = std::to_string(table.lineNumber());
        double time = 0;
        if (reason != Reason::rowShape && table.numberAt(*place, time)) {
            if (time < last)
                problem = "time_s goes back in line " + line;
            last = time;
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
            content.statistics[at(quantity)].add(values[at(quantity)] = value);
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
            set(Quantity::residualX, withinHalfTurn(info.rx - (*truth)[0]));
            set(Quantity::residualY, withinHalfTurn(info.ry - (*truth)[1]));
            set(Quantity::residualZ, withinHalfTurn(info.rz - (*truth)[2]));
        }
    }
    content.envelope.addRow(time, values, markOf(result.state));
    if (result.state == RowState::reference)
        content.referenceTime = time;
}

} // namespace

int reportReadings(const ReadingsOptions& options, const Streams& streams) {
    if (options.output == "-" && streams.outIsTerminal) {
        streams.err << "kiv report: expected -o FILE for the page, found a terminal\n";
        return unusable;
    }
    ReadingsRun run(options, streams);
    if (!run.open({}))
        return unusable;

    const Table& table = run.table();
    ReportContent content;
    content.parameterFile = options.parameterFile;
    content.readings = run.input().name();
    content.sensorId = parseParameterFileName(options.parameterFile)->id;
    content.mountMode = run.mountMode();
    content.localFrame = options.localFrame;
    run.record().GetKIVLevelLimits(content.levelLimits);

    TimeColumn time(table);
    run.forEach([&](const RowResult& result, const auto& trueAngles, bool) {
        const double t = time.at(table, result.reason);
        addRow(content, result, t, trueAngles);
        if (markOf(result.state) != Envelope::Mark::none
            && content.badRows.size() < mostBadRowsListed)
            content.badRows.push_back(
                {table.lineNumber(), t, result.state,
                 reasonIn(table.messages(), content.readings, table.lineNumber())});
        return true;
    });
    content.whyNotOverTime = time.whyNot();
    content.cutShort = table.failed()           ? "reading broke off"
                       : Interrupt::requested() ? "the run was interrupted"
                                                : nullptr;
    content.summary = run.summary();
    run.output().text() = reportPage(content);
    return run.finish();
}

} // namespace kiv::host
