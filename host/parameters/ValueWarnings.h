#pragma once

#include <vector>

#include "params/Survey.h"

namespace kiv::host {

// What the format allows and a sensor's values should not be. Blocks with a value that could not be
// read are passed over, but for the count of a table.
std::vector<Finding> valueWarnings(const ParsedFile& file, const Survey& survey);

} // namespace kiv::host
