#include "simulator/InverseCalibration.h"

#include <cmath>

#include "KIVInterface/CKivPrm.h"
#include "support/Principles.h"
#include "support/ZelUtil.h"

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

InverseCalibration::InverseCalibration(CKivPrm& record) {
    record.getMountMode(mode);

    unsigned int count = 0;
    record.getAzimuthComp(count, nullptr);
    std::vector<float> rows(2 * static_cast<std::size_t>(count) + 1);
    record.getAzimuthComp(count, rows.data());
    azimuth.setCalTable(rows.data(), static_cast<int>(count));
    record.getElevationComp(count, nullptr);
    rows.resize(2 * static_cast<std::size_t>(count) + 1);
    record.getElevationComp(count, rows.data());
    elevation.setCalTable(rows.data(), static_cast<int>(count));

    F_VECTOR2 offset{};
    F_VECTOR4 thermal{};
    record.getTiltOffset(offset);
    record.getThermalFactor(thermal);
    const auto prepare = [](TiltCurve& curve, unsigned int knots, float tiltOffset, float slope,
                            float intercept) {
        curve.knots = static_cast<int>(knots);
        curve.table.resize(static_cast<std::size_t>(knots) + 3);
        curve.spline.resize(4 * static_cast<std::size_t>(knots) + 1);
        curve.offset = tiltOffset;
        curve.slope = slope;
        curve.intercept = intercept;
    };
    record.getLevelXComp(count, nullptr, nullptr);
    prepare(tiltX, count, offset.x, thermal.x, thermal.y);
    record.getLevelXComp(count, tiltX.table.data(), tiltX.spline.data());
    record.getLevelYComp(count, nullptr, nullptr);
    prepare(tiltY, count, offset.y, thermal.z, thermal.w);
    record.getLevelYComp(count, tiltY.table.data(), tiltY.spline.data());
}

// Bisection on the calibration curve, which has to be monotonic; beyond the table it goes on
// straight, taken as far as a whole turn on either side.
float InverseCalibration::TiltCurve::rawOf(double tilt, float temperature) {
    if (knots < 1)
        return 0;
    const auto n = static_cast<std::size_t>(knots);
    const double gain = static_cast<double>(slope) * temperature + intercept;
    const double target = tilt / gain + offset;
    bool outside = false;
    const auto curve = [&](double v) {
        return CalcSpline(true, table.data(), spline.data(), knots - 1, static_cast<float>(v),
                          &outside);
    };
    const double length = table[n - 1] - table[0];
    double low = table[0] - length;
    double high = table[n - 1] + length;
    while ((curve(low) < target) == (curve(high) < target) && length != 0
           && std::abs(high - low) < 720) {
        low -= length;
        high += length;
    }
    const bool rising = curve(high) > curve(low);
    for (int i = 0; i < 64; ++i) {
        const double middle = 0.5 * (low + high);
        if ((curve(middle) < target) == rising)
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
