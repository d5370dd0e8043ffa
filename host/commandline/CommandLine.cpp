#include "host/commandline/CommandLine.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/base/Files.h"
#include "host/base/ShellWord.h"
#include "host/commandline/HelpTexts.h"
#include "host/commandline/UsageFault.h"
#include "host/parameters/ParameterFile.h"
#include "host/rows/CloseNames.h"
#include "host/rows/ColumnNames.h"
#include "host/rows/NumberText.h"
#include "host/rows/Readings.h"
#include "host/rows/ResultChoice.h"
#include "params/BlockNames.h"
#include "params/Quoted.h"
#include "support/EditDistance.h"
#include "support/Numbers.h"
#include "support/VersionText.h"
#include "uncertainty/UncertaintyNames.h"

namespace kiv::host {

namespace {

constexpr std::size_t mostJobs = 256;
constexpr std::size_t mostRows = 1000000000000;

// A file's name; of several, each.
template <typename Names>
CLI::Option* addFile(CLI::App& command, const char* name, Names& names) {
    return command.add_option(name, names)->check([](const std::string& text) {
        return text.empty() ? "expected a file name, found nothing" : "";
    });
}

// Of what is not a parameter file: none is lost to a name given by mistake.
CLI::Option* addOutput(CLI::App& command, const char* name, std::string& file) {
    return addFile(command, name, file)->check([](const std::string& text) {
        return parseParameterFileName(text)
                   ? "expected another name than a parameter file's, found " + inQuotes(text)
                   : "";
    });
}

// The range check that comes with the parser lets pass what is not a number.
CLI::Validator numberFrom(double least, double largest) {
    const auto check = [=](const std::string& text) {
        const auto number = numberIn<double>(text);
        if (number && *number >= least && *number <= largest)
            return std::string();
        std::string message = "expected a number from ";
        appendNumber(message, least);
        if (std::isfinite(largest))
            appendNumber(message.append(" to "), largest);
        return message.append(", found ").append(inQuotes(text));
    };
    return {check, ""};
}

std::string finiteNumber(const std::string& text) {
    const auto number = numberIn<double>(text);
    if (number && std::isfinite(*number))
        return "";
    return "expected "
           + expectedNumber(numberIn<long double>(text), std::numeric_limits<double>::max())
           + ", found " + inQuotes(text);
}

// One of a few words.
CLI::Validator oneOf(std::vector<std::string> words) {
    const auto check = [words = std::move(words)](const std::string& text) {
        std::string all;
        for (const std::string& word : words) {
            if (word == text)
                return std::string();
            all.append(all.empty()              ? "expected "
                       : &word == &words.back() ? " or "
                                                : ", ")
                .append(word);
        }
        return all + ", found " + inQuotes(text);
    };
    return {check, ""};
}

// A whole number. The parser's own reading takes one with a leading zero as octal.
template <typename Number>
CLI::Option* addCount(CLI::App& command, const char* name, Number& value, Number least,
                      Number largest) {
    const auto check = [=](const std::string& text) {
        const auto number = numberIn<Number>(text);
        if (number && *number >= least && *number <= largest)
            return std::string();
        return "expected a whole number from " + std::to_string(least) + " to "
               + std::to_string(largest) + ", found " + inQuotes(text);
    };
    return command
        .add_option_function<std::string>(
            name, [&value](const std::string& text) { value = *numberIn<Number>(text); })
        ->check(check);
}

// Those of a table of readings that can have another name.
std::vector<std::string_view> columnsOfReadings() {
    std::vector<std::string_view> columns(readingColumns.begin(), readingColumns.end());
    columns.insert(columns.end(), truthColumns.begin(), truthColumns.end());
    columns.push_back(timeColumn);
    columns.push_back(timeStampColumn);
    return columns;
}

std::string shownText(const std::string& text) {
    const bool blank = text.find_first_not_of(' ') == text.npos;
    const bool control = std::any_of(text.begin(), text.end(), [](char c) {
        return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
    });
    return blank || control ? "expected a text without control characters, found " + inQuotes(text)
                            : "";
}

} // namespace

CommandLine::CommandLine() : app("", "kiv") {
    app.set_help_flag("-h");
    app.set_help_all_flag("--help");
    app.formatter_fn([](const CLI::App* command, const std::string&, CLI::AppFormatMode mode) {
        const bool whole = mode == CLI::AppFormatMode::All;
        return std::string((whole ? helpText : shortHelpText)(command->get_name()));
    });
    app.set_version_flag("-V,--version", versionText);
    app.require_subcommand(1);
    app.allow_windows_style_options(false); // a path may begin with a slash
    addRun();
    addPoses();
    addReport();
    addCompare();
    addSimulate();
    addHome();
    addCalibrate();
    addCheck();
    addInfo();
    addRewrite();
    addVerify();
    addHelp();
}

CLI::App& CommandLine::add(const char* name, std::function<int(const Streams&)> whenParsed) {
    CLI::App* command = app.add_subcommand(name);
    command->callback([this, whenParsed = std::move(whenParsed)] { action = whenParsed; });
    return *command;
}

// Messages about rows: a number, or all.
void CommandLine::addMessages(CLI::App& command, TableFormat& format) {
    command
        .add_option_function<std::string>("--messages",
                                          [&format](const std::string& text) {
                                              format.mostMessages =
                                                  numberIn<std::size_t>(text).value_or(SIZE_MAX);
                                          })
        ->check([](const std::string& text) {
            return text == "all" || numberIn<std::size_t>(text)
                       ? ""
                       : "expected a whole number or all, found " + inQuotes(text);
        });
}

// The columns are those that can have another name.
void CommandLine::addTable(CLI::App& command, TableFormat& format,
                           const std::vector<std::string_view>& columns) {
    addMessages(command, format);
    format.hasOptions = true;
    format.columns = columns;
    addFile(command, "--columns", format.columnsFile);
    command.add_flag("--decimal-comma", format.decimalComma);
    command
        .add_option_function<std::vector<std::string>>(
            "--column",
            [&format](const std::vector<std::string>& pairs) {
                for (const std::string& pair : pairs) {
                    const std::size_t end = pair.find('=');
                    format.otherNames.push_back({pair.substr(0, end), pair.substr(end + 1)});
                }
                if (const auto fault = faultOfNames(format))
                    throw CLI::ValidationError("--column", "expected " + fault->expected
                                                               + ", found " + fault->found);
            })
        ->allow_extra_args(false)
        ->check([columns](const std::string& pair) {
            const std::size_t end = pair.find('=');
            if (end != pair.npos && end + 1 < pair.size()
                && std::count(columns.begin(), columns.end(), pair.substr(0, end)) > 0)
                return std::string();
            return "expected NAME=OTHER_NAME with one of the names " + joined(columns) + ", found "
                   + inQuotes(pair);
        });
}

void CommandLine::addKeep(CLI::App& command, TableFormat& format) {
    command
        .add_option_function<std::string>("--keep",
                                          [&format](const std::string& kept) {
                                              format.keepAll = kept == "all";
                                              format.keepNone = kept == "none";
                                          })
        ->check(oneOf({"others", "all", "none"}));
}

// Of the rows that the tool writes.
void CommandLine::addRowFormat(CLI::App& command, RowFormat& format) {
    command
        .add_option_function<std::string>("--format",
                                          [&format](const std::string& name) {
                                              format = name == "jsonl" ? RowFormat::jsonl
                                                                       : RowFormat::csv;
                                          })
        ->check(oneOf({"csv", "jsonl"}));
}

// How tables of readings are read and run.
void CommandLine::addRecording(CLI::App& command, ReadingsOptions& options) {
    command
        .add_option_function<std::string>(
            "--frame",
            [&options](const std::string& frame) { options.localFrame = frame == "local"; })
        ->check(oneOf({"machine", "local"}));
    addTable(command, options.format, columnsOfReadings());
    addCount<std::size_t>(command, "-j,--jobs", options.jobs, 1, mostJobs);
    CLI::Option* line =
        addCount<std::size_t>(command, "--reference-line", options.referenceLine, 2, mostRows);
    addFile(command, "--reference", options.referenceFile)->excludes(line);
}

// The readings' own options.
void CommandLine::addReadings(CLI::App& command, ReadingsOptions& options) {
    addFile(command, "parameter_file", options.parameterFile)->required();
    addFile(command, "readings", options.readings)->required();
    addOutput(command, "-o,--output", options.output)->capture_default_str();
    addRecording(command, options);
    addOutput(command, "--summary", options.summary);
    command.add_option("--tolerance", options.tolerance)->check(numberFrom(0, 180));
    command.add_flag("--strict", options.strict);
    command.add_flag("-q,--quiet", options.quiet);
}

// Each as the noise of simulate.
void CommandLine::addUncertainties(CLI::App& command, std::optional<Uncertainties>& given) {
    const auto uncertainty = [&](const char* name, std::initializer_list<Source> sources) {
        command
            .add_option_function<double>(
                name,
                [&given, all = std::vector<Source>(sources)](const double& value) {
                    if (!given)
                        given.emplace();
                    for (const Source source : all)
                        (*given)[source] = value;
                })
            ->check(numberFrom(0, largestUncertainty));
    };
    uncertainty("--u-vector", {Source::vector1, Source::vector2, Source::vector3});
    uncertainty("--u-encoder", {Source::azimuth, Source::elevation});
    uncertainty("--u-level", {Source::levelX, Source::levelY});
    uncertainty("--u-temperature", {Source::temperature});
}

void CommandLine::addRun() {
    CLI::App& command = add("run", [this](const Streams& s) {
        return readColumnNames(run.format, s) ? runReadings(run, s) : unusable;
    });
    addReadings(command, run);
    addKeep(command, run.format);
    command.add_flag("--stop-on-bad", run.stopOnBad);
    command.add_option("--results", run.results)->check(faultOfResults);
    command.add_flag("--source", run.source);
    addRowFormat(command, run.rowFormat);
    addFile(command, "--uncertainties", run.uncertaintyFiles)->allow_extra_args(false);
    addUncertainties(command, run.uncertainties);
}

void CommandLine::addPoses() {
    CLI::App& command = add("poses", [this](const Streams& s) {
        return readColumnNames(stillPoses.format, s) ? findPoses(stillPoses, s) : unusable;
    });
    addReadings(command, stillPoses);
    command.get_option("parameter_file")->required(false);
    command.get_option("readings")->required(false);
    CLI::Option* from = addFile(command, "--from", stillPoses.results);
    addOutput(command, "--report", stillPoses.report);
    addRowFormat(command, stillPoses.rowFormat);
    addFile(command, "--uncertainties", stillPoses.uncertaintyFiles)->allow_extra_args(false);
    addUncertainties(command, stillPoses.uncertainties);
    for (const char* ofReadings :
         {"--strict", "--tolerance", "--jobs", "--reference-line", "--reference", "--uncertainties",
          "--u-vector", "--u-encoder", "--u-level", "--u-temperature"})
        command.get_option(ofReadings)->excludes(from);
    Grouping& grouping = stillPoses.grouping;
    command.add_option("--by", grouping.by)->check(shownText);
    command.add_option("--pause", grouping.pause)->check(numberFrom(0, INFINITY));
    CLI::Option* still = command.add_option("--still", grouping.still)->check(numberFrom(0, 180));
    addCount<std::size_t>(command, "--rows", grouping.fewestRows, 1, mostRows)->needs(still);
    command.add_flag("--with-not-good", grouping.withNotGood);
    CLI::Option* id = command.add_option("--pose-id", grouping.poseId)->check(shownText);
    command.add_option("--same", grouping.same)->excludes(id)->check(numberFrom(0, 180));
}

void CommandLine::addReport() {
    CLI::App& command = add("report", [this](const Streams& s) {
        return readColumnNames(report.format, s) ? reportReadings(report, s) : unusable;
    });
    addReadings(command, report);
    addFile(command, "--uncertainties", report.uncertaintyFiles)->allow_extra_args(false);
    addUncertainties(command, report.uncertainties);
    command.add_option("--title", report.title)->check(shownText);
    command.add_option("--length-unit", report.lengthUnit)->check(shownText);
}

void CommandLine::addCompare() {
    CLI::App& command = add("compare", [this](const Streams& s) {
        return readColumnNames(compare.readings.format, s) ? compareResults(compare, s) : unusable;
    });
    addFile(command, "tables", compare.tables);
    CLI::Option* parameters =
        addFile(command, "--parameters", compare.parameters)->expected(2)->allow_extra_args(false);
    command.add_option("--join", compare.join)
        ->excludes(parameters)
        ->check(shownText)
        ->capture_default_str();
    addOutput(command, "-o,--output", compare.output);
    addRowFormat(command, compare.rowFormat);
    addOutput(command, "--summary", compare.summary);
    addOutput(command, "--report", compare.report);
    command.add_option("--tolerance", compare.tolerance)->check(numberFrom(0, 180));
    addRecording(command, compare.readings);
    addFile(command, "--uncertainties", compare.readings.uncertaintyFiles)->allow_extra_args(false);
    addUncertainties(command, compare.readings.uncertainties);
    for (const char* ofReadings :
         {"--column", "--columns", "--jobs", "--reference-line", "--reference", "--uncertainties",
          "--u-vector", "--u-encoder", "--u-level", "--u-temperature"})
        command.get_option(ofReadings)->needs(parameters);
}

void CommandLine::startedAs(int argc, const char* const* argv) {
    report.commandLine = "kiv";
    for (int i = 1; i < argc; ++i)
        report.commandLine += ' ' + shellWord(argv[i]);
    compare.commandLine = stillPoses.commandLine = report.commandLine;
}

void CommandLine::addSimulate() {
    CLI::App& command =
        add("simulate", [this](const Streams& s) { return simulateReadings(simulate, s); });
    addFile(command, "parameter_file", simulate.parameterFile)->required();
    addOutput(command, "-o,--output", simulate.readings)->capture_default_str();
    CLI::Option* poses = addFile(command, "--poses", simulate.poses);
    command.add_option("--trajectory", simulate.trajectory)
        ->excludes(poses)
        ->check(oneOf({"still", "turn", "swing", "random"}))
        ->capture_default_str();
    command.add_option("--tilt", simulate.tilt)
        ->excludes(poses)
        ->check(numberFrom(0, 60))
        ->capture_default_str();
    addCount(command, "--rows", simulate.rows, 1L, 1000000000L)
        ->excludes(poses)
        ->default_str(std::to_string(simulate.rows));
    command.add_option("--rate", simulate.rate)
        ->check(numberFrom(1e-6, 1e9))
        ->capture_default_str();
    const auto deviation = [&](const char* name, double& value) {
        command.add_option(name, value)
            ->check(numberFrom(0, largestUncertainty))
            ->capture_default_str();
    };
    deviation("--noise-vector", simulate.noise.vector);
    deviation("--noise-encoder", simulate.noise.encoder);
    deviation("--noise-level", simulate.noise.level);
    command.add_option("--bad-share", simulate.badShare)
        ->check(numberFrom(0, 1))
        ->capture_default_str();
    addCount<std::uint64_t>(command, "--seed", simulate.seed, 0, UINT64_MAX)
        ->default_str(std::to_string(simulate.seed));
    addMessages(command, simulate.posesFormat);
}

void CommandLine::addHome() {
    CLI::App& command = add("home", [this](const Streams& s) {
        return readColumnNames(home.format, s) ? solveHomeAngles(home, s) : unusable;
    });
    CLI::Option* table = addFile(command, "table", home.table);
    addOutput(command, "-o,--output", home.results)->needs(table)->capture_default_str();
    const auto vectorOption = [&](const char* name, std::vector<double>& values, int count) {
        command
            .add_option_function<std::vector<std::string>>(
                name,
                [&values](const std::vector<std::string>& texts) {
                    for (const std::string& text : texts)
                        values.push_back(*numberIn<double>(text));
                })
            ->delimiter(',')
            ->expected(count)
            ->excludes(table)
            ->check(finiteNumber);
    };
    vectorOption("--frame-x", home.frameX, 3);
    vectorOption("--direction", home.direction, 3);
    vectorOption("--angles", home.angles, 2);
    vectorOption("--tilt", home.tilt, 2);
    addTable(command, home.format, {homeColumns.begin(), homeColumns.end()});
    addKeep(command, home.format);
}

namespace {

constexpr const char* expectedParameter =
    "expected names of parameters as kiv info --json has them, block and value joined by a point";

// The name of a parameter or of a block of them, or a message that shows those that are close.
std::string faultOfParameter(const std::string& name) {
    if (!parametersOf(name).empty())
        return "";
    std::string closest;
    std::size_t least = SIZE_MAX;
    for (const Parameter& parameter : allParameters())
        for (const std::string& each : {nameOf(parameter), std::string(keyOf(parameter.block))})
            if (const std::size_t distance = editDistance(each, name); distance < least) {
                least = distance;
                closest = each;
            }
    return std::string(expectedParameter) + ", found " + inQuotes(name) + "; the closest is "
           + closest;
}

constexpr std::string_view usualWord = "usual";

// Usual: whether the word stands among the names; null where it may not.
void addParameters(CLI::App& command, const char* name, std::vector<Parameter>& all, bool* usual) {
    command
        .add_option_function<std::vector<std::string>>(
            name,
            [&all, usual](const std::vector<std::string>& names) {
                for (const std::string& each : names)
                    for (const Parameter& parameter : parametersOf(each))
                        if (std::find(all.begin(), all.end(), parameter) == all.end())
                            all.push_back(parameter);
                if (usual)
                    *usual = std::find(names.begin(), names.end(), usualWord) != names.end();
            })
        ->delimiter(',')
        ->check([usual](const std::string& each) {
            return usual && each == usualWord ? std::string() : faultOfParameter(each);
        });
}

// As NAME=VALUE,U.
std::optional<Prior> priorIn(const std::string& text) {
    const std::size_t equals = text.find('=');
    const std::size_t comma = text.find(',', equals == text.npos ? 0 : equals);
    if (equals == text.npos || comma == text.npos)
        return std::nullopt;
    const auto parameter = parameterOf(text.substr(0, equals));
    const auto value = numberIn<double>(text.substr(equals + 1, comma - equals - 1));
    const auto u = numberIn<double>(text.substr(comma + 1));
    if (!parameter || !value || !u || !std::isfinite(*value) || !std::isfinite(*u) || !(*u > 0))
        return std::nullopt;
    return Prior{*parameter, *value, *u};
}

} // namespace

void CommandLine::addCalibrate() {
    CLI::App& command = add("calibrate", [this](const Streams& s) {
        return readColumnNames(calibrate.format, s) ? calibrateSensor(calibrate, s) : unusable;
    });
    addFile(command, "parameter_file", calibrate.parameterFile)->required();
    addFile(command, "readings", calibrate.readings)->required();
    addFile(command, "-o,--output", calibrate.output);
    addOutput(command, "--result", calibrate.result);
    addOutput(command, "--report", calibrate.report);
    command.add_flag("--replace", calibrate.replace);
    command
        .add_option_function<std::string>("--poses",
                                          [this](const std::string& kind) {
                                              calibrate.poses = kind == "known" ? Poses::known
                                                                : kind == "relative"
                                                                    ? Poses::relative
                                                                    : Poses::stations;
                                          })
        ->check(oneOf({"known", "relative", "stations"}));
    addFile(command, "--uncertainties", calibrate.uncertaintyFile);
    addUncertainties(command, calibrate.uncertainties);
    command.add_option("--u-pose", calibrate.poseUncertainty)->check(numberFrom(0, 180));
    addParameters(command, "--estimate", calibrate.estimate, &calibrate.estimateUsual);
    addParameters(command, "--hold", calibrate.hold, nullptr);
    command
        .add_option_function<std::vector<std::string>>(
            "--prior",
            [this](const std::vector<std::string>& texts) {
                for (const std::string& text : texts)
                    calibrate.priors.push_back(*priorIn(text));
            })
        ->allow_extra_args(false)
        ->check([](const std::string& text) {
            if (priorIn(text))
                return std::string();
            const std::string fault = faultOfParameter(text.substr(0, text.find('=')));
            return fault.empty() ? "expected NAME=VALUE,U with two numbers, U above 0, found "
                                       + inQuotes(text)
                                 : fault;
        });
    command.add_option("--holdout", calibrate.holdout)
        ->check(numberFrom(0, 0.5))
        ->capture_default_str();
    command.add_flag("--robust", calibrate.robust);
    command.add_flag("--dry-run", calibrate.dryRun);
    std::vector<std::string_view> columns(readingColumns.begin(), readingColumns.end());
    columns.insert(columns.end(), truthColumns.begin(), truthColumns.end());
    columns.insert(columns.end(), {"placement", "station"});
    addTable(command, calibrate.format, columns);
    command.add_flag("-q,--quiet", calibrate.quiet);
    addCount<std::size_t>(command, "-j,--jobs", calibrate.jobs, 1, mostJobs);
}

void CommandLine::addCheck() {
    CLI::App& command = add("check", [this](const Streams& s) {
        return readColumnNames(check.format, s) ? checkFiles(check, s) : unusable;
    });
    addFile(command, "files", check.files)->required();
    addTable(command, check.format, columnsOfReadings());
    addFile(command, "--uncertainties", check.uncertaintyFiles)->allow_extra_args(false);
    addUncertainties(command, check.uncertainties);
    command.add_flag("--strict", check.strict);
    command.add_flag("--json", check.json);
}

void CommandLine::addInfo() {
    CLI::App& command = add("info", [this](const Streams& s) { return showFile(info, s); });
    addFile(command, "parameter_file", info.file)->required();
    command.add_flag("--json", info.json);
}

void CommandLine::addRewrite() {
    CLI::App& command =
        add("rewrite", [this](const Streams& s) { return rewriteFile(rewrite, s); });
    addFile(command, "parameter_file", rewrite.file)->required();
}

void CommandLine::addVerify() {
    CLI::App& command =
        add("verify", [this](const Streams& s) { return verifyInstallation(verify, s); });
    addOutput(command, "-o,--output", verify.output)->capture_default_str();
}

void CommandLine::addHelp() {
    CLI::App& command = add("help", [this](const Streams& s) {
        return writeToStandardOutput(std::string(helpText(helpOn)) + '\n', s) ? allGood : unusable;
    });
    command.add_option("subcommand", helpOn)->check([this](const std::string& name) {
        return helpText(name).empty() ? whyNoCommand(name, {"tables", "parameters"}) : "";
    });
}

bool CommandLine::isCommand(const std::string& name) const {
    return !app.get_subcommands(
                   [&](const CLI::App* command) { return command->get_name() == name; })
                .empty();
}

std::string CommandLine::whyNoCommand(const std::string& word,
                                      std::vector<std::string_view> others) const {
    std::string expected = "expected a subcommand";
    for (const std::string_view other : others)
        expected.append(other == others.back() ? " or " : ", ").append(other);
    const auto commands = app.get_subcommands([](const CLI::App*) { return true; });
    for (const CLI::App* command : commands)
        others.push_back(command->get_name());
    const std::string_view nearest = nearestName(others, word);
    std::string step = "kiv --help lists them";
    if (word.ends_with(".prm"))
        step = "kiv run takes a parameter file";
    else if (editDistance(nearest, word) <= word.size() / 2)
        step = "the nearest is " + std::string(nearest);
    return expected + ", found " + inQuotes(word) + "; " + step;
}

namespace {

int runCommand(int argc, const char* const* given, const Streams& streams) {
    std::vector<const char*> arguments(given, given + argc);
    const auto asksForHelp = [](std::string_view word) { return word == "/?"; }; // on Windows
    std::replace_if(arguments.begin(), arguments.end(), asksForHelp, "--help");
    const char* const* argv = arguments.data();
    CommandLine line;
    if (argc < 2) {
        streams.err << "kiv: expected a subcommand, found none; kiv --help lists them\n";
        return unusable;
    }
    if (*argv[1] != '-' && !line.isCommand(argv[1])) {
        streams.err << "kiv: " << line.whyNoCommand(argv[1], {}) << '\n';
        return unusable;
    }
    line.startedAs(argc, argv);
    try {
        line.app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        if (e.get_exit_code() == 0) { // help, or the version
            std::ostringstream text;
            line.app.exit(e, text, streams.err);
            return writeToStandardOutput(text.str(), streams) ? allGood : unusable;
        }
        const bool named = line.isCommand(argv[1]);
        const CLI::App& command = named ? *line.app.get_subcommand(argv[1]) : line.app;
        const std::span<const char* const> words(argv + (named ? 2 : 1), argv + argc);
        const std::string start = named ? std::string("kiv ") + argv[1] : "kiv";
        streams.err << start << usageFault(command, words, e) << '\n'
                    << start << " --help shows what can be given\n";
        return unusable;
    }
    return line.action(streams);
}

} // namespace

// What a subcommand has left in standard output is written here.
int runTool(int argc, const char* const* argv, const Streams& streams) {
    const int code = runCommand(argc, argv, streams);
    Output output;
    output.open("-", streams);
    return code == unusable || output.finish(streams.err) ? code : unusable;
}

} // namespace kiv::host
