#include "sensor/Update.h"

#include <algorithm>
#include <cmath>

#include "sensor/OrientationAngles.h"
#include "support/Principles.h"
#include "support/ZelUtil.h"
#include "support/platform/FloatingPoint.h"

namespace kiv {

namespace {

constexpr int orientationStatus = 2;
constexpr float largestRefMetric = 0.4F;
constexpr float leastRatioDenominator = 2000.0F; // of the tilt X ratio

float tiltXArgument(int mountMode, const KIV_RAWINFO& raw) {
    if (!readsTiltRatio(mountMode))
        return raw.levelXRaw;
    return std::abs(raw.levelYRaw) > leastRatioDenominator ? raw.levelXRaw / raw.levelYRaw : 0.0F;
}

// Single precision throughout; without a table the curve is 0 and the reading outside.
float correctedTilt(float* table, double* spline, int count, float argument, float offset,
                    float slope, float intercept, float temperature, bool& outside) {
    outside = true;
    const float s =
        table && spline ? CalcSpline(true, table, spline, count - 1, argument, &outside) : 0.0F;
    const float gain = slope * temperature + intercept;
    return (s - offset) * gain;
}

float correctedAngle(CEncoder& encoder, float raw) {
    encoder.setRawReading(raw);
    return encoder.encCalibration(raw);
}

} // namespace

UpdateOutcome SensorUpdate::run(CKiv& sensor, const KIV_RAWINFO& raw, KIV_INFO& info) {
    const std::lock_guard<std::mutex> guard(sensor.lock);
    return runAlone(sensor, raw, info);
}

UpdateOutcome SensorUpdate::runAlone(CKiv& sensor, const KIV_RAWINFO& raw, KIV_INFO& info) {
    info = KIV_INFO{};
    sensor.matrixValid = false;
    const OutsideTables outside = correctReadings(sensor, raw, info);
    EyeMatrix(sensor.result, 3);
    if (raw.status != orientationStatus)
        return UpdateOutcome::badStatus;
    sensor.matrixValid = true;
    if (!orient(sensor, raw, info, outside))
        return UpdateOutcome::modelFailed;
    if (!sensor.referenceSet)
        return captureReference(sensor, raw);
    const OrientationAngles angles = anglesInFrame(sensor);
    info.rx = angles.rx;
    info.rz = angles.rz;
    info.ry = angles.ry;
    return UpdateOutcome::oriented;
}

inline SensorUpdate::OutsideTables
SensorUpdate::correctReadings(CKiv& sensor, const KIV_RAWINFO& raw, KIV_INFO& info) {
    OutsideTables outside;
    const float* thermal = sensor.thermalFactor;
    info.levelX =
        correctedTilt(sensor.levelXTable.get(), sensor.levelXSpline.get(), sensor.levelXCount,
                      tiltXArgument(sensor.mountMode, raw), sensor.tiltOffset[0], thermal[0],
                      thermal[1], raw.temperature, outside.x);
    info.levelY = correctedTilt(sensor.levelYTable.get(), sensor.levelYSpline.get(),
                                sensor.levelYCount, raw.levelYRaw, sensor.tiltOffset[1], thermal[2],
                                thermal[3], raw.temperature, outside.y);
    info.elevation = correctedAngle(sensor.elEncoder, raw.elevationRaw);
    info.azimuth = correctedAngle(sensor.azEncoder, raw.azimuthRaw);
    return outside;
}

inline bool SensorUpdate::orient(CKiv& sensor, const KIV_RAWINFO& raw, KIV_INFO& info,
                                 OutsideTables outside) {
    double* transform = sensor.transform;
    transform[0] = raw.vector[0];
    transform[1] = raw.vector[1];
    transform[2] = raw.vector[2];
    transform[3] = info.levelX;
    transform[4] = info.levelY;
    transform[5] = info.azimuth;
    transform[6] = info.elevation;
    transform[7] = 0.0;
    transform[8] = 0.0;
    if (!sensor.model || !sensor.levelXTable || !sensor.levelYTable)
        return false;
    if (!sensor.model->CalTranxMatrix(transform, sensor.encoderOffset[0], sensor.encoderOffset[1],
                                      3, outside.x, outside.y))
        return false;
    if (reportsOwnMatrix(sensor.mountMode)) {
        sensor.model->GetQVCMatrix(sensor.qvcParameters, 6);
        info.qvc[0] = sensor.qvcParameters[0];
        info.qvc[1] = sensor.qvcParameters[2];
        info.qvc[2] = sensor.qvcParameters[1];
    }
    return true;
}

inline UpdateOutcome SensorUpdate::captureReference(CKiv& sensor, const KIV_RAWINFO& raw) {
    if (!(raw.refMetric <= largestRefMetric) || raw.refBlocked)
        return UpdateOutcome::noReference;
    std::copy_n(sensor.transform, 9, sensor.refInverse);
    MatrixInverse(sensor.refInverse, 3);
    sensor.referenceSet = true;
    return UpdateOutcome::reference;
}

inline OrientationAngles SensorUpdate::anglesInFrame(CKiv& sensor) {
    const double* transform = sensor.transform;
    if (reportsOwnMatrix(sensor.mountMode))
        return threeVectorAngles(transform);
    if (sensor.mcsFlag) {
        MatrixMultiply(sensor.machineMatrix, transform, 3, 3, 3, sensor.result);
        return machineAngles(sensor.result);
    }
    // result = L * T * T0^-1 * L^-1
    MatrixMultiply(sensor.refInverse, sensor.localInverse, 3, 3, 3, sensor.result);
    MatrixMultiply(transform, sensor.result, 3, 3, 3, sensor.work);
    MatrixMultiply(sensor.localMatrix, sensor.work, 3, 3, 3, sensor.result);
    return localAngles(sensor.result);
}

} // namespace kiv

void CKiv::updateKIVData(const KIV_RAWINFO& raw, KIV_INFO& info) {
    const kiv::platform::OwnFloatingPoint floatingPoint;
    kiv::SensorUpdate::run(*this, raw, info);
}
