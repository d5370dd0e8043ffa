#include "host/calibration/Observation.h"

namespace kiv::host {

namespace {

constexpr float encoderStep = 0.125F; // degrees

double encoderSlope(const CEncoder& encoder, float raw) {
    const float up = raw + encoderStep;
    const float down = raw - encoderStep;
    return (static_cast<double>(encoder.encCalibration(up)) - encoder.encCalibration(down))
           / (static_cast<double>(up) - down);
}

// Over a hundredth of the table, which is far above the rounding to single precision.
double curveSlope(simulator::TiltCurve& curve, float raw) {
    const float length = curve.table[static_cast<std::size_t>(curve.knots) - 1] - curve.table[0];
    const float up = raw + length / 200;
    const float down = raw - length / 200;
    bool outside = false;
    return (curve.at(up, outside) - curve.at(down, outside)) / (static_cast<double>(up) - down);
}

} // namespace

CalibrationTables::CalibrationTables(CKivPrm& record)
    : azimuth(simulator::azimuthEncoderOf(record)),
      elevation(simulator::elevationEncoderOf(record)), tiltX(simulator::tiltXCurveOf(record)),
      tiltY(simulator::tiltYCurveOf(record)) {}

bool CalibrationTables::take(Observation& row, bool readsLevelX) {
    const KIV_RAWINFO& raw = row.raw;
    for (int i = 0; i < 3; ++i)
        row.vector[i] = raw.vector[i];
    row.azimuth = azimuth.encCalibration(raw.azimuthRaw);
    row.azimuthSlope = encoderSlope(azimuth, raw.azimuthRaw);
    row.elevation = elevation.encCalibration(raw.elevationRaw);
    row.elevationSlope = encoderSlope(elevation, raw.elevationRaw);
    bool outside = false;
    row.curveY = tiltY.at(raw.levelYRaw, outside);
    if (outside)
        return false;
    row.curveYSlope = curveSlope(tiltY, raw.levelYRaw);
    if (!readsLevelX)
        return true;
    row.curveX = tiltX.at(raw.levelXRaw, outside);
    row.curveXSlope = curveSlope(tiltX, raw.levelXRaw);
    return !outside;
}

} // namespace kiv::host
