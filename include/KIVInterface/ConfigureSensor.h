#pragma once

#include <cstddef>
#include <vector>

#include "KIVInterface/CKiv.h"
#include "KIVInterface/CKivPrm.h"
#include "KIVInterface/StatusCodes.h"

namespace kiv {
namespace detail {

template <typename Get>
int handOverEncoderTable(CKivPrm& record, Get get, CKiv& sensor,
                         int (CKiv::*set)(int, const float*)) {
    unsigned int count = 0;
    (record.*get)(count, nullptr);
    std::vector<float> table(2 * static_cast<std::size_t>(count) + 1);
    const int code = (record.*get)(count, table.data());
    return code != KIV_OK ? code : (sensor.*set)(static_cast<int>(count), table.data());
}

template <typename Get>
int handOverTiltTable(CKivPrm& record, Get get, CKiv& sensor,
                      int (CKiv::*set)(int, const float*, const double*)) {
    unsigned int count = 0;
    (record.*get)(count, nullptr, nullptr);
    std::vector<float> table(static_cast<std::size_t>(count) + 3);
    std::vector<double> spline(4 * static_cast<std::size_t>(count) + 1);
    const int code = (record.*get)(count, table.data(), spline.data());
    return code != KIV_OK ? code
                          : (sensor.*set)(static_cast<int>(count), table.data(), spline.data());
}

template <typename Get>
int handOverBlock(CKivPrm& record, Get get, CKiv& sensor, int (CKiv::*set)(const float*, int)) {
    float values[8] = {};
    unsigned int count = 0;
    const int code = (record.*get)(values, count);
    return code != KIV_OK ? code : (sensor.*set)(values, static_cast<int>(count));
}

template <typename Get, typename Set>
int handOverMatrix(CKivPrm& record, Get get, CKiv& sensor, Set set) {
    double m[9] = {};
    const int code = (record.*get)(m, 3);
    return code != KIV_OK ? code : (sensor.*set)(m, 3);
}

template <typename Vector>
int handOverVector(CKivPrm& record, int (CKivPrm::*get)(Vector&) const, CKiv& sensor,
                   int (CKiv::*set)(const Vector&)) {
    Vector v{};
    const int code = (record.*get)(v);
    return code != KIV_OK ? code : (sensor.*set)(v);
}

inline int handOverKnownVector(CKivPrm& record, CKiv& sensor) {
    double v[3] = {};
    const int code = record.getKnownVector(v);
    return code != KIV_OK ? code : sensor.setKnownVector(v);
}

} // namespace detail

// Hands every calibration value of a loaded record to a sensor, then chooses the model by the
// record's mount mode. On a sensor that has a model already, class and parity of that one
// and the reference stay. KIV_OK, or the first other code that a getter or setter gives
// (KIV_NOT_LOADED for an empty record, KIV_BAD_ARGUMENT for a tilt table without rows); the mount
// mode is then not set.
inline int configureSensor(CKiv& sensor, CKivPrm& record) {
    using namespace detail;
    const int codes[] = {
        handOverEncoderTable(record, &CKivPrm::getAzimuthComp, sensor, &CKiv::setAzimuthComp),
        handOverEncoderTable(record, &CKivPrm::getElevationComp, sensor, &CKiv::setElevationComp),
        handOverTiltTable(record, &CKivPrm::getLevelXComp, sensor, &CKiv::setLevelXComp),
        handOverTiltTable(record, &CKivPrm::getLevelYComp, sensor, &CKiv::setLevelYComp),
        handOverBlock(record, &CKivPrm::getLevel1Parameters, sensor, &CKiv::setLevel1Parameters),
        handOverBlock(record, &CKivPrm::getLevel2Parameters, sensor, &CKiv::setLevel2Parameters),
        handOverBlock(record, &CKivPrm::getQVCParameters, sensor, &CKiv::setQVCParameters),
        handOverBlock(record, &CKivPrm::getScaleFactors, sensor, &CKiv::setScaleFactors),
        handOverMatrix(record, &CKivPrm::getLocalMatrix, sensor, &CKiv::setLocalMatrix),
        handOverMatrix(record, &CKivPrm::getMachineMatrix, sensor, &CKiv::setMachineMatrix),
        handOverKnownVector(record, sensor),
        handOverVector(record, &CKivPrm::getEncoderOffset, sensor, &CKiv::setEncoderOffset),
        handOverVector(record, &CKivPrm::getTiltOffset, sensor, &CKiv::setTiltOffset),
        handOverVector(record, &CKivPrm::getThermalFactor, sensor, &CKiv::setThermalFactor),
    };
    for (const int code : codes)
        if (code != KIV_OK)
            return code;
    int mountMode = 0;
    const int code = record.getMountMode(mountMode);
    return code != KIV_OK ? code : sensor.setMountMode(mountMode);
}

} // namespace kiv
