#pragma once

#include <array>
#include <vector>

class CKivPrm;

namespace kiv::host {

// What of a sensor's parameters says which readings it can have.
struct WatchedSensor {
    explicit WatchedSensor(const CKivPrm& record);

    struct Encoder {
        float offset = 0;    // degrees
        float halfAngle = 0; // its range to either side of the offset, degrees
        // Stretches without a calibration of more than 60 degrees, each from an angle of the first
        // turn to one behind it, degrees.
        std::vector<std::array<float, 2>> gaps;

        // The angles of a reading, raw and corrected, are where the encoder has none.
        bool beyond(float raw, float corrected) const;
    };
    struct Level {
        bool read = false;
        float least = 0, largest = 0; // of its table's readings
    };

    Encoder azimuth, elevation;
    Level levelX, levelY;
    bool temperature = false; // changes a tilt that is read
};

} // namespace kiv::host
