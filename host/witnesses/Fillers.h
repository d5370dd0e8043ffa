#pragma once

#include <cmath>

#include "host/witnesses/WatchedSensor.h"

namespace kiv::host {

// Numbers that loggers write for a reading that is not there. They are fillers where they can be no
// reading.

inline constexpr float leastFiller = 999; // magnitude

bool isListedFiller(float magnitude);

inline bool mayBeFiller(float value) {
    return std::abs(value) >= leastFiller && isListedFiller(std::abs(value));
}

inline bool isFillerOfLevel(float value, const WatchedSensor::Level& level) {
    return mayBeFiller(value) && (value < level.least || value > level.largest);
}

// Outside what any sensor is used at, degrees Celsius.
inline bool isFillerOfTemperature(float value) {
    return !(value >= -60 && value <= 150);
}

} // namespace kiv::host
