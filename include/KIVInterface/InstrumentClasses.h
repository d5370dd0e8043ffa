#pragma once

#include "KIVInterface/Export.h"

// Four classes of the measuring instrument, as far as hosts copy them or read them through this
// library, which itself uses none of them.

class CBBManager {
public:
    // Copies every member.
    KIV_API CBBManager& operator=(const CBBManager& other);

    int beamState = 0;
    int lostBeams = 0;
    double beamOffset[2] = {}; // of the beam from the centre, length unit of the instrument
};

class CLevel {
public:
    // Copies every member.
    KIV_API CLevel& operator=(const CLevel& other);

    float tilt[2] = {}; // about x and about y, degrees
    float temperature = 0.0F;
    bool usable = false;
};

class CPhotoSensor {
public:
    // Copies every member.
    KIV_API CPhotoSensor& operator=(const CPhotoSensor& other);

    int intensity = 0;
    double spot[2] = {}; // on the sensor's face, length unit of the instrument
};

class CADMModule {
public:
    KIV_API int getThermalStatus() const;

    int thermalStatus = 0;
};
