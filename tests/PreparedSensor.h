#pragma once

#include "KIVInterface/CKiv.h"
#include "support/ZelUtil.h"

namespace kiv::test {

// Makes a sensor whose corrected readings are its raw ones: straight tilt curves over -20 to 20
// degrees, no encoder tables, unit gains, machine and local frame those of the instrument.
inline void prepare(CKiv& sensor, int mode) {
    float knots[] = {-20, -5, 5, 20, -20, 20, 0};
    float values[] = {-20, -5, 5, 20};
    double spline[16];
    CubicSplines(knots, values, 3, spline);
    sensor.setLevelXComp(4, knots, spline);
    sensor.setLevelYComp(4, knots, spline);
    sensor.setThermalFactor({0, 1, 0, 1});
    double identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    sensor.setLocalMatrix(identity, 3);
    sensor.setMachineMatrix(identity, 3);
    const float factors[] = {0, 0, 0, 0, 1, 1, 1, 0};
    const float qvc[] = {10, 20, 30, 0, 0, 0};
    const float level1[] = {0, 0, 0, -30, 0, 0, 1};
    const float level2[] = {0, 0, 0, -65, 0, 0, 1};
    sensor.setScaleFactors(factors, 8);
    sensor.setQVCParameters(qvc, 6);
    sensor.setLevel1Parameters(level1, 7);
    sensor.setLevel2Parameters(level2, 7);
    sensor.setMountMode(mode);
}

// A measurement that every model solves and that may become the reference.
inline KIV_RAWINFO goodReading() {
    KIV_RAWINFO raw{};
    raw.status = 2;
    raw.vector[0] = 3000;
    raw.vector[1] = 1000;
    raw.vector[2] = 500;
    raw.azimuthRaw = 10;
    raw.elevationRaw = -12;
    raw.levelXRaw = 1.5F;
    raw.levelYRaw = -0.75F;
    raw.temperature = 20;
    raw.refMetric = 0.1F;
    return raw;
}

} // namespace kiv::test
