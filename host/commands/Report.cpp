#include "host/commands/Report.h"

#include <algorithm>
#include <cmath>
#include <ostream>

#include "host/base/Interrupt.h"
#include "host/parameters/ParameterFile.h"
#include "host/report/Page.h"
#include "host/report/ReportPage.h"
#include "host/run/ReadingsRun.h"

namespace kiv::host {

namespace {

// A row's messages without the place in front that they share, and without their own.
NoResult noResult(const ComputedRow& row, const std::string& fileName) {
    const std::size_t placeSize = fileName.size() + std::to_string(row.line).size() + 2;
    NoResult result{row.result.state, "", ""};
    for (const Message& message : row.messages) {
        std::string_view text(message.text);
        text = text.substr(placeSize, text.size() - 1 - placeSize);
        const char* separator = result.placed.empty() ? "" : "\n";
        result.placed.append(separator).append("byte ").append(text);
        result.reason.append(separator).append(text.substr(text.find(": ") + 2));
    }
    return result;
}

bool isDoubtful(const RowResult& result) {
    return result.state == RowState::ok && result.trust.trust != Trust::good;
}

Envelope::Mark markOf(const RowResult& result) {
    return result.state == RowState::refused         ? Envelope::Mark::refused
           : result.state == RowState::noOrientation ? Envelope::Mark::noOrientation
           : isDoubtful(result)                      ? Envelope::Mark::notGood
                                                     : Envelope::Mark::none;
}

// The summary has the angles and residuals, the report the rest.
void addValues(ReportContent& content, const ComputedRow& row, double time) {
    std::array<double, quantityCount> values;
    values.fill(NAN);
    const auto set = [&](Quantity quantity, double value) { values[at(quantity)] = value; };
    const auto count = [&](Quantity quantity, double value) {
        if (std::isfinite(value))
            content.ofReadings[at(quantity)].add(values[at(quantity)] = value);
    };
    const RowResult& result = row.result;
    const KIV_INFO& info = result.info;
    const KIV_RAWINFO& raw = result.raw;
    if (result.state != RowState::refused) {
        count(Quantity::tiltX, info.levelX);
        count(Quantity::tiltY, info.levelY);
        count(Quantity::azimuth, info.azimuth);
        count(Quantity::elevation, info.elevation);
        count(Quantity::distance,
              std::hypot(double{raw.vector[0]}, double{raw.vector[1]}, double{raw.vector[2]}));
        count(Quantity::temperature, raw.temperature);
        count(Quantity::refMetric, raw.refMetric);
    }
    if (result.state == RowState::ok) {
        set(Quantity::rx, info.rx);
        set(Quantity::ry, info.ry);
        set(Quantity::rz, info.rz);
        if (row.truth) {
            set(Quantity::residualX, withinHalfTurn(info.rx - (*row.truth)[0]));
            set(Quantity::residualY, withinHalfTurn(info.ry - (*row.truth)[1]));
            set(Quantity::residualZ, withinHalfTurn(info.rz - (*row.truth)[2]));
        }
        if (result.trust.trust == Trust::good)
            count(Quantity::modelError, result.trust.modelError);
        if (result.hasUncertainty)
            for (std::size_t i = 0; i < 3; ++i)
                count(static_cast<Quantity>(at(Quantity::uncertaintyX) + i),
                      result.uncertainty.standard[i]);
    }
    content.budget.add(result);
    content.envelope.addRow(time, values, markOf(result));
}

void addRow(ReportContent& content, const ComputedRow& row, TimeColumn& time) {
    const std::string& table = content.facts.readings[row.table].name;
    RowPlace place{row.table, row.line, content.envelope.rows() + 1, std::nullopt};
    const TimeColumn::Point point =
        time.next(row.time, place, content.hasSeveralTables() ? table : std::string_view());
    place.time = point.own;
    addValues(content, row, point.time);
    const RowResult& result = row.result;
    if (isDoubtful(result))
        content.doubtfulRows.add(place, {result.trust.trust, result.trust.modelError});
    if ((result.state == RowState::refused || result.state == RowState::noOrientation)
        && !content.badRows.full())
        content.badRows.add(place, noResult(row, table));
    if (result.state == RowState::reference)
        content.referenceRow = place.row;
}

} // namespace

int reportReadings(const ReportOptions& options, const Streams& streams) {
    if (options.output == "-" && streams.outIsTerminal) {
        streams.err << "kiv report: expected -o FILE for the page, found a terminal\n";
        return unusable;
    }
    ReportContent content;
    content.time = timeOfPage();
    ReadingsRun run(options, streams);
    if (!run.open({}, &content.facts))
        return unusable;

    content.title = options.title;
    content.lengthUnit = options.lengthUnit;
    content.commandLine = options.commandLine;
    content.parameterFile = options.parameterFile;
    content.readings = run.name();
    content.sensorId = parseParameterFileName(options.parameterFile)->id;
    content.mountMode = run.mountMode();
    content.localFrame = run.localFrame();
    content.uncertainties = run.givenUncertainties().ofReadings;
    run.record().GetKIVLevelLimits(content.levelLimits);

    TimeColumn time(run.table());
    run.forEach(
        [&](const Table& table, ComputedRow& row, std::string&) {
            if (row.result.reason != Reason::rowShape)
                row.time = time.timeIn(table);
        },
        [&](const ComputedRow& row) {
            addRow(content, row, time);
            return true;
        });
    content.axis = time.axis();
    const std::vector<TableFacts>& tables = content.facts.readings;
    const bool readToEnd = std::all_of(tables.begin(), tables.end(),
                                       [](const TableFacts& table) { return table.readToEnd; });
    content.cutShort = readToEnd         ? nullptr
                       : run.brokenOff() ? "reading broke off"
                                         : "the run was interrupted";
    content.summary = run.summary();
    content.witnesses.assign(run.witnesses().begin(), run.witnesses().end());
    content.drift = run.drift();
    run.output().text() = reportPage(content);
    return run.finish();
}

} // namespace kiv::host
