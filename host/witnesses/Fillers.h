#pragma once

#include "host/witnesses/WatchedSensor.h"

namespace kiv::host {

// Numbers that loggers write for a reading that is not there. They are fillers where they can be no
// reading.

bool mayBeFiller(float value);

inline bool isFillerOfLevel(float value, const WatchedSensor::Level& level) {
    return mayBeFiller(value) && (value < level.least || value > level.largest);
}

// Outside what any sensor is used at, degrees Celsius.
inline bool isFillerOfTemperature(float value) {
    return !(value >= -60 && value <= 150);
}

} // namespace kiv::host
