#pragma once

#include <cstddef>
#include <optional>
#include <span>

namespace kiv {

// Whether each of a turn's corrections, in the order of their angles, is far larger than those
// around it. Nothing is said of fewer than four.
bool isOutlier(std::span<const float> corrections, std::size_t which);

// A value that lies off the curve through all others, and what these ask for in its place.
struct CurveOutlier {
    std::size_t row;
    double expected;
};
// Rows of a knot and a value. The value that lies off by the most is one where it is off by far
// more than any other is off the rest. Nothing is said of fewer than six, nor of knots that turn.
std::optional<CurveOutlier> curveOutlier(std::span<const float> rows);

} // namespace kiv
