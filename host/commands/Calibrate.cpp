#include "host/commands/Calibrate.h"

#include <algorithm>
#include <filesystem>
#include <list>
#include <optional>
#include <ostream>
#include <sstream>

#include "KIVInterface/CKiv.h"
#include "KIVInterface/CKivPrm.h"
#include "host/base/Files.h"
#include "host/base/Interrupt.h"
#include "host/calibration/Calibrator.h"
#include "host/calibration/NewDocument.h"
#include "host/calibration/ResultFile.h"
#include "host/commands/Simulate.h"
#include "host/parameters/Findings.h"
#include "host/parameters/ParameterFile.h"
#include "host/report/CalibrationPage.h"
#include "host/rows/TableInput.h"
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
        std::error_code ignored;
        if (std::filesystem::is_directory(pathOf(output), ignored)) {
            err << shownOutput(output) << ":1:1: expected a name for a file, found a folder\n";
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

// One prior for each parameter that is found.
bool priorsUsable(const CalibrateOptions& options, std::ostream& err) {
    for (auto prior = options.priors.begin(); prior != options.priors.end(); ++prior) {
        const auto isSame = [&](const Prior& other) { return other.parameter == prior->parameter; };
        const bool held = std::find(options.hold.begin(), options.hold.end(), prior->parameter)
                          != options.hold.end();
        if (!held && std::none_of(options.priors.begin(), prior, isSame))
            continue;
        err << "kiv: expected one --prior for each parameter that is found, found "
            << nameOf(prior->parameter) << (held ? " with --hold, too\n" : " twice\n");
        return false;
    }
    return true;
}

// A table of poses has angles that one of readings has measured.
bool isOfPoses(const std::string& file, const TableFormat& format, const Streams& streams) {
    constexpr std::string_view angles[] = {"yaw_deg", "pitch_deg", "roll_deg"};
    std::ostringstream said; // again where it is read
    TableInput input(angles, format);
    return input.open(file, {}, {streams.in, said, said}) && !input.table().find("azimuth_deg");
}

// For a dry run: readings that the sensor would give in a table of poses; what standard input has
// is kept. False, and a message, where there are none.
bool takePoses(const CalibrateOptions& options, CKivPrm& record, CalibrationRows& rows,
               const Streams& streams) {
    const std::string& file = options.readings.front();
    const bool once = file == "-";
    if (options.readings.size() > 1
        || (!once && (mayWait(file) || !isOfPoses(file, options.format, streams))))
        return true;
    Input input;
    TableFacts facts;
    std::string given;
    {
        const Interrupt::Waiting waiting(true);
        if (!input.open(file, streams, &facts.digest) || !input.readAll(given, streams.err))
            return false;
    }
    facts.name = input.name();
    std::istringstream text(given);
    std::ostringstream made;
    const Streams poses{text, made, streams.err, false, false, facts.name};
    if (once && !isOfPoses("-", options.format, poses)) {
        rows.takeText(std::move(given));
        return true;
    }
    text.clear();
    text.seekg(0);
    SimulateOptions simulate;
    simulate.poses = "-";
    simulate.posesFormat.mostMessages = options.format.mostMessages;
    if (simulateReadings(simulate, record, poses) != allGood)
        return false;
    rows.takeText(made.str(), facts);
    return true;
}

// Files that belong together: none is there before all are on the disk.
class Outputs {
public:
    // False, and a message, where it cannot be written; an empty name is none.
    bool add(const std::string& name, const std::string& text, std::ostream& err) {
        if (name.empty())
            return true;
        auto& [ofFile, file] = all.emplace_back();
        ofFile = name;
        return good(name, file.prepare({name.c_str()}, [&](ByteSink& sink) { sink.write(text); }),
                    err);
    }
    const std::string& preparedName() const { return all.back().second.preparedName(); }
    bool finish(std::ostream& err) {
        return std::all_of(all.rbegin(), all.rend(),
                           [&](auto& each) { return good(each.first, each.second.finish(), err); });
    }

private:
    static bool good(const std::string& name, const platform::ReplacementFault& fault,
                     std::ostream& err) {
        if (fault)
            err << shownOutput(name) << ": " << fault.reason << "; nothing was written there\n";
        return !fault;
    }

    std::list<std::pair<std::string, platform::Replacement>> all;
};

// Of a file's bytes, whose line ends are the system's.
bool digestOf(const std::string& name, const Streams& streams, Sha256& digest) {
    Input input;
    std::string text;
    return input.open(name, streams, &digest) && input.readAll(text, streams.err);
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
    if (!priorsUsable(options, err) || !namesUsable(options, err)
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
    if (options.dryRun && !takePoses(options, record, rows, streams))
        return unusable;
    const Document& old = examined->parsed.document;
    std::optional<CalibrationOutcome> outcome;
    if (rows.open())
        outcome = Calibrator(options, rows, old, record, uncertainties, err).run();
    if (Interrupt::requested())
        return interrupted;
    if (!outcome)
        return unusable;

    const std::string text = textOf(outcome->document);
    Outputs outputs;
    Sha256 digest;
    if (!options.dryRun
        && (!readsBack(text, outcome->document, options.output, err)
            || !outputs.add(options.output, text, err)
            || !digestOf(outputs.preparedName(), streams, digest)))
        return unusable;
    const std::string result = resultText(*outcome, options, rows, inputs, digest.hex());
    const std::string page =
        options.report.empty() ? "" : calibrationPage(*outcome, options, rows, inputs);
    if (!outputs.add(options.result, result, err) || !outputs.add(options.report, page, err)
        || !writeToStandardOutput(resultTable(*outcome, options, rows), streams)
        || !outputs.finish(err))
        return unusable;
    if (!options.dryRun && !parseParameterFileName(options.output))
        err << shownOutput(options.output) << ":1:1: expected the sensor's name "
            << parseParameterFileName(options.parameterFile)->name
            << ", under which kiv takes a parameter file, found another one (warning)\n";
    return allGood;
}

} // namespace kiv::host
