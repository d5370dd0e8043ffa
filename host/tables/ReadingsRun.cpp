#include "host/tables/ReadingsRun.h"

#include <algorithm>
#include <atomic>
#include <ostream>
#include <thread>

#include "host/InOrder.h"
#include "host/Interrupt.h"
#include "host/Progress.h"
#include "host/parameters/ParameterFile.h"
#include "host/summary/SummaryFile.h"
#include "host/tables/GivenReference.h"
#include "host/tables/UncertaintyFile.h"
#include "sensor/SensorAccess.h"

namespace kiv::host {

bool ReadingsRun::inputsUsable() const {
    std::vector<std::string> inputs = options.readings;
    inputs.insert(inputs.end(), {options.uncertaintyFile, options.referenceFile});
    if (std::count(inputs.begin(), inputs.end(), "-") > 1) {
        streams.err << "kiv: expected one input from standard input, found several\n";
        return false;
    }
    inputs.push_back(options.parameterFile);
    return !refuseOverwriting(options.output, inputs, streams.err)
           && !refuseOverwriting(options.summary, inputs, streams.err);
}

bool ReadingsRun::open(std::span<const std::string_view> results, InputFacts* facts) {
    CKiv sensor;
    if (!loadSensor(options.parameterFile, parameters, sensor, streams.err, facts)
        || !inputsUsable())
        return false;
    sensor.setMcsFlag(!options.localFrame);
    mode = SensorAccess::mountMode(sensor);
    const bool knowsFrames = !reportsOwnMatrix(mode);
    if (options.localFrame && !knowsFrames)
        streams.err << "kiv: --frame local has no effect in mount mode " << mode << '\n';
    if (!readUncertainties())
        return false;
    F_VECTOR4 levelLimits{};
    parameters.GetKIVLevelLimits(levelLimits);
    lead.emplace(sensor, levelLimits, uncertainties);
    if (!recording.open(results, facts ? &facts->readings : nullptr)
        || !takeReference(options, *lead, streams, ownReference))
        return false;
    truth.emplace(table(), !options.localFrame || !knowsFrames);
    if (options.tolerance && !truth->comparable()) {
        streams.err << recording.name()
                    << ":1:1: expected true angles in machine coordinates for --tolerance, found "
                    << (options.localFrame && knowsFrames ? "a run in the local frame"
                                                          : "no columns of them")
                    << '\n';
        return false;
    }
    return written.open(options.output, streams);
}

bool ReadingsRun::readUncertainties() {
    uncertainties = options.uncertainties;
    return options.uncertaintyFile.empty()
           || host::readUncertainties(options.uncertaintyFile, mode, uncertainties.emplace(),
                                      streams);
}

std::size_t ReadingsRun::jobs() const {
    const std::size_t asked = options.jobs > 0       ? options.jobs
                              : recording.size() > 0 ? std::thread::hardware_concurrency()
                                                     : 1;
    const std::size_t blocks =
        recording.size() / options.format.blockBytes + options.readings.size();
    return std::clamp<std::size_t>(asked, 1, recording.size() > 0 ? blocks : asked);
}

struct ReadingsRun::Batch {
    Block block;
    std::vector<Row> rows; // the first count of them
    std::size_t count = 0;
    std::string text;
};

void ReadingsRun::work(Batch& batch, RowRunner& runner, Table& cursor,
                       const MakeText& makeText) const {
    batch.count = 0;
    batch.text.clear();
    cursor.start(batch.block);
    while (cursor.nextRow()) {
        if (batch.count == batch.rows.size())
            batch.rows.emplace_back();
        Row& row = batch.rows[batch.count];
        row.line = cursor.lineNumber();
        if (ownReference && batch.block.table == 0 && row.line == options.referenceLine)
            row.result = *ownReference;
        else
            runner.run(cursor, row.result);
        row.time.reset();
        row.truth = truth->angles(cursor);
        row.messages.assign(cursor.messages().begin(), cursor.messages().end());
        makeText(cursor, row, batch.text);
        row.textEnd = batch.text.size();
        ++batch.count;
    }
}

bool ReadingsRun::finishBatch(Batch& batch, const Take& take, Progress& progress) {
    std::size_t textEnd = 0;
    bool goOn = true;
    for (std::size_t i = 0; goOn && i < batch.count; ++i) {
        const Row& row = batch.rows[i];
        limit.take(row.messages);
        rows.add(row.result, row.line, row.truth,
                 recording.hasSeveral() ? batch.block.name : std::string_view());
        textEnd = row.textEnd;
        goOn = take(row);
    }
    progress.add(batch.count, batch.block.text.size());
    return written.write(std::string_view(batch.text).substr(0, textEnd),
                         batch.block.inputWouldWait)
           && goOn;
}

void ReadingsRun::forEach(const MakeText& makeText, const Take& take) {
    Progress progress(streams.err, streams.errIsTerminal && !options.quiet, recording.size());
    struct Worker {
        std::optional<RowRunner> runner;
        Table table;
    };
    std::vector<Worker> workers(jobs(), Worker{std::nullopt, table()});
    std::atomic<bool> independent = false; // the rows, of each other
    const auto afterReference = [&] {
        for (Worker& worker : workers)
            worker.runner.emplace(*lead);
        independent = true;
    };
    if (lead->hasReference())
        afterReference();

    bool inputWouldWait = recording.startWaits();
    if (inputWouldWait)
        written.write("", true);
    InOrder<Batch> batches({
        .read =
            [&](Batch& batch) {
                const Interrupt::Waiting waiting(inputWouldWait);
                const bool found = !Interrupt::requested() && recording.nextBlock(batch.block);
                inputWouldWait = batch.block.inputWouldWait;
                return found;
            },
        .work =
            [&](Batch& batch, std::size_t i) {
                if (independent)
                    return work(batch, *workers[i].runner, workers[i].table, makeText);
                work(batch, *lead, workers[i].table, makeText);
                if (lead->hasReference())
                    afterReference();
            },
        .finish = [&](Batch& batch) { return finishBatch(batch, take, progress); },
        .overlap = [&] { return independent && !inputWouldWait; },
    });
    batches.run(workers.size());
}

bool ReadingsRun::writeSummary() const {
    Output file;
    if (!file.open(options.summary, streams))
        return false;
    file.text() = summaryText(rows, options, mode);
    return file.finish(streams.err);
}

bool ReadingsRun::withinTolerance() const {
    if (!options.tolerance || rows.largestResidual() <= *options.tolerance)
        return true;
    streams.err << "expected differences to the true angles of " << shown(*options.tolerance)
                << " degrees at most, found " << degreesText(rows.largestResidual()) << '\n';
    return false;
}

int ReadingsRun::finish() {
    limit.reportOthers(recording.name());
    const bool readAll = recording.reportEnd(streams.err);
    if (!written.finish(streams.err) || !readAll)
        return unusable;
    rows.printCounts(streams.err);
    if (!options.quiet)
        rows.printStatistics(streams.err);
    if (!options.summary.empty() && !writeSummary())
        return unusable;
    const bool close = withinTolerance();
    if (Interrupt::requested())
        return interrupted;
    const bool trusted = !options.strict || rows.allTrusted();
    return rows.allGood() && close && trusted ? allGood : someRowsBad;
}

} // namespace kiv::host
