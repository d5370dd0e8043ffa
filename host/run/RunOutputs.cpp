#include "host/run/RunOutputs.h"

#include <ostream>

#include "host/base/Interrupt.h"
#include "host/base/Progress.h"
#include "host/base/ShellWord.h"
#include "host/run/SummaryFile.h"
#include "support/Numbers.h"

namespace kiv::host {

bool RunOutputs::open(bool outputIsOneText) {
    const GivenReference& reference = inputs.givenReference();
    if (options.referenceLine == 0 && reference.line > 0)
        totals.nameReference(reference.table, reference.line, reference.result.trust.trust);
    totals.addCutRows(reference.mayBeCut ? 1 : 0);
    watch.emplace(inputs.record(), inputs.time().column());
    const auto& [ofReadings, calibration] = inputs.uncertainties();
    if (options.withUncertainty)
        totals.expect(ofReadings.has_value(), calibration.has_value());
    // An earlier summary must not be left beside new results.
    return (options.summary.empty() || writtenSummary.openWhole(options.summary, streams))
           && (outputIsOneText ? written.openWhole(options.output, streams)
                               : written.open(options.output, streams));
}

bool RunOutputs::add(const RowBatch& batch, const Take& take, Progress& progress) {
    const LineBlock& block = batch.block;
    std::size_t textEnd = 0;
    std::size_t taken = 0;
    std::size_t blankRows = 0;
    bool goOn = true;
    for (; goOn && taken < batch.count; ++taken) {
        const ComputedRow& row = batch.rows[taken];
        limit.take(row.messages);
        totals.add(row.result, row.line, row.truth,
                   inputs.recording().hasSeveral() ? block.name : std::string_view());
        const auto seconds = row.time ? std::optional(row.time->seconds) : std::nullopt;
        if (followsDrift)
            slow.add(row.result, row.truth, seconds);
        watch->add(
            row.result,
            {.table = row.table, .line = row.line, .time = row.time, .namesAgain = row.namesAgain});
        textEnd = row.textEnd;
        blankRows = row.blankRows;
        goOn = take(row);
    }
    totals.addBlankRows(goOn ? batch.blankRows : blankRows);
    progress.add(taken, block.text.size());
    const std::string_view text(batch.text);
    if (!written.write(text.substr(0, textEnd), block.inputWouldWait))
        return false;
    if (taken == batch.count) {
        ends += block.said;
        totals.addCutRows(block.mayBeCut ? 1 : 0);
        broken = block.brokenOff;
    }
    return goOn && !broken;
}

bool RunOutputs::writeSummary() {
    writtenSummary.text() = summaryText(totals, witnesses(), slow, options, inputs.mountMode(),
                                        inputs.uncertainties(), ofSubcommand);
    return writtenSummary.finish(streams.err);
}

std::vector<std::string> RunOutputs::shownTables() const {
    std::vector<std::string> names;
    for (const std::string& table : options.readings)
        names.push_back(shownInput(table));
    return names;
}

bool RunOutputs::withinTolerance() const {
    if (!options.tolerance)
        return true;
    if (totals.compared() == 0) {
        streams.err << inputs.recording().name()
                    << ": expected rows with angles to compare for --tolerance, found none\n";
        return false;
    }
    const Summary::Residual& worst = totals.largestResidual();
    if (worst.largest <= *options.tolerance)
        return true;
    streams.err << inputs.recording().name() << ": expected differences to the true angles of "
                << shown(*options.tolerance) << " degrees at most, found "
                << degreesText(worst.largest) << " in " << worst.largestPlace << '\n';
    return false;
}

bool RunOutputs::usedARow() const {
    const char* const missed = totals.whatNoRowIs();
    if (missed)
        streams.err << inputs.recording().name() << ": expected " << missed << '\n';
    return !missed;
}

void RunOutputs::pointToCheck() const {
    if (!totals.poorFit())
        return;
    std::string command = "kiv check " + shellWord(options.parameterFile);
    for (const std::string& table : options.readings)
        command += ' ' + shellWord(table);
    for (const auto& [ours, theirs] : options.format.otherNames)
        command.append(" --column ")
            .append(shellWord(std::string(ours).append("=").append(theirs)));
    if (options.format.decimalComma)
        command += " --decimal-comma";
    for (const std::string& file : options.uncertaintyFiles)
        command.append(" --uncertainties ").append(shellWord(file));
    constexpr std::pair<const char*, Source> numbers[] = {
        {" --u-vector ", Source::vector1},
        {" --u-encoder ", Source::azimuth},
        {" --u-level ", Source::levelY},
        {" --u-temperature ", Source::temperature}};
    for (const auto& [option, source] : numbers)
        if (options.uncertainties && (*options.uncertainties)[source] > 0)
            command.append(option).append(shown((*options.uncertainties)[source]));
    streams.err << inputs.recording().name()
                << ": expected a root mean square of the differences to the true angles of at most "
                << roundedText(totals.misfit().allowed(), 2) << " degrees, found "
                << degreesText(totals.misfit().counted().rootMeanSquare()) << "; " << command
                << " looks for the mistake\n";
}

bool RunOutputs::strictlyGood() const {
    if (!options.strict)
        return true;
    if (totals.count(RowState::ok) > 0)
        return totals.allTrusted() && witnesses().empty() && !totals.poorFit()
               && totals.spareReadings().objection().empty() && inputs.parameterWarnings() == 0
               && totals.cutRows() == 0;
    streams.err << inputs.recording().name()
                << ": expected rows with angles for --strict, found none\n";
    return false;
}

int RunOutputs::finish() {
    limit.reportOthers(inputs.recording().name());
    streams.err << ends;
    if (!written.finish(streams.err) || broken)
        return unusable;
    totals.printCounts(streams.err);
    print(witnesses(), shownTables(), options.format.mostMessages, streams.err);
    if (!options.quiet)
        totals.printStatistics(streams.err);
    pointToCheck();
    if (!options.summary.empty() && !writeSummary())
        return unusable;
    const bool used = Interrupt::requested() || usedARow();
    const bool close = used && withinTolerance();
    const bool trusted = used && strictlyGood();
    if (Interrupt::requested())
        return interrupted;
    return totals.allGood() && close && trusted ? allGood : someRowsBad;
}

} // namespace kiv::host
