#pragma once

#include <string>

#include "host/base/InputFacts.h"
#include "host/calibration/Calibrator.h"

namespace kiv::host {

// What a calibration found, as one HTML page that loads nothing.
std::string calibrationPage(const CalibrationOutcome& outcome, const CalibrateOptions& options,
                            const CalibrationRows& rows, const InputFacts& inputs);

} // namespace kiv::host
