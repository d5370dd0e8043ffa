#pragma once

#include "simulator/Pose.h"
#include "support/Principles.h"

class CKivPrm;

// The forward way through the mounting principles: what the encoders and levels of a sensor in a
// known pose show. Written from the geometry, without the models.
namespace kiv::simulator {

// The calibration values that the geometry depends on, with names and units of the record, in
// double precision so that derivatives can be taken.
struct Mounting {
    int mode = 4;                 // mount mode
    double encoderOffset[2] = {}; // azimuth, elevation, radians
    double scaleFactors[8] = {0, 0, 0, 0, 1, 1, 1, 0};
    double qvcParameters[6] = {};
    double level1Parameters[7] = {0, 0, 0, 0, 0, 0, 1};
    double level2Parameters[7] = {0, 0, 0, 0, 0, 0, 1};
};

// The same in single precision, as sensors and models take them.
struct SingleValues {
    explicit SingleValues(const Mounting& mounting);

    float scaleFactors[8];
    float qvcParameters[6];
    float level1Parameters[7];
    float level2Parameters[7];
};

Mounting mountingOf(const CKivPrm& record);

inline bool invertedIn(int mode) {
    return traitsOf(principleOf(mode)).startVector && parityOf(mode) == 1;
}

// Corrected readings, degrees. A level that the principle does not have reads 0.
struct CorrectedReadings {
    double levelX = 0;
    double levelY = 0;
    double azimuth = 0;
    double elevation = 0;
};

// False when the sensor cannot turn its line of sight onto the measured direction.
bool readingsOf(const Mounting& mounting, const Pose& pose, CorrectedReadings& readings);

} // namespace kiv::simulator
