#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "c/Handles.h"
#include "c/SettingChecks.h"
#include "judged/RowResults.h"
#include "sensor/SensorAccess.h"
#include "support/ZelUtil.h"

using namespace kiv;
using namespace kiv::c;

namespace {

constexpr int qvcCount = std::tuple_size_v<decltype(kiv_sensor::qvcParameters)>;
constexpr std::size_t mostRows = std::numeric_limits<int>::max() / 4;

int refuseMore(const char* argument, std::size_t most, std::size_t found) {
    return refuse(KIV_STATUS_BAD_ARGUMENT, argument, ": expected at most ", most, ", found ",
                  found);
}

// check gives 0 or the refusal of a value; set gives a code, for the sensor itself.
template <std::size_t count, typename Check, typename Set>
int change(kiv_sensor* sensor, const Given (&pointers)[count], Check check, Set set) {
    return locked(sensor, pointers, [&]() -> int {
        if (const int code = check())
            return code;
        return sensor->judged.set(set);
    });
}

template <typename Check, typename Set>
int change(kiv_sensor* sensor, Check check, Set set) {
    return change(sensor, {{"sensor", sensor}}, check, set);
}

template <typename Ask>
int ask(const kiv_sensor* sensor, Given out, int32_t* value, Ask valueOf) {
    return locked(sensor, {out}, [&] {
        *value = valueOf(sensor->judged.sensor());
        return KIV_STATUS_OK;
    });
}

int setEncoderTable(kiv_sensor* sensor, int (CKiv::*set)(int, const float*), const float* table,
                    size_t rows) {
    const auto check = [=] {
        return rows > mostRows ? refuseMore("rows", mostRows, rows)
                               : checkNumbers("table", table, rows, 2);
    };
    return change(sensor, {{"table", table, rows}}, check, [=](CKiv& s) {
        constexpr float none = 0;
        return (s.*set)(static_cast<int>(rows), rows > 0 ? table : &none);
    });
}

int setTiltTable(kiv_sensor* sensor, int (CKiv::*set)(int, const float*, const double*),
                 const float* table, size_t rows) {
    const auto check = [=] {
        if (rows == 0)
            return refuse(KIV_STATUS_BAD_ARGUMENT, "rows: expected at least 1, found 0");
        return rows > mostRows ? refuseMore("rows", mostRows, rows) : checkTiltTable(table, rows);
    };
    return change(sensor, {{"table", table}}, check, [=](CKiv& s) {
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

int checkBlock(const float* values, size_t count, size_t most) {
    return count > most ? refuseMore("count", most, count)
                        : checkNumbers("values", values, count, 1);
}

int setBlock(kiv_sensor* sensor, int (CKiv::*set)(const float*, int), const float* values,
             size_t count, size_t most) {
    return change(
        sensor, {{"values", values, count}}, [=] { return checkBlock(values, count, most); },
        [=](CKiv& s) {
            return count > 0 ? (s.*set)(values, static_cast<int>(count)) : int{KIV_STATUS_OK};
        });
}

// 0, or the refusal of the first that is not finite.
int checkNumbersOf(std::initializer_list<std::pair<const char*, float>> arguments) {
    for (const auto& [name, value] : arguments)
        if (const int code = checkNumber(name, value))
            return code;
    return KIV_STATUS_OK;
}

int checkVector(const double* v) {
    for (size_t i = 0; i < 3; ++i)
        if (const int code = checkNumber("v", v[i]))
            return code;
    return KIV_STATUS_OK;
}

} // namespace

int kiv_sensor_set_frame(kiv_sensor* sensor, int frame) {
    const auto check = [=] {
        return frame == KIV_FRAME_LOCAL || frame == KIV_FRAME_MACHINE
                   ? int{KIV_STATUS_OK}
                   : refuse(KIV_STATUS_BAD_ARGUMENT,
                            "frame: expected 0 (local) or 1 (machine), found ", frame);
    };
    return change(sensor, check, [=](CKiv& s) { return s.setMcsFlag(frame == KIV_FRAME_MACHINE); });
}

int kiv_sensor_frame(const kiv_sensor* sensor, int32_t* frame) {
    return ask(sensor, {"frame", frame}, frame, [](const CKiv& s) {
        return SensorAccess::inMachineFrame(s) ? KIV_FRAME_MACHINE : KIV_FRAME_LOCAL;
    });
}

int kiv_sensor_set_mount_mode(kiv_sensor* sensor, int32_t mode) {
    const auto check = [=] {
        const int own = SensorAccess::mountMode(sensor->judged.sensor());
        return mode == own ? int{KIV_STATUS_OK}
                           : refuse(KIV_STATUS_BAD_ARGUMENT,
                                    "mode: expected the mount mode of the parameters, ", own,
                                    ", whose model stays, found ", mode);
    };
    return change(sensor, check, [=](CKiv& s) {
        s.setQVCParameters(sensor->qvcParameters.data(), qvcCount);
        return s.setMountMode(mode);
    });
}

int kiv_sensor_mount_mode(const kiv_sensor* sensor, int32_t* mode) {
    return ask(sensor, {"mode", mode}, mode, SensorAccess::mountMode);
}

int kiv_sensor_has_matrix(const kiv_sensor* sensor, bool* has) {
    return locked(sensor, {{"has", has}}, [=] {
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
    return setBlock(sensor, &CKiv::setLevel1Parameters, values, count, 7);
}

int kiv_sensor_set_level2_parameters(kiv_sensor* sensor, const float* values, size_t count) {
    return setBlock(sensor, &CKiv::setLevel2Parameters, values, count, 7);
}

int kiv_sensor_set_qvc_parameters(kiv_sensor* sensor, const float* values, size_t count) {
    return locked(sensor, {{"values", values, count}}, [=]() -> int {
        auto given = sensor->qvcParameters;
        if (const int code = checkBlock(values, count, given.size()))
            return code;
        std::copy_n(values, count, given.begin());
        const int code =
            sensor->judged.set([&](CKiv& s) { return s.setQVCParameters(given.data(), qvcCount); });
        if (code == KIV_STATUS_OK)
            sensor->qvcParameters = given;
        return code;
    });
}

int kiv_sensor_set_scale_factors(kiv_sensor* sensor, const float* values, size_t count) {
    return setBlock(sensor, &CKiv::setScaleFactors, values, count, 8);
}

int kiv_sensor_set_local_matrix(kiv_sensor* sensor, const double* m) {
    return change(
        sensor, {{"m", m}}, [=] { return checkRotationMatrix(m); },
        [=](CKiv& s) { return s.setLocalMatrix(m, 3); });
}

int kiv_sensor_set_machine_matrix(kiv_sensor* sensor, const double* m) {
    return change(
        sensor, {{"m", m}}, [=] { return checkRotationMatrix(m); },
        [=](CKiv& s) {
            double own[9];
            std::copy_n(m, 9, own);
            return s.setMachineMatrix(own, 3);
        });
}

int kiv_sensor_set_known_vector(kiv_sensor* sensor, const double* v) {
    return change(
        sensor, {{"v", v}}, [=] { return checkVector(v); },
        [=](CKiv& s) { return s.setKnownVector(v); });
}

int kiv_sensor_set_encoder_offset(kiv_sensor* sensor, float azimuth, float elevation) {
    return change(
        sensor,
        [=] {
            return checkNumbersOf({{"azimuth", azimuth}, {"elevation", elevation}});
        },
        [=](CKiv& s) {
            return s.setEncoderOffset(F_VECTOR2{azimuth, elevation});
        });
}

int kiv_sensor_set_tilt_offset(kiv_sensor* sensor, float x, float y) {
    return change(
        sensor,
        [=] {
            return checkNumbersOf({{"x", x}, {"y", y}});
        },
        [=](CKiv& s) {
            return s.setTiltOffset(F_VECTOR2{x, y});
        });
}

int kiv_sensor_set_thermal_factor(kiv_sensor* sensor, float x_slope, float x_intercept,
                                  float y_slope, float y_intercept) {
    const auto check = [=] {
        return checkNumbersOf({{"x_slope", x_slope},
                               {"x_intercept", x_intercept},
                               {"y_slope", y_slope},
                               {"y_intercept", y_intercept}});
    };
    return change(sensor, check, [=](CKiv& s) {
        return s.setThermalFactor(F_VECTOR4{x_slope, x_intercept, y_slope, y_intercept});
    });
}
