#pragma once

#include <cstddef>
#include <span>

#include "params/BlockTable.h"

namespace kiv {

// What a calibration can find in a block, by the names of its parameters: the block's values, for
// the machine matrix its turns, for a table the forms below. None where values are counted.
std::span<const char* const> calibratedNamesOf(Block block);

constexpr bool isTable(Block block) {
    return layoutOf(block).kind == BlockKind::encoderTable
           || layoutOf(block).kind == BlockKind::tiltTable;
}

// A smooth change of a table's corrections, degrees, for a parameter of 1 degree. In an azimuth
// table the sine and the cosine of the angle and of twice the angle; in an elevation table the
// angle over 30 degrees and its square; in a tilt table square and cube of the tilt over 10
// degrees. A constant would be an offset, a tilt's line a gain: these are parameters of their own.
// At: the raw angle of an encoder, or the tilt that the table gives, degrees.
double tableForm(Block table, std::size_t form, double at);

} // namespace kiv
