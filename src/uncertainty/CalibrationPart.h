#pragma once

#include <vector>

#include "uncertainty/AngleSlopes.h"
#include "uncertainty/Calibration.h"

namespace kiv {

// The part of the angles' uncertainty that calibrated parameters have in it, by the law of
// propagation of uncertainty with correlations (JCGM 100, 5.2): each parameter moved up and down by
// its own standard uncertainty, or by more where single precision's steps would show. In the local
// frame a parameter acts on the reference, too. Allocates nothing after construction.
class CalibrationPart {
public:
    // Of the sensor as it is configured now.
    CalibrationPart(const CKiv& sensor, const Calibration& calibration);

    // Call it after the update that captured the reference.
    void captured(const CKiv& sensor, const KIV_RAWINFO& raw);

    // Of a reading that has angles: standard uncertainties, degrees. False where there are none on
    // both sides of a parameter, or they turn by more than a quarter of a turn.
    bool of(const KIV_RAWINFO& raw, AngleTriple& standard);

private:
    struct Parameter {
        explicit Parameter(const CKiv& sensor) : back(sensor), forth(sensor) {}

        CKiv back, forth;
        double distance = 0; // from one to the other, the parameter's unit
        AngleTriple slope{};
    };

    std::vector<Parameter> parameters;
    std::vector<double> covariance;
    Principle principle;
    bool local;
};

} // namespace kiv
