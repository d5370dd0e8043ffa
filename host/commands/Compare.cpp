#include "host/commands/Compare.h"

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <string_view>
#include <utility>

#include "host/base/Files.h"
#include "host/base/Interrupt.h"
#include "host/compare/ComparePage.h"
#include "host/compare/Comparison.h"
#include "host/compare/Joined.h"
#include "host/parameters/ParameterFile.h"
#include "host/run/ReadingsRun.h"
#include "judged/JudgedSensor.h"
#include "params/Quoted.h"
#include "sensor/SensorAccess.h"
#include "support/Numbers.h"

namespace kiv::host {

namespace {

// The row of a table, where it has one.
struct Side {
    std::size_t line = 0;
    std::optional<Orientation> orientation;
};

// Takes pairs of rows into the figures and, where they are wanted, into rows of differences.
class Differences {
public:
    Differences(const CompareOptions& asked, ComparisonNames ofAll)
        : options(asked), names(std::move(ofAll)) {
        page.commandLine = options.commandLine;
        page.tolerance = options.tolerance;
    }

    void addInput(const char* role, const std::string& name, const std::string& digest) {
        page.inputs.push_back({role, name, digest});
    }

    // The key is a column of its own where it has a name.
    void startRows(const std::string& keyName, const Table& like, std::string& text) {
        keyed = !keyName.empty();
        std::vector<std::string_view> columns;
        if (keyed)
            columns.push_back(keyName);
        for (const std::string_view name :
             {"found", "first_line", "second_line", "d_rx_deg", "d_ry_deg", "d_rz_deg", "angle_deg",
              "axis_x", "axis_y", "axis_z", "u_rx_deg", "u_ry_deg", "u_rz_deg"})
            columns.push_back(name);
        writer.emplace(RowWriter::Marks{options.rowFormat, like.separator(), like.decimalComma()},
                       columns);
        writer->appendNames(text);
    }

    void take(const Side& first, const Side& second, std::string_view table, const Cell& key,
              std::string& text) {
        std::optional<OrientationDifference> difference;
        if (first.orientation && second.orientation) {
            difference = differenceOf(*first.orientation, *second.orientation, names.localFrame);
            figures.add(*difference, first.line, table);
            if (!options.report.empty())
                page.add(*difference);
        } else if (first.orientation) {
            figures.addOnlyInFirst();
        } else if (second.orientation) {
            figures.addOnlyInSecond();
        } else {
            return;
        }
        if (writer)
            appendRow(first, second, difference, key, text);
    }

    void takeTruth(const Orientation& first, const Orientation& second,
                   const std::array<double, 3>& truth) {
        const Orientation exact{truth, {}};
        figures.addMisses(differenceOf(exact, first, names.localFrame).angle,
                          differenceOf(exact, second, names.localFrame).angle);
    }

    // Shows the figures, writes summary and page and tests the tolerance. An exit code.
    int finish(const Streams& streams, Output& summary, Output& report) const {
        figures.print(streams.err, names);
        if (!options.report.empty()) {
            report.text() = comparePage(page, figures, names);
            if (!report.finish(streams.err))
                return unusable;
        }
        if (!options.summary.empty()) {
            summary.text() = figures.json(names, options.tolerance);
            if (!summary.finish(streams.err))
                return unusable;
        }
        if (figures.rows() == 0) {
            streams.err << names.second << ": expected rows with angles that " << names.first
                        << " has, too, found none\n";
            return someRowsBad;
        }
        const Comparison::Figures& angle = figures.angle();
        if (!options.tolerance || angle.largest <= *options.tolerance)
            return allGood;
        streams.err << names.second << ": expected turns of " << shown(*options.tolerance)
                    << " degrees at most against " << names.first << ", found "
                    << degreesText(angle.largest) << " in " << angle.place << '\n';
        return someRowsBad;
    }

private:
    void appendRow(const Side& first, const Side& second,
                   const std::optional<OrientationDifference>& difference, const Cell& key,
                   std::string& text) const {
        std::vector<Cell> cells;
        if (keyed)
            cells.push_back(key);
        cells.push_back(std::string_view(difference          ? "both"
                                         : first.orientation ? "first"
                                                             : "second"));
        for (const Side* side : {&first, &second})
            cells.push_back(side->line > 0 ? Cell(static_cast<std::int64_t>(side->line)) : Cell());
        const auto triple = [&](const std::array<double, 3>* values) {
            for (std::size_t i = 0; i < 3; ++i)
                cells.push_back(values ? Cell((*values)[i]) : Cell());
        };
        triple(difference ? &difference->angles : nullptr);
        cells.push_back(difference ? Cell(difference->angle) : Cell());
        triple(difference ? &difference->axis : nullptr);
        triple(difference && difference->uncertainty ? &*difference->uncertainty : nullptr);
        writer->append(text, cells);
    }

    const CompareOptions& options;
    ComparisonNames names;
    ComparePage page;
    Comparison figures;
    std::optional<RowWriter> writer;
    bool keyed = false;
};

// No output is an input or another output.
bool outputsUsable(const CompareOptions& options, std::ostream& err) {
    std::vector<std::string> inputs = options.tables;
    inputs.insert(inputs.end(), options.parameters.begin(), options.parameters.end());
    inputs.insert(inputs.end(),
                  {options.readings.referenceFile, options.readings.format.columnsFile});
    const std::vector<std::string>& uncertain = options.readings.uncertaintyFiles;
    inputs.insert(inputs.end(), uncertain.begin(), uncertain.end());
    std::vector<std::string> outputs;
    for (const std::string& output : {options.output, options.summary, options.report}) {
        if (output.empty())
            continue;
        for (const std::string& other : outputs)
            if (sameOutput(output, other)) {
                err << shownOutput(output) << ":1:1: expected an output of its own, found that of "
                    << "another\n";
                return false;
            }
        if (refuseOverwriting(output, inputs, err))
            return false;
        outputs.push_back(output);
    }
    return true;
}

bool openTexts(const CompareOptions& options, Output& summary, Output& report,
               const Streams& streams) {
    return (options.summary.empty() || summary.openWhole(options.summary, streams))
           && (options.report.empty() || report.openWhole(options.report, streams));
}

int compareTables(const CompareOptions& options, const Streams& streams) {
    if (options.tables.size() != 2 || options.tables[0] == options.tables[1]) {
        streams.err << "kiv compare: expected two tables of results, found "
                    << (options.tables.size() == 2 ? "one twice"
                                                   : std::to_string(options.tables.size()))
                    << "\nkiv compare --help shows what can be given\n";
        return unusable;
    }
    Join join;
    if (options.join == "time")
        join.by = Join::By::time;
    else if (options.join != "line")
        join = {Join::By::column, options.join};
    TableFormat format = options.readings.format;
    format.hasOptions = false; // of columns' names, which are those of kiv run here
    ResultTable first(format, streams), second(format, streams);
    Sha256 firstDigest, secondDigest;
    if (!outputsUsable(options, streams.err) || !first.open(options.tables[0], join, &firstDigest)
        || !second.open(options.tables[1], join, &secondDigest))
        return unusable;
    const auto kindOf = [](const ResultTable& table) -> std::string_view {
        return table.table().find("first_line") ? "poses" : "results";
    };
    if (join.by == Join::By::line && kindOf(first) != kindOf(second)) {
        streams.err << second.name() << ":1:1: expected a table of " << kindOf(first) << " as "
                    << first.name() << " is, found one of " << kindOf(second) << '\n';
        return unusable;
    }
    Output rows, summary, report;
    if (!openTexts(options, summary, report, streams)
        || (!options.output.empty() && !rows.open(options.output, streams)))
        return unusable;

    Differences differences(
        options, {first.name(), second.name(), "", options.join, options.readings.localFrame});
    if (!options.output.empty())
        differences.startRows(join.column, first.table(), rows.text());
    bool written = true;
    const auto sideOf = [](const ResultRow* row) {
        return row ? Side{row->line, row->orientation} : Side{};
    };
    std::optional<bool> sameTimes; // the first row's, in the two tables
    std::size_t lineOfOther = 0;   // where they are no longer the same
    const bool read = joinRows(first, second, join.by, [&](const ResultRow* a, const ResultRow* b) {
        if (a && b && join.by == Join::By::line) {
            const bool same = !a->key.empty() && a->key == b->key;
            if (sameTimes.value_or(false) && !same && lineOfOther == 0)
                lineOfOther = b->line;
            sameTimes = sameTimes.value_or(same);
        }
        differences.take(sideOf(a), sideOf(b), {},
                         CarriedText{a   ? std::string_view(a->key)
                                     : b ? std::string_view(b->key)
                                         : std::string_view()},
                         rows.text());
        written = options.output.empty() || (rows.endRow(false) && written);
    });
    if ((!options.output.empty() && !rows.finish(streams.err)) || !read || !written)
        return unusable;
    if (Interrupt::requested())
        return interrupted;
    if (lineOfOther > 0)
        streams.err << second.name() << ':' << lineOfOther << ":1: expected the time that "
                    << first.name() << " has in this line, as in the first row, found another; "
                    << "--join time compares rows of the same time (warning)\n";
    differences.addInput("First table", first.name(), firstDigest.hex());
    differences.addInput("Second table", second.name(), secondDigest.hex());
    const int code = differences.finish(streams, summary, report);
    return code == allGood && !(first.allUsed() && second.allUsed()) ? someRowsBad : code;
}

// The sensor of the second parameter file, which takes the same readings.
class SecondSensor {
public:
    bool open(const std::string& file, ReadingsRun& run, const ReadingsOptions& options,
              const Streams& streams) {
        CKivPrm record;
        CKiv sensor;
        if (!loadSensor(file, record, sensor, streams.err, &facts))
            return false;
        sensor.setMcsFlag(!options.localFrame);
        const int mode = SensorAccess::mountMode(sensor);
        if (reportsOwnMatrix(mode) != reportsOwnMatrix(run.mountMode())) {
            streams.err << printable(file) << ": expected a mount mode whose angles compare with "
                        << "those of mode " << run.mountMode() << ", found mode " << mode << '\n';
            return false;
        }
        F_VECTOR4 limits{};
        record.GetKIVLevelLimits(limits);
        judged.emplace(sensor, limits);
        const std::optional<Uncertainties>& given = run.givenUncertainties().ofReadings;
        wanted.uncertainty = given.has_value();
        if (given)
            judged->setUncertainties(*given);
        const GivenReference& reference = run.givenReference();
        referenceIsGiven = reference.line > 0;
        const Reason reason =
            referenceIsGiven ? judged->captureReference(reference.result.raw) : Reason::none;
        if (reason != Reason::none)
            streams.err << printable(file) << ": expected a model that takes the reference, found "
                        << wordsOf(reason).text << '\n';
        return reason == Reason::none;
    }

    std::optional<Orientation> of(const RowResult& row) {
        if (row.state == RowState::refused
            || (row.state == RowState::reference && referenceIsGiven))
            return std::nullopt;
        judged->judge(row.raw, wanted, reading);
        return orientationOf(reading);
    }

    std::string digest() const { return facts.parameterFile.hex(); }

    static std::optional<Orientation> orientationOf(const JudgedReading& reading) {
        if (reading.state != RowState::ok)
            return std::nullopt;
        Orientation found{{reading.info.rx, reading.info.ry, reading.info.rz}, {}};
        if (reading.hasUncertainty)
            found.uncertainty = reading.uncertainty.standard;
        return found;
    }

private:
    InputFacts facts;
    std::optional<JudgedSensor> judged;
    JudgedSensor::Wanted wanted{.state = true};
    JudgedReading reading;
    bool referenceIsGiven = false;
};

int compareParameters(const CompareOptions& options, const Streams& streams) {
    ReadingsOptions readings = options.readings;
    readings.parameterFile = options.parameters[0];
    readings.readings = options.tables;
    readings.output = options.output.empty() ? "-" : options.output;
    readings.quiet = true;
    readings.withMatrix = false;
    const auto named = [&](const std::string& file) {
        return requireParameterFileName(file, streams.err).has_value();
    };
    if (options.tables.empty()) {
        streams.err << "kiv compare --parameters: expected readings behind the two files, found "
                    << "none\n";
        return unusable;
    }
    if (!outputsUsable(options, streams.err) || !named(options.parameters[1]))
        return unusable;
    InputFacts facts; // which the run's inputs write to as long as they are there
    ReadingsRun run(readings, streams, false);
    SecondSensor second;
    Output summary, report;
    constexpr std::string_view ofRows[] = {"found"};
    const auto usable = [&] {
        if (!second.open(options.parameters[1], run, readings, streams))
            return false;
        if (facts.parameterFile.hex() != second.digest())
            return true;
        streams.err << printable(options.parameters[1]) << ": expected another parameter file than "
                    << printable(options.parameters[0]) << ", found the same content\n";
        return false;
    };
    if (!run.open(ofRows, &facts, usable) || !openTexts(options, summary, report, streams))
        return unusable;

    const bool several = readings.readings.size() > 1;
    Differences differences(options,
                            {printable(options.parameters[0]), printable(options.parameters[1]),
                             run.name(), "line", run.localFrame()});
    if (!options.output.empty())
        differences.startRows(several ? "table" : "", run.table(), run.output().text());
    run.forEach([](const Table&, ComputedRow&, std::string&) {},
                [&](const ComputedRow& row) {
                    const std::string table = shownInput(readings.readings[row.table]);
                    const auto ofFirst = SecondSensor::orientationOf(row.result);
                    const auto ofSecond = second.of(row.result);
                    if (ofFirst && ofSecond && row.truth)
                        differences.takeTruth(*ofFirst, *ofSecond, *row.truth);
                    differences.take({row.line, ofFirst}, {row.line, ofSecond},
                                     several ? std::string_view(table) : std::string_view(),
                                     std::string_view(table), run.output().text());
                    return true;
                });
    const int code = run.finish();
    if (code == unusable || code == interrupted)
        return code;
    differences.addInput("Old parameter file", printable(options.parameters[0]),
                         facts.parameterFile.hex());
    differences.addInput("New parameter file", printable(options.parameters[1]), second.digest());
    for (const TableFacts& table : facts.readings)
        differences.addInput("Readings", table.name, table.readToEnd ? table.digest.hex() : "");
    return std::max(code, differences.finish(streams, summary, report));
}

} // namespace

int compareResults(const CompareOptions& options, const Streams& streams) {
    return options.parameters.empty() ? compareTables(options, streams)
                                      : compareParameters(options, streams);
}

} // namespace kiv::host
