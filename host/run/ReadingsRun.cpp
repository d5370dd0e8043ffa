#include "host/run/ReadingsRun.h"

#include <algorithm>
#include <atomic>
#include <ostream>
#include <thread>

#include "host/base/InOrder.h"
#include "host/base/Interrupt.h"
#include "host/base/Progress.h"
#include "host/parameters/ParameterFile.h"
#include "host/run/SummaryFile.h"
#include "host/run/UncertaintyFile.h"
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
    if (sameOutput(options.output, options.summary)) {
        streams.err << shownOutput(options.summary)
                    << ":1:1: expected an output of its own, found that of --output\n";
        return false;
    }
    return !refuseOverwriting(options.output, inputs, streams.err)
           && !refuseOverwriting(options.summary, inputs, streams.err);
}

bool ReadingsRun::open(std::span<const std::string_view> results, InputFacts* facts) {
    const Interrupt::Waiting waiting(true); // nothing is written yet
    CKiv sensor;
    InputFacts own;
    InputFacts& all = facts ? *facts : own;
    if (!loadSensor(options.parameterFile, parameters, sensor, streams.err, &all)
        || !inputsUsable())
        return false;
    parameterWarnings = all.parameterWarnings;
    sensor.setMcsFlag(!options.localFrame);
    mode = SensorAccess::mountMode(sensor);
    if (options.localFrame && !localFrame())
        streams.err << "kiv: --frame local has no effect in mount mode " << mode << '\n';
    if (!readUncertainties())
        return false;
    F_VECTOR4 levelLimits{};
    parameters.GetKIVLevelLimits(levelLimits);
    lead.emplace(sensor, levelLimits, uncertainties);
    if (!recording.open(results, facts ? &facts->readings : nullptr) || !renamedColumnsThere()
        || !referenceReadable()
        || !takeReference(options, *lead, streams, given, facts ? &facts->reference : nullptr))
        return false;
    if (options.referenceLine == 0 && given.line > 0)
        totals.nameReference(given.table, given.line, given.result.trust.trust);
    if (uncertainties)
        totals.expectUncertainties();
    truth.emplace(table(), !localFrame());
    if (options.tolerance && !truth->comparable()) {
        streams.err << recording.first().name()
                    << ":1:1: expected true angles in machine coordinates for --tolerance, found "
                    << (localFrame() ? "a run in the local frame" : "no columns of them") << '\n';
        return false;
    }
    // An earlier summary must not be left beside new results.
    return (options.summary.empty() || writtenSummary.open(options.summary, streams))
           && written.open(options.output, streams);
}

bool ReadingsRun::readUncertainties() {
    uncertainties = options.uncertainties;
    return options.uncertaintyFile.empty()
           || host::readUncertainties(options.uncertaintyFile, mode, uncertainties.emplace(),
                                      streams);
}

// Columns that the model does without, too.
bool ReadingsRun::renamedColumnsThere() const {
    for (const auto& [ours, theirs] : options.format.otherNames) {
        if (table().find(ours))
            continue;
        streams.err << recording.first().name() << ":1:1: expected a column " << quoted(theirs)
                    << " for " << ours << ", found none\n";
        return false;
    }
    return true;
}

bool ReadingsRun::referenceReadable() const {
    if (options.referenceLine == 0 || recording.first().size() > 0)
        return true;
    streams.err << recording.first().name()
                << ":1:1: expected a file for --reference-line, found what can be read only once\n";
    return false;
}

std::size_t ReadingsRun::jobs() const {
    if (recording.size() == 0)
        return std::max<std::size_t>(options.jobs, 1);
    const std::size_t asked = options.jobs > 0 ? options.jobs : std::thread::hardware_concurrency();
    const std::size_t blocks =
        recording.size() / options.format.blockBytes + options.readings.size();
    return std::clamp<std::size_t>(asked, 1, blocks);
}

struct ReadingsRun::Batch {
    LineBlock block;
    std::vector<Row> rows; // the first count of them
    std::size_t count = 0;
    std::string text;
};

void ReadingsRun::work(Batch& batch, RowRunner& runner, Table& cursor,
                       const Prepare& prepare) const {
    batch.count = 0;
    batch.text.clear();
    cursor.start(batch.block);
    while (cursor.nextRow()) {
        if (batch.count == batch.rows.size())
            batch.rows.emplace_back();
        Row& row = batch.rows[batch.count];
        row.table = batch.block.table;
        row.line = cursor.lineNumber();
        if (row.line == options.referenceLine && row.table == 0)
            row.result = given.result;
        else
            runner.run(cursor, row.result);
        row.time.reset();
        row.truth = truth->angles(cursor);
        row.messages.assign(cursor.messages().begin(), cursor.messages().end());
        prepare(cursor, row, batch.text);
        row.textEnd = batch.text.size();
        ++batch.count;
    }
}

bool ReadingsRun::finishBatch(Batch& batch, const Take& take, Progress& progress) {
    const LineBlock& block = batch.block;
    std::size_t textEnd = 0;
    std::size_t taken = 0;
    bool goOn = true;
    for (; goOn && taken < batch.count; ++taken) {
        const Row& row = batch.rows[taken];
        limit.take(row.messages);
        totals.add(row.result, row.line, row.truth,
                   recording.hasSeveral() ? block.name : std::string_view());
        textEnd = row.textEnd;
        goOn = take(row);
    }
    progress.add(taken, block.text.size());
    const std::string_view text(batch.text);
    if (!written.write(text.substr(0, textEnd), block.inputWouldWait))
        return false;
    if (taken == batch.count) {
        ends += block.said;
        broken = block.brokenOff;
    }
    return goOn && !broken;
}

void ReadingsRun::forEach(const Prepare& prepare, const Take& take) {
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

    bool inputWouldWait = false;
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
                    return work(batch, *workers[i].runner, workers[i].table, prepare);
                work(batch, *lead, workers[i].table, prepare);
                if (lead->hasReference())
                    afterReference();
            },
        .finish = [&](Batch& batch) { return finishBatch(batch, take, progress); },
        .overlap = [&] { return independent && !inputWouldWait; },
    });
    batches.run(workers.size());
}

bool ReadingsRun::writeSummary() {
    writtenSummary.text() = summaryText(totals, options, mode, uncertainties);
    return writtenSummary.finish(streams.err);
}

bool ReadingsRun::withinTolerance() const {
    if (!options.tolerance)
        return true;
    if (totals.compared() == 0) {
        streams.err << "expected rows with angles to compare for --tolerance, found none\n";
        return false;
    }
    if (totals.largestResidual() <= *options.tolerance)
        return true;
    streams.err << "expected differences to the true angles of " << shown(*options.tolerance)
                << " degrees at most, found " << degreesText(totals.largestResidual()) << '\n';
    return false;
}

bool ReadingsRun::strictlyGood() const {
    if (!options.strict)
        return true;
    if (totals.count(RowState::ok) > 0)
        return totals.allTrusted() && totals.spareReadings().objection().empty()
               && parameterWarnings == 0;
    streams.err << "expected rows with angles for --strict, found none\n";
    return false;
}

int ReadingsRun::finish() {
    limit.reportOthers(recording.name());
    streams.err << ends;
    if (!written.finish(streams.err) || broken)
        return unusable;
    totals.printCounts(streams.err);
    if (!options.quiet)
        totals.printStatistics(streams.err);
    if (!options.summary.empty() && !writeSummary())
        return unusable;
    const bool close = withinTolerance();
    const bool trusted = strictlyGood();
    if (Interrupt::requested())
        return interrupted;
    return totals.allGood() && close && trusted ? allGood : someRowsBad;
}

} // namespace kiv::host
