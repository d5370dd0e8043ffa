#include "host/commands/Calibrate.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <ostream>
#include <sstream>

#include "KIVInterface/CKiv.h"
#include "KIVInterface/CKivPrm.h"
#include "host/base/Files.h"
#include "host/base/Interrupt.h"
#include "host/calibration/Calibration.h"
#include "host/calibration/NewDocument.h"
#include "host/calibration/ResultFile.h"
#include "host/commands/Simulate.h"
#include "host/parameters/Findings.h"
#include "host/parameters/ParameterFile.h"
#include "host/report/CalibrationPage.h"
#include "host/run/UncertaintyFile.h"
#include "params/Quoted.h"
#include "support/Principles.h"
#include "support/platform/ByteSink.h"
#include "support/platform/ByteSource.h"
#include "support/platform/Replacement.h"

namespace kiv::host {

namespace {

bool exists(const std::string& name) {
    std::error_code ignored;
    return std::filesystem::exists(pathOf(name), ignored);
}

// False, and a message, where an output would take an input's place, or without being asked to that
// of another file.
bool namesUsable(const CalibrateOptions& options, std::ostream& err) {
    std::vector<std::string> inputs = options.readings;
    inputs.push_back(options.uncertaintyFile);
    inputs.push_back(options.format.columnsFile);
    if (std::count(inputs.begin(), inputs.end(), "-") > 1) {
        err << "kiv: expected one input from standard input, found several\n";
        return false;
    }
    inputs.push_back(options.parameterFile);
    const std::vector<std::string> outputs{options.output, options.result, options.report};
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        const std::string& output = outputs[i];
        if (output.empty())
            continue;
        if (output == "-") {
            err << "kiv: expected a file for each output, found standard output\n";
            return false;
        }
        if (refuseOverwriting(output, inputs, err) || refuseMissingFolder(output, err))
            return false;
        for (std::size_t j = 0; j < i; ++j)
            if (sameOutput(output, outputs[j])) {
                err << shownOutput(output)
                    << ":1:1: expected an output of its own, found one that another output has\n";
                return false;
            }
        if (exists(output) && !options.replace) {
            err << shownOutput(output)
                << ":1:1: expected a name that is free, found a file; --replace takes its place\n";
            return false;
        }
    }
    const auto id = parseParameterFileName(options.parameterFile);
    const auto newId = parseParameterFileName(options.output);
    if (id && newId && id->id != newId->id) {
        err << shownOutput(options.output) << ":1:1: expected the same sensor's name " << id->name
            << ", found " << newId->name << '\n';
        return false;
    }
    return true;
}

bool readUncertainties(const CalibrateOptions& options, const CalibratedFile& parameterFile,
                       RowUncertainties& all, const Streams& streams) {
    GivenUncertainties given{.ofReadings = options.uncertainties, .calibration = {}};
    std::vector<std::string> files;
    if (!options.uncertaintyFile.empty())
        files.push_back(options.uncertaintyFile);
    if (!host::readUncertainties(files, parameterFile, given, streams))
        return false;
    if (!given.ofReadings) {
        streams.err << "kiv: expected the uncertainties of the readings, found none; give "
                       "--u-encoder, --u-level and --u-vector, or --uncertainties: no weights are "
                       "made up\n";
        return false;
    }
    all = {*given.ofReadings, options.poseUncertainty.value_or(0)};
    return true;
}

// A gain of 0 leaves a reading out, and nothing can be found with it.
bool gainsUsable(const CalibrateOptions& options, CKivPrm& record, int mode, std::ostream& err) {
    const simulator::Mounting m = simulator::mountingOf(record);
    const PrincipleTraits& traits = traitsOf(principleOf(mode));
    const char* zero = nullptr;
    for (const std::size_t i : {4U, 5U, 6U})
        if (traits.readingGains && m.scaleFactors[i] == 0)
            zero = i == 4 ? "scale_factor.4" : i == 5 ? "scale_factor.5" : "scale_factor.6";
    if (traits.levelAxes >= 1 && m.level1Parameters[6] == 0)
        zero = "level_x.gain";
    if (traits.levelAxes >= 2 && m.level2Parameters[6] == 0)
        zero = "level_y.gain";
    if (zero)
        err << printable(options.parameterFile) << ":1:1: expected gains other than 0, found 0 for "
            << zero << "; put a value near the right one there\n";
    return !zero;
}

// The readings that the sensor would give in a table of poses; empty for another table.
std::optional<std::string> readingsOfPoses(const CalibrateOptions& options,
                                           const Streams& streams) {
    if (options.readings.size() != 1 || options.readings[0] == "-")
        return "";
    std::ifstream file(pathOf(options.readings[0]));
    std::string names;
    std::getline(file, names);
    if (names.find("yaw_deg") == names.npos)
        return "";
    SimulateOptions simulate;
    simulate.parameterFile = options.parameterFile;
    simulate.poses = options.readings[0];
    simulate.posesFormat.mostMessages = options.format.mostMessages;
    std::ostringstream text;
    const int code = simulateReadings(simulate, {streams.in, text, streams.err, false, false});
    if (code != allGood)
        return std::nullopt;
    return text.str();
}

bool replaceFile(const std::string& name, const std::string& text, std::ostream& err) {
    const auto fault =
        platform::replaceWhole({name.c_str()}, [&](ByteSink& sink) { sink.write(text); });
    if (fault)
        err << shownOutput(name) << ": " << fault.reason << "; nothing was written there\n";
    return !fault;
}

// The new file reads back to the same values.
bool readsBack(const std::string& text, const Document& document, const std::string& name,
               std::ostream& err) {
    TextSource source(text);
    if (parseForRewrite(source).document == document)
        return true;
    err << shownOutput(name)
        << ": the new file would not read back to its values; nothing was "
           "written\n";
    return false;
}

} // namespace

int calibrateSensor(const CalibrateOptions& options, const Streams& streams) {
    std::ostream& err = streams.err;
    if (options.output.empty() && !options.dryRun) {
        err << "kiv: expected a file for the new parameters, found none; give -o NEW_FILE, or "
               "--dry-run for the plan alone\n";
        return unusable;
    }
    if (!options.report.empty() && options.dryRun) {
        err << "kiv: expected --report or --dry-run, found both; a plan has no residuals to show\n";
        return unusable;
    }
    CKivPrm record;
    CKiv sensor;
    InputFacts inputs;
    if (!namesUsable(options, err)
        || !loadSensor(options.parameterFile, record, sensor, err, &inputs))
        return unusable;
    const auto examined = examineFile(options.parameterFile, err);
    int mode = 0;
    record.getMountMode(mode);
    RowUncertainties uncertainties;
    if (!examined
        || !readUncertainties(options, {options.parameterFile, inputs.parameterFile.hex(), sensor},
                              uncertainties, streams)
        || !gainsUsable(options, record, mode, err))
        return unusable;
    CalibrationRows rows(options, streams, record, mode);
    if (options.dryRun) {
        auto text = readingsOfPoses(options, streams);
        if (!text)
            return unusable;
        if (!text->empty())
            rows.takeText(std::move(*text));
    }
    const Document& old = examined->parsed.document;
    std::optional<CalibrationOutcome> outcome;
    if (rows.open())
        outcome = Calibration(options, rows, old, record, uncertainties, err).run();
    if (Interrupt::requested())
        return interrupted;
    if (!outcome)
        return unusable;

    const std::string text = textOf(outcome->document);
    Sha256 digest; // of the file, whose line ends are the system's
    if (!options.dryRun
        && (!readsBack(text, outcome->document, options.output, err)
            || !replaceFile(options.output, text, err)
            || !examineFile(options.output, err, &digest)))
        return unusable;
    const std::string result = resultText(*outcome, options, rows, inputs, digest.hex());
    if (!options.result.empty() && !replaceFile(options.result, result, err))
        return unusable;
    if (!options.report.empty()
        && !replaceFile(options.report, calibrationPage(*outcome, options, rows, inputs), err))
        return unusable;
    return writeToStandardOutput(resultTable(*outcome, options, rows), streams) ? allGood
                                                                                : unusable;
}

} // namespace kiv::host
