#pragma once

#include <string>

#include "host/base/InputFacts.h"
#include "host/calibration/Calibrator.h"

namespace kiv::host {

// A calibration as one JSON object: values in the units of their names, what is not there null. The
// digest is that of the new parameter file.
std::string resultText(const CalibrationOutcome& outcome, const CalibrateOptions& options,
                       const CalibrationRows& rows, const InputFacts& inputs,
                       const std::string& digest);

// The same for people: a table, and what there is to say of it.
std::string resultTable(const CalibrationOutcome& outcome, const CalibrateOptions& options,
                        const CalibrationRows& rows);

} // namespace kiv::host
