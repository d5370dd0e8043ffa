#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "support/MountMode.h"
#include "uncertainty/Uncertainties.h"

namespace kiv {

// Of any quantity, in its unit.
inline constexpr double largestUncertainty = 1e6;

// What a standard uncertainty is given by; units in the names, the vector's length unit and those
// of raw readings left out.
struct UncertaintyName {
    const char* text;
    std::array<std::optional<Source>, 2> sources; // one or two alike
    bool bySight = false;
};

inline constexpr std::array<UncertaintyName, 14> uncertaintyNames{{
    {"x", {Source::vector1, {}}},
    {"y", {Source::vector2, {}}},
    {"z", {Source::vector3, {}}},
    {"vector_along", {Source::vector1, {}}, true},
    {"vector_across", {Source::vector2, Source::vector3}, true},
    {"azimuth_deg", {Source::azimuth, {}}},
    {"elevation_deg", {Source::elevation, {}}},
    {"level_x", {Source::levelX, {}}},
    {"level_y", {Source::levelY, {}}},
    {"temperature", {Source::temperature, {}}},
    {"azimuth_offset_deg", {Source::azimuthOffset, {}}},
    {"elevation_offset_deg", {Source::elevationOffset, {}}},
    {"tilt_offset_x_deg", {Source::tiltOffsetX, {}}},
    {"tilt_offset_y_deg", {Source::tiltOffsetY, {}}},
}};

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
