#include "host/run/ReadingsRun.h"

#include <algorithm>
#include <atomic>
#include <optional>
#include <thread>

#include "host/base/InOrder.h"
#include "host/base/Interrupt.h"
#include "host/base/Progress.h"

namespace kiv::host {

bool ReadingsRun::open(std::span<const std::string_view> results, InputFacts* facts,
                       const std::function<bool()>& usableInputs) {
    const Interrupt::Waiting waiting(true); // nothing is written yet
    return inputs.open(results, facts) && (!usableInputs || usableInputs())
           && outputs.open(results.empty());
}

std::size_t ReadingsRun::jobs() const {
    const Recording& recording = inputs.recording();
    if (recording.size() == 0)
        return std::max<std::size_t>(options.jobs, 1);
    const std::size_t asked = options.jobs > 0 ? options.jobs : std::thread::hardware_concurrency();
    const std::size_t blocks =
        recording.size() / options.format.blockBytes + options.readings.size();
    return std::clamp<std::size_t>(asked, 1, blocks);
}

void ReadingsRun::work(RowBatch& batch, RowRunner& runner, Table& cursor,
                       const Prepare& prepare) const {
    batch.count = 0;
    batch.text.clear();
    inputs.recording().start(cursor, batch.block);
    while (cursor.nextRow()) {
        if (batch.count == batch.rows.size())
            batch.rows.emplace_back();
        ComputedRow& row = batch.rows[batch.count];
        row.table = batch.block.table;
        row.line = cursor.lineNumber();
        if (inputs.isReference(row.table, row.line))
            row.result = inputs.givenReference().result;
        else
            runner.run(cursor, row.result);
        const bool hasCells = row.result.reason != Reason::rowShape;
        row.time = hasCells ? inputs.time().of(cursor) : std::nullopt;
        row.namesAgain = row.result.state == RowState::refused && cursor.repeatsNames();
        row.truth = inputs.truth().angles(cursor);
        row.messages.assign(cursor.messages().begin(), cursor.messages().end());
        prepare(cursor, row, batch.text);
        row.textEnd = batch.text.size();
        row.blankRows = cursor.blankRows();
        ++batch.count;
    }
    batch.blankRows = cursor.blankRows();
}

void ReadingsRun::forEach(const Prepare& prepare, const RunOutputs::Take& take) {
    RowRunner& lead = inputs.firstRunner();
    Recording& recording = inputs.recording();
    Progress progress(streams.err, streams.errIsTerminal && !options.quiet, recording.size());
    struct Worker {
        std::optional<RowRunner> runner;
        Table table;
    };
    std::vector<Worker> workers(jobs(), Worker{std::nullopt, table()});
    std::atomic<bool> independent = false; // the rows, of each other
    const auto afterReference = [&] {
        for (Worker& worker : workers)
            worker.runner.emplace(lead);
        independent = true;
    };
    if (lead.hasReference())
        afterReference();

    bool inputWouldWait = false;
    InOrder<RowBatch> batches({
        .read =
            [&](RowBatch& batch) {
                const Interrupt::Waiting waiting(inputWouldWait);
                const bool found = !Interrupt::requested() && recording.nextBlock(batch.block);
                inputWouldWait = batch.block.inputWouldWait;
                return found;
            },
        .work =
            [&](RowBatch& batch, std::size_t i) {
                if (independent)
                    return work(batch, *workers[i].runner, workers[i].table, prepare);
                work(batch, lead, workers[i].table, prepare);
                if (lead.hasReference())
                    afterReference();
            },
        .finish = [&](RowBatch& batch) { return outputs.add(batch, take, progress); },
        .overlap = [&] { return independent && !inputWouldWait; },
    });
    batches.run(workers.size());
    outputs.endRows();
}

} // namespace kiv::host
