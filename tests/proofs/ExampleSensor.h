#pragma once

#include <string>

#include "KIVInterface/CKiv.h"
#include "KIVInterface/CKivPrm.h"
#include "simulator/InverseCalibration.h"
#include "simulator/Mounting.h"
#include "simulator/Pose.h"

namespace kiv::docs {

// The example sensor in another mount mode, from a pose to the reported angles.
class ExampleSensor {
public:
    // The parameter file Tg5.prm in a folder; throws where it is no use.
    explicit ExampleSensor(const std::string& folder);
    ExampleSensor(const ExampleSensor&) = delete;
    ExampleSensor& operator=(const ExampleSensor&) = delete;

    CKivPrm record;
    CKiv sensor;
    simulator::Mounting mounting;

    // The readings of a pose; false where the sensor's line of sight does not reach it.
    bool read(const simulator::Pose& pose, KIV_RAWINFO& raw);

    // False where the model has no orientation. The first measurement becomes the reference and has
    // no angles: it is repeated.
    bool update(const KIV_RAWINFO& raw, KIV_INFO& info);

    // The rotation whose angles the sensor reports in machine coordinates where it makes no error.
    void trueRotation(const simulator::Pose& pose, double* out) const;

private:
    simulator::InverseCalibration calibration;
    double machine[9];
};

} // namespace kiv::docs
