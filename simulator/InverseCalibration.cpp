#include "simulator/InverseCalibration.h"

#include <cmath>

#include "KIVInterface/CKivPrm.h"
#include "support/Principles.h"

namespace kiv::simulator {

namespace {

// The correction is small and varies slowly, so that stepping by the remaining error closes in at
// once.
float rawAngleOf(const CEncoder& encoder, double corrected) {
    auto raw = static_cast<float>(corrected);
    for (int i = 0; i < 20; ++i) {
        const double error = corrected - encoder.encCalibration(raw);
        const auto next = static_cast<float>(raw + error);
        if (next == raw)
            break;
        raw = next;
    }
    return raw;
}

} // namespace

InverseCalibration::InverseCalibration(CKivPrm& record)
    : azimuth(azimuthEncoderOf(record)),
      elevation(elevationEncoderOf(record)), tiltX{tiltXCurveOf(record)}, tiltY{tiltYCurveOf(
                                                                              record)} {
    record.getMountMode(mode);
    F_VECTOR2 offset{};
    F_VECTOR4 thermal{};
    record.getTiltOffset(offset);
    record.getThermalFactor(thermal);
    tiltX.offset = offset.x;
    tiltX.slope = thermal.x;
    tiltX.intercept = thermal.y;
    tiltY.offset = offset.y;
    tiltY.slope = thermal.z;
    tiltY.intercept = thermal.w;
}

// Bisection on the calibration curve, which has to be monotonic; beyond the table it goes on
// straight, taken as far as a whole turn on either side.
float InverseCalibration::Level::rawOf(double tilt, float temperature) {
    if (curve.knots < 1)
        return 0;
    const auto n = static_cast<std::size_t>(curve.knots);
    const double gain = static_cast<double>(slope) * temperature + intercept;
    const double target = tilt / gain + offset;
    bool outside = false;
    const auto at = [&](double v) { return curve.at(static_cast<float>(v), outside); };
    const double length = curve.table[n - 1] - curve.table[0];
    double low = curve.table[0] - length;
    double high = curve.table[n - 1] + length;
    while ((at(low) < target) == (at(high) < target) && length != 0 && std::abs(high - low) < 720) {
        low -= length;
        high += length;
    }
    const bool rising = at(high) > at(low);
    for (int i = 0; i < 64; ++i) {
        const double middle = 0.5 * (low + high);
        if ((at(middle) < target) == rising)
            low = middle;
        else
            high = middle;
    }
    return static_cast<float>(0.5 * (low + high));
}

void InverseCalibration::rawReadings(const Pose& pose, const CorrectedReadings& readings,
                                     float temperature, KIV_RAWINFO& raw) {
    for (int i = 0; i < 3; ++i)
        raw.vector[i] = static_cast<float>(pose.position[i]);
    raw.azimuthRaw = rawAngleOf(azimuth, readings.azimuth);
    raw.elevationRaw = rawAngleOf(elevation, readings.elevation);
    raw.levelYRaw = tiltY.rawOf(readings.levelY, temperature);
    raw.levelXRaw = tiltX.rawOf(readings.levelX, temperature);
    if (readsTiltRatio(mode))
        raw.levelXRaw *= raw.levelYRaw; // there the tilt X curve is read at the ratio of the two
    raw.temperature = temperature;
}

} // namespace kiv::simulator
