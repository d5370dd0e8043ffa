#pragma once

#include <span>
#include <string>

#include "host/calibration/Calibrator.h"
#include "params/Document.h"

class CKivPrm;

namespace kiv::host {

// Puts the values that were found into the numbers of a parameter file, and what single precision
// leaves of them back. Beyond the elevations of the rows a change of their table stays what it is
// at the last one.
void setIn(Document& document, std::vector<CalibrationOutcome::Found>& found, double lowest,
           double highest);

void storeIn(CKivPrm& record, const Document& document);

// The text of a parameter file with digits that read back to the same numbers.
std::string textOf(const Document& document);

} // namespace kiv::host
