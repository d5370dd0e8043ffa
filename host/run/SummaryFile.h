#pragma once

#include <span>
#include <string>

#include "host/run/ReadingsOptions.h"
#include "host/run/UncertaintyFile.h"
#include "host/summary/RecordingDrift.h"
#include "host/summary/Summary.h"
#include "host/witnesses/Witness.h"

namespace kiv::host {

// The summary of a run as one JSON object: angles in degrees, what is not there null. The
// uncertainties are those of the options or of their file, the last members those of another
// object, where its text is not empty.
std::string summaryText(const Summary& summary, std::span<const Witness> witnesses,
                        const RecordingDrift& drift, const ReadingsOptions& options, int mountMode,
                        const GivenUncertainties& uncertainties, const std::string& lastMembers);

} // namespace kiv::host
