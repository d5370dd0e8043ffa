#pragma once

#include <array>
#include <cstddef>

#include "support/Principles.h"

namespace kiv {

// What the angles' uncertainty comes from. The vector's three are those of x, y and z, or, by the
// line of sight, along it, across it to the side and across it upwards.
enum class Source : unsigned char {
    vector1,
    vector2,
    vector3,
    azimuth,
    elevation,
    levelX,
    levelY,
    temperature,
    // The sensor's parameters follow.
    azimuthOffset,
    elevationOffset,
    tiltOffsetX,
    tiltOffsetY,
};

constexpr std::size_t sourceCount = 12;

constexpr std::size_t at(Source source) {
    return static_cast<std::size_t>(source);
}

// Standard uncertainties (one standard deviation) of independent quantities: the vector in its
// length unit, encoders and all offsets in degrees, raw tilt readings and temperature in their
// units. 0: exactly known.
struct Uncertainties {
    std::array<double, sourceCount> of{};
    bool bySight = false; // what the vector's three are

    double& operator[](Source source) { return of[at(source)]; }
    double operator[](Source source) const { return of[at(source)]; }
};

// Whether a model's angles depend on it.
constexpr bool reads(Principle principle, Source source) {
    const bool ofLevelX = source == Source::levelX || source == Source::tiltOffsetX;
    return !ofLevelX || traitsOf(principle).levelX;
}

} // namespace kiv
