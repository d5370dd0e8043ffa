#pragma once

#include <array>
#include <cmath>
#include <cstddef>

#include "KIVInterface/Records.h"

namespace kiv::host {

// Readings that can be stuck or jump, the vector as one, and its parts.
enum class Reading : unsigned char {
    azimuth,
    elevation,
    levelX,
    levelY,
    temperature,
    vector,
    distance = vector,
    sight,
};
inline constexpr std::size_t readingCount = 6; // the vector as one

constexpr std::size_t at(Reading reading) {
    return static_cast<std::size_t>(reading);
}

// The readings of a row as they show where the sensor is and how it stands: raw encoder angles and
// corrected tilts, degrees, the temperature, the distance, the three of the line of sight's unit
// vector, and 0 up to a number that goes by fours.
struct Attitude {
    static constexpr std::size_t size = 12;
    static constexpr std::size_t sightFrom = readingCount;
    std::array<float, size> of;

    Attitude() = default;
    Attitude(const KIV_RAWINFO& raw, const KIV_INFO& info) {
        const float(&v)[3] = raw.vector;
        const float distance = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
        const float scale = 1 / distance;
        of = {raw.azimuthRaw, raw.elevationRaw, info.levelX,  info.levelY, raw.temperature,
              distance,       v[0] * scale,     v[1] * scale, v[2] * scale};
    }

    float operator[](Reading reading) const { return of[at(reading)]; }
    float sightRise() const { return of[sightFrom + 2]; }
};

// A difference of angles in degrees to within half a turn; the remainder, which is slow, is seldom
// needed.
inline float turned(float difference) {
    return std::abs(difference) <= 180 ? difference : std::remainder(difference, 360.0F);
}

// The length of the difference of two lines of sight: their angle in radians, where it is small.
inline float chord(const std::array<float, Attitude::size>& a,
                   const std::array<float, Attitude::size>& b) {
    constexpr std::size_t from = Attitude::sightFrom;
    const float x = a[from] - b[from], y = a[from + 1] - b[from + 1], z = a[from + 2] - b[from + 2];
    return std::sqrt(x * x + y * y + z * z);
}

} // namespace kiv::host
