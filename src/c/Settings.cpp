#include <algorithm>
#include <vector>

#include "c/Handles.h"
#include "judged/RowResults.h"
#include "sensor/SensorAccess.h"
#include "support/ZelUtil.h"

using namespace kiv;
using namespace kiv::c;

namespace {

// set gives a code, for the sensor itself.
template <typename Set>
int change(kiv_sensor* sensor, bool argumentsFit, Set set) {
    return locked(sensor, argumentsFit, [&] { return sensor->judged.set(set); });
}

template <typename Ask>
int ask(const kiv_sensor* sensor, int32_t* out, Ask value) {
    return locked(sensor, out, [&] {
        *out = value(sensor->judged.sensor());
        return KIV_STATUS_OK;
    });
}

int setEncoderTable(kiv_sensor* sensor, int (CKiv::*set)(int, const float*), const float* table,
                    size_t rows) {
    return change(sensor, table && fitsInt(rows),
                  [=](CKiv& s) { return (s.*set)(static_cast<int>(rows), table); });
}

int setTiltTable(kiv_sensor* sensor, int (CKiv::*set)(int, const float*, const double*),
                 const float* table, size_t rows) {
    return change(sensor, table && rows > 0 && fitsInt(4 * rows) && fitsInt(rows), [=](CKiv& s) {
        std::vector<float> knots(rows + 3); // an update does not read the last three
        std::vector<float> tilts(rows);
        std::vector<double> spline(4 * rows);
        for (size_t i = 0; i < rows; ++i) {
            knots[i] = table[2 * i];
            tilts[i] = table[2 * i + 1];
        }
        const int count = static_cast<int>(rows);
        CubicSplines(knots.data(), tilts.data(), count - 1, spline.data());
        return (s.*set)(count, knots.data(), spline.data());
    });
}

int setBlock(kiv_sensor* sensor, int (CKiv::*set)(const float*, int), const float* values,
             size_t count) {
    return change(sensor, values && fitsInt(count),
                  [=](CKiv& s) { return (s.*set)(values, static_cast<int>(count)); });
}

} // namespace

int kiv_sensor_set_frame(kiv_sensor* sensor, int frame) {
    return change(sensor, frame == KIV_FRAME_LOCAL || frame == KIV_FRAME_MACHINE,
                  [=](CKiv& s) { return s.setMcsFlag(frame == KIV_FRAME_MACHINE); });
}

int kiv_sensor_frame(const kiv_sensor* sensor, int32_t* frame) {
    return ask(sensor, frame, [](const CKiv& s) {
        return SensorAccess::inMachineFrame(s) ? KIV_FRAME_MACHINE : KIV_FRAME_LOCAL;
    });
}

int kiv_sensor_set_mount_mode(kiv_sensor* sensor, int32_t mode) {
    return change(sensor, true, [=](CKiv& s) { return s.setMountMode(mode); });
}

int kiv_sensor_mount_mode(const kiv_sensor* sensor, int32_t* mode) {
    return ask(sensor, mode, SensorAccess::mountMode);
}

int kiv_sensor_has_matrix(const kiv_sensor* sensor, bool* has) {
    return locked(sensor, has, [=] {
        *has = givesMatrix(SensorAccess::mountMode(sensor->judged.sensor()));
        return KIV_STATUS_OK;
    });
}

int kiv_sensor_set_azimuth_table(kiv_sensor* sensor, const float* table, size_t rows) {
    return setEncoderTable(sensor, &CKiv::setAzimuthComp, table, rows);
}

int kiv_sensor_set_elevation_table(kiv_sensor* sensor, const float* table, size_t rows) {
    return setEncoderTable(sensor, &CKiv::setElevationComp, table, rows);
}

int kiv_sensor_set_tilt_x_table(kiv_sensor* sensor, const float* table, size_t rows) {
    return setTiltTable(sensor, &CKiv::setLevelXComp, table, rows);
}

int kiv_sensor_set_tilt_y_table(kiv_sensor* sensor, const float* table, size_t rows) {
    return setTiltTable(sensor, &CKiv::setLevelYComp, table, rows);
}

int kiv_sensor_set_level1_parameters(kiv_sensor* sensor, const float* values, size_t count) {
    return setBlock(sensor, &CKiv::setLevel1Parameters, values, count);
}

int kiv_sensor_set_level2_parameters(kiv_sensor* sensor, const float* values, size_t count) {
    return setBlock(sensor, &CKiv::setLevel2Parameters, values, count);
}

int kiv_sensor_set_qvc_parameters(kiv_sensor* sensor, const float* values, size_t count) {
    return setBlock(sensor, &CKiv::setQVCParameters, values, count);
}

int kiv_sensor_set_scale_factors(kiv_sensor* sensor, const float* values, size_t count) {
    return setBlock(sensor, &CKiv::setScaleFactors, values, count);
}

int kiv_sensor_set_local_matrix(kiv_sensor* sensor, const double* m) {
    return change(sensor, m, [=](CKiv& s) { return s.setLocalMatrix(m, 3); });
}

int kiv_sensor_set_machine_matrix(kiv_sensor* sensor, const double* m) {
    return change(sensor, m, [=](CKiv& s) {
        double own[9];
        std::copy_n(m, 9, own);
        return s.setMachineMatrix(own, 3);
    });
}

int kiv_sensor_set_known_vector(kiv_sensor* sensor, const double* v) {
    return change(sensor, v, [=](CKiv& s) { return s.setKnownVector(v); });
}

int kiv_sensor_set_encoder_offset(kiv_sensor* sensor, float azimuth, float elevation) {
    return change(sensor, true, [=](CKiv& s) {
        return s.setEncoderOffset(F_VECTOR2{azimuth, elevation});
    });
}

int kiv_sensor_set_tilt_offset(kiv_sensor* sensor, float x, float y) {
    return change(sensor, true, [=](CKiv& s) { return s.setTiltOffset(F_VECTOR2{x, y}); });
}

int kiv_sensor_set_thermal_factor(kiv_sensor* sensor, float x_slope, float x_intercept,
                                  float y_slope, float y_intercept) {
    return change(sensor, true, [=](CKiv& s) {
        return s.setThermalFactor(F_VECTOR4{x_slope, x_intercept, y_slope, y_intercept});
    });
}
