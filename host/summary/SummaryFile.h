#pragma once

#include <string>

#include "host/summary/Summary.h"
#include "host/tables/ReadingsOptions.h"

namespace kiv::host {

// The summary of a run as one JSON object: angles in degrees, what is not there null.
std::string summaryText(const Summary& summary, const ReadingsOptions& options, int mountMode);

} // namespace kiv::host
