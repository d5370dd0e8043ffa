#include "host/CommandLine.h"

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "host/HelpTexts.h"
#include "host/tables/Numbers.h"

namespace kiv::host {

namespace {

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
        return message.append(", found ").append(text);
    };
    return {check, ""};
}

constexpr double largestDeviation = 1e6;

} // namespace

CommandLine::CommandLine() : app("", "kiv") {
    app.formatter_fn([](const CLI::App* command, const std::string&, CLI::AppFormatMode) {
        return std::string(helpText(command->get_name()));
    });
    app.set_version_flag("--version", KIV_VERSION);
    app.require_subcommand(1);
    app.allow_windows_style_options(false); // a path may begin with a slash
    addRun();
    addReport();
    addSimulate();
    addHome();
    addCheck();
    addInfo();
    addRewrite();
}

CLI::App& CommandLine::add(const char* name, std::function<int(const Streams&)> whenParsed) {
    CLI::App* command = app.add_subcommand(name);
    command->callback([this, whenParsed = std::move(whenParsed)] { action = whenParsed; });
    return *command;
}

void CommandLine::addReadings(CLI::App& command, ReadingsOptions& options) {
    command.add_option("parameter_file", options.parameterFile)->required();
    command.add_option("readings", options.readings)->required();
    command.add_option("-o,--output", options.output)->capture_default_str();
    command
        .add_option_function<std::string>(
            "--frame", [&](const std::string& frame) { options.localFrame = frame == "local"; })
        ->check(CLI::IsMember({"machine", "local"}))
        ->default_str("machine");
    command.add_flag("-q,--quiet", options.quiet);
}

void CommandLine::addRun() {
    CLI::App& command = add("run", [this](const Streams& s) { return runReadings(run, s); });
    addReadings(command, run);
    command.add_flag("--stop-on-bad", run.stopOnBad);
}

void CommandLine::addReport() {
    addReadings(add("report", [this](const Streams& s) { return reportReadings(report, s); }),
                report);
}

void CommandLine::addSimulate() {
    CLI::App& command =
        add("simulate", [this](const Streams& s) { return simulateReadings(simulate, s); });
    command.add_option("parameter_file", simulate.parameterFile)->required();
    command.add_option("-o,--output", simulate.readings)->capture_default_str();
    CLI::Option* poses = command.add_option("--poses", simulate.poses);
    command.add_option("--trajectory", simulate.trajectory)
        ->excludes(poses)
        ->check(CLI::IsMember({"still", "turn", "swing", "random"}))
        ->capture_default_str();
    command.add_option("--tilt", simulate.tilt)
        ->excludes(poses)
        ->check(numberFrom(0, 60))
        ->capture_default_str();
    command.add_option("--rows", simulate.rows)
        ->excludes(poses)
        ->check(CLI::Range(1L, 1000000000L))
        ->capture_default_str();
    command.add_option("--rate", simulate.rate)
        ->check(numberFrom(1e-6, 1e9))
        ->capture_default_str();
    const auto deviation = [&](const char* name, double& value) {
        command.add_option(name, value)
            ->check(numberFrom(0, largestDeviation))
            ->capture_default_str();
    };
    deviation("--noise-vector", simulate.noise.vector);
    deviation("--noise-encoder", simulate.noise.encoder);
    deviation("--noise-level", simulate.noise.level);
    command.add_option("--bad-share", simulate.badShare)
        ->check(numberFrom(0, 1))
        ->capture_default_str();
    command.add_option("--seed", simulate.seed)->capture_default_str();
}

void CommandLine::addHome() {
    CLI::App& command = add("home", [this](const Streams& s) { return solveHomeAngles(home, s); });
    CLI::Option* table = command.add_option("table", home.table);
    command.add_option("-o,--output", home.results)->needs(table)->capture_default_str();
    const auto vectorOption = [&](const char* name, std::vector<double>& values, int count) {
        command.add_option(name, values)
            ->delimiter(',')
            ->expected(count)
            ->excludes(table)
            ->check(CLI::Number);
    };
    vectorOption("--frame-x", home.frameX, 3);
    vectorOption("--direction", home.direction, 3);
    vectorOption("--angles", home.angles, 2);
    vectorOption("--tilt", home.tilt, 2);
}

void CommandLine::addCheck() {
    CLI::App& command = add("check", [this](const Streams& s) { return checkFiles(check, s); });
    command.add_option("parameter_files", check.files)->required();
    command.add_flag("--strict", check.strict);
}

void CommandLine::addInfo() {
    CLI::App& command = add("info", [this](const Streams& s) { return showFile(info, s); });
    command.add_option("parameter_file", info.file)->required();
    command.add_flag("--json", info.json);
}

void CommandLine::addRewrite() {
    CLI::App& command =
        add("rewrite", [this](const Streams& s) { return rewriteFile(rewrite, s); });
    command.add_option("parameter_file", rewrite.file)->required();
}

int runTool(int argc, const char* const* argv, const Streams& streams) {
    CommandLine line;
    try {
        line.app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return line.app.exit(e, streams.out, streams.err) == 0 ? allGood : unusable;
    }
    return line.action(streams);
}

} // namespace kiv::host
