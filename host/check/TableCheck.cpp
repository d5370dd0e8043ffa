#include "host/check/TableCheck.h"

#include <algorithm>
#include <ostream>
#include <sstream>

#include "host/base/Interrupt.h"
#include "host/parameters/Findings.h"
#include "host/parameters/ParameterFile.h"
#include "host/rows/RowTime.h"
#include "host/rows/TableInput.h"
#include "host/witnesses/Witnesses.h"
#include "params/Quoted.h"
#include "params/RecordLoading.h"
#include "sensor/SensorAccess.h"
#include "support/Principles.h"

namespace kiv::host {

namespace {

float valueOf(Field field, const KIV_RAWINFO& raw) {
    switch (field) {
    case Field::x:
        return raw.vector[0];
    case Field::y:
        return raw.vector[1];
    case Field::z:
        return raw.vector[2];
    case Field::azimuth:
        return raw.azimuthRaw;
    case Field::elevation:
        return raw.elevationRaw;
    case Field::levelX:
        return raw.levelXRaw;
    case Field::levelY:
        return raw.levelYRaw;
    case Field::temperature:
        return raw.temperature;
    default:
        return raw.refMetric;
    }
}

// Takes the rows of one table as they come.
class TableWatch {
public:
    TableWatch(const TableInput& input, const CheckedSensor& by)
        : table(input.table()), truth(table, true), time(table),
          witnesses(by.record, time.column()) {
        check.file = input.name();
        check.parameterFile = by.file;
        check.mountMode = by.mountMode;
        if (time.there())
            check.timeColumn = table.nameOf(time.column());
        check.timeOfDay = time.stamps();
        sortColumns();
    }

    // What looks at rows is fed here.
    void add(const RowResult& row, const Table& at) {
        check.summary.add(row, at.lineNumber(), std::nullopt);
        if (row.state != RowState::refused)
            for (std::size_t i = 0; i < check.ranges.size(); ++i)
                check.ranges[i].add(valueOf(TableCheck::ranged[i], row.raw));
        const auto stamp = row.reason == Reason::rowShape ? std::nullopt : time.of(at);
        if (stamp)
            check.time.add(*stamp, at.lineNumber());
        const bool isReading =
            witnesses.add(row, {.line = at.lineNumber(),
                                .time = stamp,
                                .namesAgain = row.state == RowState::refused && at.repeatsNames()});
        if (isReading)
            sample.add(row, truth.angles(at));
    }
    void finish(const CheckedSensor& by) {
        check.mistakes = searchMistakes(by.parsed, sample, by.uncertainties);
        witnesses.finish();
        check.witnesses.assign(witnesses.found().begin(), witnesses.found().end());
    }

    TableCheck check;

private:
    void sortColumns() {
        std::vector<std::string_view> read;
        for (std::size_t i = 0; i < readingColumns.size(); ++i)
            if (static_cast<Field>(i) != Field::levelX
                || traitsOf(principleOf(check.mountMode)).levelX)
                read.push_back(table.nameOf(i));
        if (time.there())
            read.push_back(table.nameOf(time.column()));
        if (truth.comparable())
            for (const std::string_view name : truthColumns)
                read.push_back(table.nameOf(name));
        if (table.find(sensorColumn))
            read.push_back(table.nameOf(sensorColumn));
        for (std::string& name : table.columnNames())
            (std::count(read.begin(), read.end(), name) > 0 ? check.columnsRead
                                                            : check.columnsNotRead)
                .push_back(std::move(name));
    }

    const Table& table;
    Truth truth;
    RowTime time;
    Witnesses witnesses;
    RowSample sample;
};

} // namespace

std::unique_ptr<CheckedSensor> sensorOf(const std::string& path, const ExaminedFile& examined,
                                        std::ostream& err) {
    auto checked = std::make_unique<CheckedSensor>();
    CKivPrm& record = checked->record;
    checked->parsed = examined.parsed;
    RecordLoading::store(record, checked->parsed);
    checked->serialNumber = checked->parsed.document.find(Block::serialNumber)->integer;
    checked->file = printable(path);
    if (!configure(checked->sensor, record, path, err))
        return nullptr;
    checked->mountMode = SensorAccess::mountMode(checked->sensor);
    record.GetKIVLevelLimits(checked->levelLimits);
    return checked;
}

bool TableCheck::faulty(bool strict) const {
    return !summary.allGood() || summary.whatNoRowIs() || (mistakes && mistakes->faulty())
           || (strict && warnings() > 0);
}

std::size_t TableCheck::warnings() const {
    return witnesses.size() + summary.cutRows() + (summary.allTrusted() ? 0 : 1)
           + (summary.spareReadings().objection().empty() ? 0 : 1);
}

std::optional<TableCheck> checkTable(const std::string& file, const TableFormat& format,
                                     const CheckedSensor& by, const Streams& streams) {
    TableInput input(readingColumns, format);
    if (!input.open(file, {}, streams) || !input.hasRenamedColumns(streams.err))
        return std::nullopt;
    input.showWarnings(streams.err);
    RowRunner runner(by.sensor, by.levelLimits, by.uncertainties);
    runner.expectRowsOf(by.serialNumber, input.table());
    MessageLimit limit(format.mostMessages, streams.err);
    TableWatch watch(input, by);
    Table& table = input.table();
    TableCheck& check = watch.check;
    RowResult row;
    std::string ends;
    const auto next = [&](LineBlock& block) {
        const Interrupt::Waiting waiting(block.inputWouldWait);
        return !Interrupt::requested() && input.nextBlock(block);
    };
    for (LineBlock block; !check.brokenOff && next(block);) {
        table.start(block);
        while (table.nextRow()) {
            runner.run(table, row);
            limit.take(table.messages());
            watch.add(row, table);
        }
        check.summary.addBlankRows(table.blankRows());
        check.summary.addCutRows(block.mayBeCut ? 1 : 0);
        check.brokenOff = block.brokenOff;
        ends += block.said;
    }
    watch.finish(by);
    limit.reportOthers(input.name());
    streams.err << ends;
    if (const char* missed = Interrupt::requested() ? nullptr : check.summary.whatNoRowIs())
        streams.err << input.name() << ": expected " << missed << '\n';
    print(check.witnesses, {input.name()}, format.mostMessages, streams.err);
    return std::move(watch.check);
}

bool looksLikeTable(const std::string& file, const TableFormat& format) {
    if (mayWait(file))
        return false;
    std::istringstream none;
    std::ostringstream unsaid;
    TableInput input(readingColumns, format);
    if (input.open(file, {}, {none, unsaid, unsaid}))
        return true;
    const Table& table = input.table();
    const std::vector<std::string> names = table.columnNames();
    return names.size() >= readingColumns.size()
           || std::any_of(readingColumns.begin(), readingColumns.end(),
                          [&](std::string_view name) { return table.find(name).has_value(); });
}

} // namespace kiv::host
