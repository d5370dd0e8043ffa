#pragma once

#include <vector>

#include "KIVInterface/Encoder.h"

class CKivPrm;

namespace kiv::simulator {

// The curve of a tilt calibration table.
struct TiltCurve {
    std::vector<float> table;   // knots and three further values
    std::vector<double> spline; // four coefficients a knot
    int knots = 0;

    // The value is in degrees; beyond the table the curve goes on straight.
    double at(float raw, bool& outside);
};

TiltCurve tiltXCurveOf(CKivPrm& record);
TiltCurve tiltYCurveOf(CKivPrm& record);
CEncoder azimuthEncoderOf(CKivPrm& record);
CEncoder elevationEncoderOf(CKivPrm& record);

} // namespace kiv::simulator
