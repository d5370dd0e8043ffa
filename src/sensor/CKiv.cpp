#include "KIVInterface/CKiv.h"

#include <algorithm>
#include <iterator>

#include "models/ModelFactory.h"
#include "support/Copies.h"

namespace {

using kiv::copyOf;
using kiv::copyValues;

std::size_t sizeOf(int count, int each, int more = 0) {
    return static_cast<std::size_t>(count) * static_cast<std::size_t>(each)
           + static_cast<std::size_t>(more);
}

} // namespace

CKiv::CKiv() : prm(std::make_unique<CKivPrm>()) {}

CKiv::CKiv(const CKiv& other)
    : elEncoder(other.elEncoder), azEncoder(other.azEncoder), mountMode(other.mountMode),
      levelXCount(other.levelXCount),
      levelXTable(copyOf(other.levelXTable, sizeOf(levelXCount, 1, 3))),
      levelXSpline(copyOf(other.levelXSpline, sizeOf(levelXCount, 4))),
      levelYCount(other.levelYCount),
      levelYTable(copyOf(other.levelYTable, sizeOf(levelYCount, 1, 3))),
      levelYSpline(copyOf(other.levelYSpline, sizeOf(levelYCount, 4))),
      azimuthCompCount(other.azimuthCompCount), elevationCompCount(other.elevationCompCount),
      azimuthComp(copyOf(other.azimuthComp, sizeOf(azimuthCompCount, 2))),
      elevationComp(copyOf(other.elevationComp, sizeOf(elevationCompCount, 2))),
      referenceSet(other.referenceSet), mcsFlag(other.mcsFlag), matrixValid(other.matrixValid) {
    copyValues(other.refInverse, refInverse);
    copyValues(other.localInverse, localInverse);
    copyValues(other.encoderOffset, encoderOffset);
    copyValues(other.knownVector, knownVector);
    copyValues(other.localMatrix, localMatrix);
    copyValues(other.machineMatrix, machineMatrix);
    copyValues(other.tiltOffset, tiltOffset);
    copyValues(other.thermalFactor, thermalFactor);
    copyValues(other.scaleFactors, scaleFactors);
    copyValues(other.transform, transform);
    copyValues(other.result, result);
    copyValues(other.work, work);
    copyValues(other.qvcParameters, qvcParameters);
    copyValues(other.level1Parameters, level1Parameters);
    copyValues(other.level2Parameters, level2Parameters);
    if (other.model)
        model = copyOf(*other.model);
    if (other.prm) {
        prm = std::make_unique<CKivPrm>();
        *prm = *other.prm;
    }
}

CKiv::~CKiv() {
    CKiv::Destroy();
}

void CKiv::Destroy() {
    model.reset();
    levelXTable.reset();
    levelXSpline.reset();
    levelYTable.reset();
    levelYSpline.reset();
    elevationComp.reset();
    azimuthComp.reset();
    prm.reset();
}

int CKiv::Initialization() {
    return KIV_OK;
}

int CKiv::setMountMode(int mode) {
    mountMode = mode;
    if (!model)
        model = kiv::createModel(mode);
    model->UpdateSFactors(scaleFactors, 8);
    model->UpdateQVCParameters(qvcParameters, 6);
    model->UpdateLevel1Parameters(level1Parameters, 7);
    model->UpdateLevel2Parameters(level2Parameters, 7);
    return KIV_OK;
}

int CKiv::ReadMatrix(double* m) {
    if (!m)
        return KIV_BAD_ARGUMENT;
    const std::lock_guard<std::mutex> guard(lock);
    std::copy(std::begin(result), std::end(result), m);
    return matrixValid ? KIV_OK : KIV_NO_TRANSFORM;
}
