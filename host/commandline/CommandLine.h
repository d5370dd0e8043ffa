#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include "host/commands/Calibrate.h"
#include "host/commands/Check.h"
#include "host/commands/Compare.h"
#include "host/commands/Home.h"
#include "host/commands/Info.h"
#include "host/commands/Poses.h"
#include "host/commands/Report.h"
#include "host/commands/Rewrite.h"
#include "host/commands/Run.h"
#include "host/commands/Simulate.h"
#include "host/commands/Verify.h"

namespace kiv::host {

// The tool's arguments. What each option means stands in docs/kiv.md, from which --help is made.
class CommandLine {
public:
    CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    // The words that the user gave, for a report.
    void startedAs(int argc, const char* const* argv);

    CLI::App app;
    bool isCommand(const std::string& name) const;
    // The other names are what may stand there, too.
    std::string whyNoCommand(const std::string& word, std::vector<std::string_view> others) const;
    // Runs the subcommand that was parsed. An exit code.
    std::function<int(const Streams&)> action;

private:
    CLI::App& add(const char* name, std::function<int(const Streams&)> whenParsed);
    void addMessages(CLI::App& command, TableFormat& format);
    void addTable(CLI::App& command, TableFormat& format,
                  const std::vector<std::string_view>& columns);
    void addKeep(CLI::App& command, TableFormat& format);
    void addRowFormat(CLI::App& command, RowFormat& format);
    void addRecording(CLI::App& command, ReadingsOptions& options);
    void addReadings(CLI::App& command, ReadingsOptions& options);
    void addUncertainties(CLI::App& command, std::optional<Uncertainties>& given);
    void addRun();
    void addPoses();
    void addReport();
    void addCompare();
    void addSimulate();
    void addHome();
    void addCalibrate();
    void addCheck();
    void addInfo();
    void addRewrite();
    void addVerify();
    void addHelp();

    RunOptions run;
    PosesOptions stillPoses;
    ReportOptions report;
    CompareOptions compare;
    SimulateOptions simulate;
    HomeOptions home;
    CalibrateOptions calibrate;
    CheckOptions check;
    InfoOptions info;
    RewriteOptions rewrite;
    VerifyOptions verify;
    std::string helpOn = "kiv";
};

} // namespace kiv::host
