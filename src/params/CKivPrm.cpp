#include "KIVInterface/CKivPrm.h"

#include <utility>

#include "params/Messages.h"
#include "support/Copies.h"

using kiv::copyOf;
using kiv::copyValues;

CKivPrm::CKivPrm() = default;

CKivPrm::~CKivPrm() {
    Destroy();
}

CKivPrm& CKivPrm::operator=(const CKivPrm& other) {
    if (this == &other)
        return *this;
    const std::size_t nX = other.levelXCount, nY = other.levelYCount;
    auto newLevelXTable = copyOf(other.levelXTable, nX + 3);
    auto newLevelXSpline = copyOf(other.levelXSpline, 4 * nX);
    auto newLevelYTable = copyOf(other.levelYTable, nY + 3);
    auto newLevelYSpline = copyOf(other.levelYSpline, 4 * nY);
    auto newAzimuthComp = copyOf(other.azimuthComp, 2 * std::size_t{other.azimuthCompCount});
    auto newElevationComp = copyOf(other.elevationComp, 2 * std::size_t{other.elevationCompCount});

    // Nothing fails from here on.
    loaded = other.loaded;
    copyValues(other.prmPath, prmPath);
    copyValues(other.encoderOffset, encoderOffset);
    copyValues(other.knownVector, knownVector);
    copyValues(other.localMatrix, localMatrix);
    copyValues(other.machineMatrix, machineMatrix);
    copyValues(other.tiltOffset, tiltOffset);
    copyValues(other.thermalFactor, thermalFactor);
    mountMode = other.mountMode;
    admOffset = other.admOffset;
    levelXCount = other.levelXCount;
    levelXTable = std::move(newLevelXTable);
    levelXSpline = std::move(newLevelXSpline);
    levelYCount = other.levelYCount;
    levelYTable = std::move(newLevelYTable);
    levelYSpline = std::move(newLevelYSpline);
    azimuthCompCount = other.azimuthCompCount;
    elevationCompCount = other.elevationCompCount;
    azimuthComp = std::move(newAzimuthComp);
    elevationComp = std::move(newElevationComp);
    copyValues(other.scaleFactors, scaleFactors);
    copyValues(other.azimuthCompRollover, azimuthCompRollover);
    copyValues(other.elevationCompRollover, elevationCompRollover);
    copyValues(other.qvcParameters, qvcParameters);
    copyValues(other.level1Parameters, level1Parameters);
    copyValues(other.level2Parameters, level2Parameters);
    copyValues(other.halfAngle, halfAngle);
    copyValues(other.levelLimits, levelLimits);
    return *this;
}

void CKivPrm::Destroy() {
    azimuthComp.reset();
    elevationComp.reset();
    levelXTable.reset();
    levelYTable.reset();
    levelYSpline.reset();
    levelXSpline.reset();
}

void CKivPrm::DisplayErrMsg(unsigned int id) {
    [[maybe_unused]] const char* text = kiv::messageText(id);
    [[maybe_unused]] const char* caption = kiv::messageCaption;
}
