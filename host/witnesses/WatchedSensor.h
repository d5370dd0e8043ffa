#pragma once

#include <array>
#include <cmath>
#include <utility>
#include <vector>

class CKivPrm;

namespace kiv::host {

// What of a sensor's parameters says which readings it can have.
struct WatchedSensor {
    explicit WatchedSensor(const CKivPrm& record);

    class Encoder {
    public:
        Encoder() = default;
        // Its range to either side of the offset, degrees; stretches of more than 60 degrees
        // without a calibration, each from an angle of the first turn to one behind it.
        Encoder(float middle, float half, std::vector<std::array<float, 2>> uncalibrated)
            : offset(middle), halfAngle(half), gaps(std::move(uncalibrated)) {}

        // The angles of a reading, raw and corrected, are where the encoder has none.
        bool beyond(float raw, float corrected) {
            return (std::abs(corrected - offset) > halfAngle || raw <= from || raw >= to)
                   && isBeyond(raw, corrected);
        }

    private:
        bool isBeyond(float raw, float corrected);

        float offset = 0, halfAngle = 0;
        std::vector<std::array<float, 2>> gaps;
        // Raw angles between these are in no gap, which spares to look for one.
        float from = 0, to = 0;
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
