#include "host/Cli.h"

#include <CLI/CLI.hpp>

#include "host/Check.h"
#include "host/Home.h"
#include "host/Info.h"
#include "host/Report.h"
#include "host/Rewrite.h"
#include "host/Run.h"
#include "host/Simulate.h"

namespace kiv::host {

namespace {

constexpr const char* parameterFileHelp =
    "The sensor's parameter file, named Tg, the sensor ID in decimal, .prm";

} // namespace

int runTool(int argc, const char* const* argv, const Streams& streams) {
    CLI::App app{"Turns the raw readings of KIV sensors into orientations.", "kiv"};
    app.set_version_flag("--version", KIV_VERSION);
    app.require_subcommand(1);
    app.allow_windows_style_options(false); // a path may begin with a slash

    CheckOptions check;
    CLI::App* checkCommand = app.add_subcommand("check", "Say what is wrong with parameter files");
    checkCommand
        ->add_option("files", check.files,
                     "Parameter files; named Tg<ID>.prm, the serial number has to be that ID")
        ->required();
    checkCommand->add_flag("--strict", check.strict, "Let warnings count like errors");
    checkCommand->footer("Exit code 0: no finding counts; 1: some do; 2: wrong usage, or a file "
                         "that cannot be read.");

    InfoOptions info;
    CLI::App* infoCommand =
        app.add_subcommand("info", "Show the values of a parameter file, in its own units");
    infoCommand->add_option("file", info.file, "Parameter file of any name")->required();
    infoCommand->add_flag("--json", info.json, "Every value, as JSON");

    RewriteOptions rewrite;
    CLI::App* rewriteCommand =
        app.add_subcommand("rewrite", "Rewrite a parameter file in the writer's layout");
    rewriteCommand->add_option("file", rewrite.file, parameterFileHelp)->required();
    rewriteCommand->footer("Exit code 0: done; 1: refused, as the file does not follow its format; "
                           "2: wrong usage, or a step that failed.");

    RunOptions run;
    CLI::App* runCommand =
        app.add_subcommand("run", "Compute the orientations of recorded readings");
    runCommand->add_option("parameter_file", run.parameterFile, parameterFileHelp)->required();
    runCommand->add_option("readings", run.readings, "CSV file of readings, - for standard input")
        ->required();
    runCommand->add_option("-o,--output", run.results,
                           "CSV file of results, - for standard output");
    std::string frame = "machine";
    const auto frameOption = [&](CLI::App* command) {
        command
            ->add_option("--frame", frame,
                         "Angles in machine coordinates, or against the reference in local")
            ->check(CLI::IsMember({"machine", "local"}))
            ->capture_default_str();
    };
    frameOption(runCommand);
    runCommand->add_flag("--stop-on-bad", run.stopOnBad,
                         "End behind the first row that is refused or has no orientation");
    runCommand->add_flag("-q,--quiet", run.quiet, "No progress and no summary on standard error");
    runCommand->footer(
        "Exit code 0: all rows good; 1: some rows refused or without an orientation; "
        "2: wrong usage, or a file that cannot be read or written.");

    ReportOptions report;
    CLI::App* reportCommand = app.add_subcommand(
        "report", "Run recorded readings and show what came of them on one HTML page");
    reportCommand->add_option("parameter_file", report.parameterFile, parameterFileHelp)
        ->required();
    reportCommand
        ->add_option("readings", report.readings, "CSV file of readings, - for standard input")
        ->required();
    reportCommand->add_option("-o,--output", report.page, "HTML file, - for standard output");
    frameOption(reportCommand);
    reportCommand->add_flag("-q,--quiet", report.quiet,
                            "No progress and no summary on standard error");
    reportCommand->footer(
        "The charts run over the column time_s where there is one, else over the row number. "
        "Exit code as of run.");

    SimulateOptions simulate;
    CLI::App* simulateCommand =
        app.add_subcommand("simulate", "Make readings of a sensor along a slow turn");
    simulateCommand->add_option("parameter_file", simulate.parameterFile, parameterFileHelp)
        ->required();
    simulateCommand->add_option("-o,--output", simulate.readings,
                                "CSV file of readings, - for standard output");
    simulateCommand->add_option("--rows", simulate.rows, "Number of rows")
        ->check(CLI::Range(1L, 1000000000L))
        ->capture_default_str();
    simulateCommand->add_option("--seed", simulate.seed, "Seed of the trajectory")
        ->capture_default_str();

    HomeOptions home;
    CLI::App* homeCommand = app.add_subcommand(
        "home", "Solve for home angles, from values given here or from the rows of a table");
    CLI::Option* homeTable = homeCommand->add_option(
        "table", home.table, "CSV file of frame_x .. tilt_y_deg, - for standard input");
    homeCommand
        ->add_option("-o,--output", home.results, "CSV file of results, - for standard output")
        ->needs(homeTable);
    const auto vectorOption = [&](const char* name, std::vector<double>& values, int count,
                                  const char* help) {
        return homeCommand->add_option(name, values, help)
            ->delimiter(',')
            ->expected(count)
            ->excludes(homeTable)
            ->check(CLI::Number);
    };
    vectorOption("--frame-x", home.frameX, 3, "First axis of the tilt frame, x,y,z");
    vectorOption("--direction", home.direction, 3, "The direction, x,y,z");
    vectorOption("--angles", home.angles, 2, "Horizontal and vertical angle, degrees");
    vectorOption("--tilt", home.tilt, 2, "Tilts about x and about y, degrees");

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e, streams.out, streams.err) == 0 ? allGood : unusable;
    }
    if (checkCommand->parsed())
        return checkFiles(check, streams);
    if (infoCommand->parsed())
        return showFile(info, streams);
    if (rewriteCommand->parsed())
        return rewriteFile(rewrite, streams);
    run.localFrame = report.localFrame = frame == "local";
    if (runCommand->parsed())
        return runReadings(run, streams);
    if (reportCommand->parsed())
        return reportReadings(report, streams);
    if (homeCommand->parsed())
        return solveHomeAngles(home, streams);
    return simulateReadings(simulate, streams);
}

} // namespace kiv::host
