#pragma once

#include "host/base/Cli.h"
#include "host/calibration/CalibrateOptions.h"

namespace kiv::host {

// Finds the values of a parameter file from readings. An exit code.
int calibrateSensor(const CalibrateOptions& options, const Streams& streams);

} // namespace kiv::host
