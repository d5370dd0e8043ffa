#pragma once

#include "KIVInterface/CKiv.h"

namespace kiv {

enum class UpdateOutcome {
    badStatus,   // the status is not 2: the readings are corrected, nothing more
    modelFailed, // no model, a missing tilt table, or a model without a result
    noReference, // the model succeeded, but no reference has been captured yet
    reference,   // this measurement became the reference
    oriented,    // the angles are computed
};

constexpr int firstThreeVectorMode = 7; // from here on an update reports the model's own matrix

// What the library's own tools and tests may know of a sensor beyond its public members. No member
// of CKiv itself: the class is exported whole, and this is not for hosts.
struct SensorAccess {
    // The whole of CKiv::updateKIVData, and what came of it.
    static UpdateOutcome update(CKiv& sensor, const KIV_RAWINFO& raw, KIV_INFO& info);

    static const CKivModel* model(const CKiv& sensor) { return sensor.model.get(); }
    static int mountMode(const CKiv& sensor) { return sensor.mountMode; }
    static const double* transform(const CKiv& sensor) { return sensor.transform; }
    static const double* encoderOffset(const CKiv& sensor) { return sensor.encoderOffset; }
    static const double* localInverse(const CKiv& sensor) { return sensor.localInverse; }
    static const float* level1Parameters(const CKiv& sensor) { return sensor.level1Parameters; }
    static const float* qvcParameters(const CKiv& sensor) { return sensor.qvcParameters; }
    static int levelXCount(const CKiv& sensor) { return sensor.levelXCount; }
    static const float* levelXTable(const CKiv& sensor) { return sensor.levelXTable.get(); }
    static const double* levelXSpline(const CKiv& sensor) { return sensor.levelXSpline.get(); }
    static const float* levelYTable(const CKiv& sensor) { return sensor.levelYTable.get(); }
    static const float* azimuthComp(const CKiv& sensor) { return sensor.azimuthComp.get(); }
};

} // namespace kiv
