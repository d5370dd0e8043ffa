#include "KIVInterface/CKiv.h"

#include <algorithm>
#include <iterator>
#include <type_traits>
#include <typeinfo>

#include "KIVInterface/CKivDualLevel.h"
#include "KIVInterface/CKivPendulum.h"
#include "KIVInterface/CKivPolarizer.h"
#include "KIVInterface/CKivThreeVec.h"
#include "KIVInterface/CKivThreeVec2Level.h"
#include "support/Copies.h"

namespace {

using kiv::copyOf;
using kiv::copyValues;

std::size_t sizeOf(int count, int each, int more = 0) {
    return static_cast<std::size_t>(count) * static_cast<std::size_t>(each)
           + static_cast<std::size_t>(more);
}

std::unique_ptr<CKivModel> createModel(int mode) {
    switch (mode) {
    case 1:
    case 2:
        return std::make_unique<CKivDualLevel>();
    case 5:
    case 6:
        return std::make_unique<CKivPolarizer>();
    case 7:
    case 8:
        return std::make_unique<CKivThreeVec>();
    case 9:
    case 10:
        return std::make_unique<CKivThreeVec2Level>();
    default:
        return std::make_unique<CKivPendulum>();
    }
}

// A copy of the same class; the models have no virtual operation for it.
template <typename... Models>
std::unique_ptr<CKivModel> copyAsOneOf(const CKivModel& model) {
    std::unique_ptr<CKivModel> copy;
    const auto copyIf = [&]<typename Model>(std::type_identity<Model>) {
        if (typeid(model) == typeid(Model))
            copy = std::make_unique<Model>(static_cast<const Model&>(model));
    };
    (copyIf(std::type_identity<Models>{}), ...);
    return copy;
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
        model = copyAsOneOf<CKivDualLevel, CKivPendulum, CKivPolarizer, CKivThreeVec,
                            CKivThreeVec2Level>(*other.model);
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
    if (!model) {
        model = createModel(mode);
        model->set_iMMode(mode % 2);
    }
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
