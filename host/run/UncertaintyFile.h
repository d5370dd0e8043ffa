#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/base/Cli.h"
#include "host/run/CalibrationResult.h"
#include "uncertainty/Uncertainties.h"

namespace kiv::host {

// Where the angles' uncertainty comes from; nothing where it is not given.
struct GivenUncertainties {
    std::optional<Uncertainties> ofReadings; // and of parameters that no calibration found
    std::optional<CalibrationResult> calibration;
};

// Reads JSON files, - standing for standard input: one of the two kinds each, and of each kind one.
// Given may have uncertainties of readings already. False, and messages with their places, where a
// file cannot be used with the sensor.
bool readUncertainties(const std::vector<std::string>& files, const CalibratedFile& parameterFile,
                       GivenUncertainties& given, const Streams& streams);

} // namespace kiv::host
