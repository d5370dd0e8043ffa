#include "host/run/RunInputs.h"

#include <algorithm>
#include <ostream>

#include "host/parameters/ParameterFile.h"
#include "sensor/SensorAccess.h"

namespace kiv::host {

bool RunInputs::open(std::span<const std::string_view> results, InputFacts* facts) {
    CKiv sensor;
    InputFacts own;
    InputFacts& all = facts ? *facts : own;
    if (!inOrder() || !loadSensor(options.parameterFile, parameters, sensor, streams.err, &all)
        || !namesUsable())
        return false;
    warnings = all.parameterWarnings;
    sensor.setMcsFlag(!options.localFrame);
    mode = SensorAccess::mountMode(sensor);
    if (options.localFrame && !localFrame())
        streams.err << "kiv: --frame local has no effect in mount mode " << mode << '\n';
    given.ofReadings = options.uncertainties;
    const CalibratedFile parameterFile{options.parameterFile, all.parameterFile.hex(), sensor};
    if (!readUncertainties(options.uncertaintyFiles, parameterFile, given, streams))
        return false;
    F_VECTOR4 levelLimits{};
    parameters.GetKIVLevelLimits(levelLimits);
    runner.emplace(sensor, levelLimits, given.ofReadings,
                   given.calibration ? &given.calibration->calibration : nullptr,
                   options.withMatrix, options.withUncertainty);
    if (!tables.open(results, facts ? &facts->readings : nullptr)
        || !tables.first().hasRenamedColumns(streams.err) || !referenceReadable()
        || !takeReference(options, *runner, streams, reference,
                          facts ? &facts->reference : nullptr))
        return false;
    runner->expectRowsOf(parseParameterFileName(options.parameterFile)->id, tables.table());
    trueAngles.emplace(tables.table(), !localFrame());
    rowTime.emplace(tables.table());
    return comparableWhereAsked();
}

// The parameter file stands in front.
bool RunInputs::inOrder() const {
    if (parseParameterFileName(options.parameterFile))
        return true;
    for (const std::string& table : options.readings)
        if (parseParameterFileName(table)) {
            streams.err << shownInput(options.parameterFile)
                        << ": expected the parameter file in front of the tables, found "
                        << shownInput(table) << " behind it\n";
            return false;
        }
    return true;
}

bool RunInputs::namesUsable() const {
    std::vector<std::string> inputs = options.readings;
    inputs.insert(inputs.end(), options.uncertaintyFiles.begin(), options.uncertaintyFiles.end());
    inputs.insert(inputs.end(), {options.referenceFile, options.format.columnsFile});
    if (std::count(inputs.begin(), inputs.end(), "-") > 1) {
        streams.err << "kiv: expected one input from standard input, found several\n";
        return false;
    }
    inputs.push_back(options.parameterFile);
    return !refuseSharing(options.output, options.summary, streams.err)
           && !refuseOverwriting(options.output, inputs, streams.err)
           && !refuseOverwriting(options.summary, inputs, streams.err);
}

bool RunInputs::referenceReadable() const {
    if (options.referenceLine == 0 || tables.first().size() > 0)
        return true;
    streams.err << tables.first().name()
                << ":1:1: expected a file for --reference-line, found what can be read only once\n";
    return false;
}

bool RunInputs::comparableWhereAsked() const {
    if (!options.tolerance || trueAngles->comparable())
        return true;
    streams.err << tables.first().name()
                << ":1:1: expected true angles in machine coordinates for --tolerance, found "
                << (localFrame() ? "a run in the local frame" : "no columns of them") << '\n';
    return false;
}

} // namespace kiv::host
