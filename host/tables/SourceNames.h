#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "uncertainty/Uncertainties.h"

namespace kiv::host {

struct SourceName {
    std::string_view key;                         // in a file
    std::string_view words;                       // in a table, with the unit
    std::array<std::optional<Source>, 2> sources; // one or two alike
    bool bySight = false;                         // of the vector: how its three are taken
};

inline constexpr std::array<SourceName, 14> sourceNames{{
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

} // namespace kiv::host
