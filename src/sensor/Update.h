#pragma once

#include "KIVInterface/CKiv.h"

namespace kiv {

struct OrientationAngles;

enum class UpdateOutcome {
    badStatus,   // the status is not 2: the readings are corrected, nothing more
    modelFailed, // no model, a missing tilt table, or a model without a result
    noReference, // the model succeeded, but no reference has been captured yet
    reference,   // this measurement became the reference
    oriented,    // the angles are computed
};

// The way of a measurement through a sensor. No member of CKiv: the class is exported whole.
struct SensorUpdate {
    // The whole of CKiv::updateKIVData, and what came of it.
    static UpdateOutcome run(CKiv& sensor, const KIV_RAWINFO& raw, KIV_INFO& info);
    // Does the same without the lock, for a caller that keeps every other call away.
    static UpdateOutcome runAlone(CKiv& sensor, const KIV_RAWINFO& raw, KIV_INFO& info);

private:
    struct OutsideTables {
        bool x, y; // the level's reading is outside its calibration table
    };

    static OutsideTables correctReadings(CKiv& sensor, const KIV_RAWINFO& raw, KIV_INFO& info);
    // Leaves the rotation in the sensor's transform; false where the model has none.
    static bool orient(CKiv& sensor, const KIV_RAWINFO& raw, KIV_INFO& info, OutsideTables outside);
    static UpdateOutcome captureReference(CKiv& sensor, const KIV_RAWINFO& raw);
    // Leaves the result's matrix in the sensor where the angles are those of a frame.
    static OrientationAngles anglesInFrame(CKiv& sensor);
};

} // namespace kiv
