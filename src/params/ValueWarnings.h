#pragma once

#include <vector>

#include "params/Survey.h"

namespace kiv {

// What the format allows and a sensor's values should not be, text behind the last block, and an
// end that may be cut, in the text's order. Blocks with a value that could not be read are passed
// over, but for the count of a table.
std::vector<Finding> warningsIn(const ParsedFile& file, const Survey& survey);

} // namespace kiv
