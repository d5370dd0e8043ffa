#pragma once

#include <array>
#include <cstddef>

namespace kiv {

// Why a row has no angles.
enum class Reason : unsigned char {
    none,
    // The readings are no use.
    rowShape,
    notANumber,
    zeroVector,
    otherSensor,
    // No orientation is asked for, or none became the reference yet.
    status,
    refMetric,
    refBlocked,
    // The model has no orientation.
    noVertical,
    noAxis,
    levelsOutside,
    alongVertical,
    overflow,
};

struct ReasonWords {
    const char* word; // in a column of results
    const char* text; // in messages
};

inline constexpr std::array<ReasonWords, 13> reasonWords{{
    {"", ""},
    {"row_shape", "a row of another shape"},
    {"not_a_number", "no number"},
    {"zero_vector", "a zero vector"},
    {"other_sensor", "readings of another sensor"},
    {"status", "a status other than 2"},
    {"ref_metric", "a reference metric above 0.4"},
    {"ref_blocked", "a row that may not become the reference"},
    {"no_vertical", "no tilted vertical that both levels show"},
    {"no_axis", "no transverse axis that shows their inclination"},
    {"levels_outside", "both levels outside their tables"},
    {"along_vertical", "a line of sight along the vertical or in a level's plane with it"},
    {"overflow", "angles that are no numbers"},
}};

constexpr const ReasonWords& wordsOf(Reason reason) {
    return reasonWords[static_cast<std::size_t>(reason)];
}

} // namespace kiv
