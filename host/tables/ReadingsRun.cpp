#include "host/tables/ReadingsRun.h"

#include <ostream>

#include "host/parameters/ParameterFile.h"
#include "host/summary/SummaryFile.h"
#include "host/tables/UncertaintyFile.h"
#include "sensor/SensorAccess.h"

namespace kiv::host {

bool ReadingsRun::open(std::span<const std::string_view> results, InputFacts* facts) {
    const auto overwrites = [&](const std::string& output) {
        return refuseOverwriting(output,
                                 {options.parameterFile, options.readings, options.uncertaintyFile},
                                 streams.err);
    };
    if (!loadSensor(options.parameterFile, parameters, sensor, streams.err, facts)
        || overwrites(options.output) || overwrites(options.summary))
        return false;
    sensor.setMcsFlag(!options.localFrame);
    mode = SensorAccess::mountMode(sensor);
    const bool knowsFrames = !reportsOwnMatrix(mode);
    if (options.localFrame && !knowsFrames)
        streams.err << "kiv: --frame local has no effect in mount mode " << mode << '\n';
    if (!readUncertainties())
        return false;
    if (!readings.open(options.readings, readingColumns, results, options.format, streams,
                       facts ? &facts->readings : nullptr))
        return false;
    truth.emplace(table(), !options.localFrame || !knowsFrames);
    if (options.tolerance && !truth->comparable()) {
        streams.err << readings.name() << ":1:1: expected true angles in machine coordinates for "
                    << "--tolerance, found "
                    << (options.localFrame && knowsFrames ? "a run in the local frame"
                                                          : "no columns of them")
                    << '\n';
        return false;
    }
    return written.open(options.output, streams);
}

F_VECTOR4 ReadingsRun::levelLimits() {
    F_VECTOR4 limits{};
    parameters.GetKIVLevelLimits(limits);
    return limits;
}

bool ReadingsRun::readUncertainties() {
    uncertainties = options.uncertainties;
    if (options.uncertaintyFile.empty())
        return true;
    if (options.uncertaintyFile == "-" && options.readings == "-") {
        streams.err << "kiv: expected readings or uncertainties from standard input, found both\n";
        return false;
    }
    return host::readUncertainties(options.uncertaintyFile, mode, uncertainties.emplace(), streams);
}

bool ReadingsRun::writeSummary() const {
    Output file;
    if (!file.open(options.summary, streams))
        return false;
    file.text() = summaryText(rows, options, mode);
    return file.finish(streams.err);
}

bool ReadingsRun::withinTolerance() const {
    if (!options.tolerance || rows.largestResidual() <= *options.tolerance)
        return true;
    streams.err << "expected differences to the true angles of " << shown(*options.tolerance)
                << " degrees at most, found " << degreesText(rows.largestResidual()) << '\n';
    return false;
}

int ReadingsRun::finish() {
    if (!readings.finish(written, streams.err))
        return unusable;
    rows.printCounts(streams.err);
    if (!options.quiet)
        rows.printStatistics(streams.err);
    if (!options.summary.empty() && !writeSummary())
        return unusable;
    const bool close = withinTolerance();
    if (Interrupt::requested())
        return interrupted;
    const bool trusted = !options.strict || rows.allTrusted();
    return rows.allGood() && close && trusted ? allGood : someRowsBad;
}

} // namespace kiv::host
