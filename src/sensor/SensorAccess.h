#pragma once

#include <algorithm>

#include "KIVInterface/CKiv.h"

namespace kiv {

// What the library's own parts, tools and tests may see of a sensor, and do with it, beyond its
// public members. No members of CKiv itself: the class is exported whole, and these are not for
// hosts.
struct SensorAccess {
    static bool hasReference(const CKiv& sensor) { return sensor.referenceSet; }
    static void forgetReference(CKiv& sensor) { sensor.referenceSet = false; }
    static bool inMachineFrame(const CKiv& sensor) { return sensor.mcsFlag; }
    static const CKivModel* model(const CKiv& sensor) { return sensor.model.get(); }
    static CKivModel* ownModel(CKiv& sensor) { return sensor.model.get(); }
    static int mountMode(const CKiv& sensor) { return sensor.mountMode; }
    static const double* transform(const CKiv& sensor) { return sensor.transform; }
    static const double* result(const CKiv& sensor) { return sensor.result; }
    static const double* encoderOffset(const CKiv& sensor) { return sensor.encoderOffset; }
    static const double* localMatrix(const CKiv& sensor) { return sensor.localMatrix; }
    static const double* localInverse(const CKiv& sensor) { return sensor.localInverse; }
    static const float* thermalFactor(const CKiv& sensor) { return sensor.thermalFactor; }
    static const float* scaleFactors(const CKiv& sensor) { return sensor.scaleFactors; }
    static const float* level1Parameters(const CKiv& sensor) { return sensor.level1Parameters; }
    static const float* level2Parameters(const CKiv& sensor) { return sensor.level2Parameters; }
    static const float* qvcParameters(const CKiv& sensor) { return sensor.qvcParameters; }
    static int levelXCount(const CKiv& sensor) { return sensor.levelXCount; }
    static const float* levelXTable(const CKiv& sensor) { return sensor.levelXTable.get(); }
    static const double* levelXSpline(const CKiv& sensor) { return sensor.levelXSpline.get(); }
    static int levelYCount(const CKiv& sensor) { return sensor.levelYCount; }
    static const float* levelYTable(const CKiv& sensor) { return sensor.levelYTable.get(); }
    static const double* levelYSpline(const CKiv& sensor) { return sensor.levelYSpline.get(); }
    static const float* tiltOffset(const CKiv& sensor) { return sensor.tiltOffset; }
    static int azimuthCount(const CKiv& sensor) { return sensor.azimuthCompCount; }
    static const float* azimuthComp(const CKiv& sensor) { return sensor.azimuthComp.get(); }
    static int elevationCount(const CKiv& sensor) { return sensor.elevationCompCount; }
    static const float* elevationComp(const CKiv& sensor) { return sensor.elevationComp.get(); }
    static const double* machineMatrix(const CKiv& sensor) { return sensor.machineMatrix; }

    // The reference orientation of another sensor, as if captured.
    static void takeReference(CKiv& sensor, const CKiv& from) {
        std::copy_n(from.refInverse, 9, sensor.refInverse);
        sensor.referenceSet = true;
    }
};

} // namespace kiv
