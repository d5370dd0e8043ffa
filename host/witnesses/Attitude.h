#pragma once

#include <array>
#include <cmath>

#include "KIVInterface/Records.h"

namespace kiv::host {

// A difference of angles in degrees to within half a turn; the remainder, which is slow, is seldom
// needed.
inline float turned(float to, float from) {
    const float difference = to - from;
    return std::abs(difference) <= 180 ? difference : std::remainder(difference, 360.0F);
}

// The readings of a row as they show where the sensor is and how it stands.
struct Attitude {
    float azimuth, elevation; // raw, degrees
    float levelX, levelY;     // corrected, degrees
    float temperature;
    float distance;
    std::array<float, 3> sight; // unit vector

    static Attitude of(const KIV_RAWINFO& raw, const KIV_INFO& info) {
        const float(&v)[3] = raw.vector;
        const float distance = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
        const float scale = 1 / distance;
        return {raw.azimuthRaw,
                raw.elevationRaw,
                info.levelX,
                info.levelY,
                raw.temperature,
                distance,
                {v[0] * scale, v[1] * scale, v[2] * scale}};
    }
};

// The length of the difference of two lines of sight: their angle in radians, where it is small.
inline float chord(const std::array<float, 3>& a, const std::array<float, 3>& b) {
    const float x = a[0] - b[0], y = a[1] - b[1], z = a[2] - b[2];
    return std::sqrt(x * x + y * y + z * z);
}

} // namespace kiv::host
