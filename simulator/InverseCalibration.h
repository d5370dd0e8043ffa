#pragma once

#include "KIVInterface/Encoder.h"
#include "KIVInterface/Records.h"
#include "simulator/Mounting.h"
#include "simulator/RecordTables.h"

class CKivPrm;

namespace kiv::simulator {

// Goes from corrected readings back to the raw ones that a sensor with a record's calibration would
// deliver.
class InverseCalibration {
public:
    explicit InverseCalibration(CKivPrm& record);

    // Fills vector, azimuthRaw, elevationRaw, levelXRaw, levelYRaw and temperature; the rest is the
    // caller's. Each raw reading is the single-precision number whose correction comes closest.
    void rawReadings(const Pose& pose, const CorrectedReadings& readings, float temperature,
                     KIV_RAWINFO& raw);

private:
    struct Level {
        TiltCurve curve;
        float offset = 0; // degrees
        float slope = 0;
        float intercept = 1;

        float rawOf(double tilt, float temperature);
    };

    CEncoder azimuth;
    CEncoder elevation;
    Level tiltX;
    Level tiltY;
    int mode = 0;
};

} // namespace kiv::simulator
