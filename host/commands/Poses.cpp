#include "host/commands/Poses.h"

#include <algorithm>
#include <array>
#include <optional>
#include <ostream>
#include <vector>

#include "host/base/Interrupt.h"
#include "host/poses/PoseCells.h"
#include "host/poses/PoseSummary.h"
#include "host/poses/ResultRows.h"
#include "host/report/PosesPage.h"
#include "host/rows/RowLoop.h"
#include "host/rows/RowTime.h"
#include "host/rows/TableInput.h"
#include "host/run/ReadingsRun.h"
#include "judged/RowResults.h"
#include "params/Quoted.h"
#include "support/Numbers.h"

namespace kiv::host {

namespace {

// The table of poses, and what is said of all of them.
class PoseOutput {
public:
    PoseOutput(const PosesOptions& asked, bool localFrame, std::ostream& messages)
        : options(asked), err(messages), columns{asked.grouping, asked.readings},
          summary(asked.grouping, localFrame) {
        page.commandLine = asked.commandLine;
        page.localFrame = localFrame;
    }

    // False, and a message, where a column that the options name is not there, or one of poses has
    // its name.
    bool usable(const Table& table, const std::string& name, bool uncertainties, bool truth,
                bool trust) {
        columns.uncertainties = uncertainties;
        columns.truth = truth;
        columns.trust = trust;
        header = cellsOf({}, columns);
        std::vector<std::string_view> names;
        for (const PoseCell& cell : header)
            names.push_back(cell.name);
        decimalComma = table.decimalComma();
        writer.emplace(RowWriter::Marks{options.rowFormat, table.separator(), decimalComma}, names);
        const Grouping& grouping = options.grouping;
        if (grouping.pause && !RowTime(table).there()) {
            err << name << ":1:1: expected a column time_s or time for --pause, found none\n";
            return false;
        }
        return find(table, name, grouping.by, "--by", places[0])
               && find(table, name, grouping.poseId, "--pose-id", places[1]);
    }

    void appendNames(std::string& out) const { writer->appendNames(out); }
    void append(std::string& out, const Pose& pose) {
        std::vector<PoseCell> texts = cellsOf(pose, columns);
        std::vector<Cell> cells;
        for (PoseCell& cell : texts) {
            if (cell.number && decimalComma)
                std::replace(cell.text.begin(), cell.text.end(), '.', ',');
            cells.push_back(cell.text.empty() ? Cell()
                            : cell.number     ? Cell(CarriedText{cell.text})
                                              : Cell(std::string_view(cell.text)));
        }
        writer->append(out, cells);
        summary.add(pose);
        if (!options.report.empty())
            page.add(pose);
    }
    void setCells(const Table& row, ComputedRow& computed) const {
        for (std::size_t i = 0; i < places.size(); ++i)
            computed.cells[i].assign(places[i] ? row.cell(*places[i]) : std::string_view());
    }

    PoseSummary& ofAll() { return summary; }

    void addInput(const char* role, const std::string& name, const Sha256& digest) {
        page.inputs.push_back({role, name, digest});
    }
    // Into the file that was opened for it; true without one.
    bool writePage(Output& report) const {
        if (options.report.empty())
            return true;
        report.text() = posesPage(page, summary);
        return report.finish(err);
    }

    // An exit code: a table of poses without any mean is nobody's result.
    int verdict(const std::string& tableName) const {
        if (Interrupt::requested())
            return allGood;
        if (summary.withMean() > 0)
            return options.strict && summary.inMotion() > 0 ? someRowsBad : allGood;
        err << tableName << ": expected a pose with a mean, found none";
        if (options.grouping.still)
            err << " of " << options.grouping.fewestRows << " rows within "
                << shown(*options.grouping.still) << " degrees of their mean";
        err << '\n';
        return someRowsBad;
    }

private:
    bool find(const Table& table, const std::string& tableName, const std::string& column,
              const char* option, std::optional<std::size_t>& place) const {
        if (column.empty())
            return true;
        const auto named = std::count_if(header.begin(), header.end(),
                                         [&](const PoseCell& cell) { return cell.name == column; });
        place = table.find(column);
        if (place && named == 1)
            return true;
        err << tableName << ":1:1: expected a column " << inQuotes(column) << " for " << option
            << (place ? " whose name no column of poses has, found one that has\n"
                      : ", found none\n");
        return false;
    }

    const PosesOptions& options;
    std::ostream& err;
    PoseColumns columns;
    std::vector<PoseCell> header;
    std::optional<RowWriter> writer;
    bool decimalComma = false;
    std::array<std::optional<std::size_t>, 2> places; // of --by and --pose-id
    PoseSummary summary;
    PosesPage page;
};

// The page's file, where one is asked for and no other file of the command.
bool openPage(const PosesOptions& options, Output& report, const Streams& streams) {
    std::vector<std::string> inputs = options.readings;
    inputs.insert(inputs.end(), options.uncertaintyFiles.begin(), options.uncertaintyFiles.end());
    inputs.insert(inputs.end(), {options.parameterFile, options.referenceFile, options.results,
                                 options.format.columnsFile});
    return options.report.empty()
           || (!refuseSharing(options.output, options.report, streams.err)
               && !(!options.summary.empty()
                    && refuseSharing(options.summary, options.report, streams.err))
               && !refuseOverwriting(options.report, inputs, streams.err)
               && report.openWhole(options.report, streams));
}

int ofReadings(const PosesOptions& options, const Streams& streams) {
    InputFacts facts; // which the run's inputs write to as long as they are there
    ReadingsRun run(options, streams, !options.summary.empty());
    std::optional<PoseOutput> poses;
    Output report;
    const auto usableInputs = [&] {
        poses.emplace(options, run.localFrame(), streams.err);
        return poses->usable(run.table(), run.name(), run.givesUncertainties(), run.comparable(),
                             true)
               && openPage(options, report, streams);
    };
    if (!run.open({}, &facts, usableInputs))
        return unusable;
    poses->appendNames(run.output().text());
    PoseGathering gathering(options.grouping, givesMatrix(run.mountMode()), run.localFrame(),
                            [&](const Pose& pose) { poses->append(run.output().text(), pose); });
    run.forEach([&](const Table& row, ComputedRow& computed,
                    std::string&) { poses->setCells(row, computed); },
                [&](const ComputedRow& row) {
                    gathering.add(row);
                    return true;
                });
    gathering.end();
    poses->ofAll().setRowsWithoutPose(gathering.rowsWithoutPose());
    run.addToSummary(poses->ofAll().json());
    const int code = run.finish();
    if (code == unusable)
        return unusable;
    poses->ofAll().print(streams.err, !options.quiet);
    poses->addInput("Parameter file", options.parameterFile, facts.parameterFile);
    for (const TableFacts& readings : facts.readings)
        poses->addInput("Readings", readings.name, readings.digest);
    if (!poses->writePage(report))
        return unusable;
    return std::max(code, poses->verdict(run.name()));
}

int ofResults(const PosesOptions& options, const Streams& streams) {
    const std::vector<std::string> inputs{options.results, options.format.columnsFile};
    if (refuseSharing(options.output, options.summary, streams.err)
        || refuseOverwriting(options.output, inputs, streams.err)
        || (!options.summary.empty() && refuseOverwriting(options.summary, inputs, streams.err)))
        return unusable;
    TableInput input(resultRowColumns, options.format);
    MessageLimit limit(options.format.mostMessages, streams.err);
    Output output, summary, report;
    Sha256 digest;
    PoseOutput poses(options, options.localFrame, streams.err);
    std::optional<Interrupt::Waiting> waiting(true); // nothing is written yet
    if (!input.open(options.results, {}, streams, &digest))
        return unusable;
    Table& table = input.table();
    const ResultRows results(table, options.localFrame);
    if (!poses.usable(table, input.name(), results.hasUncertainties(), results.hasTruth(),
                      results.hasTrust())
        || (!options.summary.empty() && !summary.openWhole(options.summary, streams))
        || !openPage(options, report, streams) || !output.open(options.output, streams))
        return unusable;
    waiting.reset();
    input.showWarnings(streams.err);
    poses.appendNames(output.text());
    PoseGathering gathering(options.grouping, results.hasMatrices(), options.localFrame,
                            [&](const Pose& pose) { poses.append(output.text(), pose); });
    ComputedRow row;
    bool allRead = true;
    const auto next = [&] { return input.nextRow(); };
    forEachRow(input, next, [&](bool inputWouldWait) {
        results.read(table, row);
        poses.setCells(table, row);
        allRead = allRead && table.messages().empty();
        limit.take(table.messages());
        gathering.add(row);
        return output.endRow(inputWouldWait);
    });
    gathering.end();
    poses.ofAll().setRowsWithoutPose(gathering.rowsWithoutPose());
    if (!input.finish(limit, output, streams.err))
        return unusable;
    poses.ofAll().print(streams.err, !options.quiet);
    poses.addInput("Results", input.name(), digest);
    if (!poses.writePage(report))
        return unusable;
    if (!options.summary.empty()) {
        summary.text() = poses.ofAll().json() + '\n';
        if (!summary.finish(streams.err))
            return unusable;
    }
    const int verdict = poses.verdict(input.name());
    return Interrupt::requested() ? interrupted : allRead ? verdict : someRowsBad;
}

} // namespace

int findPoses(const PosesOptions& options, const Streams& streams) {
    const bool ofTables = !options.parameterFile.empty() && !options.readings.empty();
    if (options.results.empty() ? ofTables : options.parameterFile.empty())
        return options.results.empty() ? ofReadings(options, streams) : ofResults(options, streams);
    streams.err << "kiv poses: expected a parameter file and readings, or --from FILE, found "
                << (!options.results.empty()        ? "both\n"
                    : options.parameterFile.empty() ? "neither\n"
                                                    : "no readings\n");
    return unusable;
}

} // namespace kiv::host
