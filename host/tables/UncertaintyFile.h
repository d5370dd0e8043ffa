#pragma once

#include <iosfwd>
#include <string>

#include "uncertainty/Uncertainties.h"

namespace kiv::host {

// Reads standard uncertainties from a JSON object of names and numbers. False, and a message with
// its place, where it cannot be used with a mount mode.
bool readUncertainties(const std::string& file, int mountMode, Uncertainties& uncertainties,
                       std::ostream& err);

} // namespace kiv::host
