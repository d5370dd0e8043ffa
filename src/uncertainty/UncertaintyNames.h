#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "support/Principles.h"
#include "uncertainty/Uncertainties.h"

namespace kiv {

// The largest of any quantity, in its unit.
inline constexpr double largestUncertainty = 1e6;

// What a standard uncertainty is given by; units in the names, the vector's length unit and those
// of raw readings left out.
struct UncertaintyName {
    const char* text;
    const char* words;                            // in a table, with the unit
    std::array<std::optional<Source>, 2> sources; // one or two alike
    bool bySight = false;                         // of the vector: how its three are taken
};

inline constexpr std::array<UncertaintyName, 14> uncertaintyNames{{
    {"x", "vector x, length unit", {Source::vector1, {}}},
    {"y", "vector y, length unit", {Source::vector2, {}}},
    {"z", "vector z, length unit", {Source::vector3, {}}},
    {"vector_along", "vector along the line of sight, length unit", {Source::vector1, {}}, true},
    {"vector_across",
     "vector across the line of sight, length unit",
     {Source::vector2, Source::vector3},
     true},
    {"azimuth_deg", "raw azimuth, degrees", {Source::azimuth, {}}},
    {"elevation_deg", "raw elevation, degrees", {Source::elevation, {}}},
    {"level_x", "raw level X, its unit", {Source::levelX, {}}},
    {"level_y", "raw level Y, its unit", {Source::levelY, {}}},
    {"temperature", "temperature, its unit", {Source::temperature, {}}},
    {"azimuth_offset_deg", "azimuth offset, degrees", {Source::azimuthOffset, {}}},
    {"elevation_offset_deg", "elevation offset, degrees", {Source::elevationOffset, {}}},
    {"tilt_offset_x_deg", "tilt offset X, degrees", {Source::tiltOffsetX, {}}},
    {"tilt_offset_y_deg", "tilt offset Y, degrees", {Source::tiltOffsetY, {}}},
}};

constexpr bool ofVector(Source source) {
    return source <= Source::vector3;
}

// Why an uncertainty cannot be given.
enum class UncertaintyFault : unsigned char {
    none,
    name,   // there is none of this name
    unread, // the model does not read it
    value,  // not from 0 to the largest
    vector, // of the vector by its axes and by the line of sight
};

// Uncertainties as they are given one by one, for a model.
class NamedUncertainties {
public:
    // A second value of a name takes the first one's place; one that is refused changes nothing.
    UncertaintyFault give(Principle principle, std::string_view name, double value);

    const Uncertainties& values() const { return given; }
    // The first one of the vector; null without one.
    const char* firstOfVector() const { return vectorName; }

private:
    Uncertainties given;
    const char* vectorName = nullptr;
};

} // namespace kiv
