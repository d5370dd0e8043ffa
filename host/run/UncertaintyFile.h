#pragma once

#include <string>

#include "host/base/Cli.h"
#include "uncertainty/Uncertainties.h"

namespace kiv::host {

// Reads standard uncertainties from a JSON object of names and numbers, - standing for standard
// input. False, and messages with their places, where it cannot be used with a mount mode.
bool readUncertainties(const std::string& file, int mountMode, Uncertainties& uncertainties,
                       const Streams& streams);

} // namespace kiv::host
