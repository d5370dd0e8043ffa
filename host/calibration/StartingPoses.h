#pragma once

#include <iosfwd>

#include "host/calibration/Prediction.h"
#include "host/calibration/Rows.h"

class CKivPrm;

namespace kiv::host {

// Finds what is unknown of the poses as well as the old parameter file tells it, by the library's
// models: a start for the fit. False, and a message, where rows do not tell it at all.
bool findStartingPoses(CalibrationRows& rows, CKivPrm& record, PoseFrame& frame, std::ostream& err);

} // namespace kiv::host
