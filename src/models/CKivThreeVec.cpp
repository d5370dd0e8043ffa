#include "KIVInterface/CKivThreeVec.h"

#include <algorithm>

#include "models/Blocks.h"
#include "models/ThreeVectors.h"

CKivThreeVec::CKivThreeVec() = default;
CKivThreeVec::CKivThreeVec(const CKivThreeVec&) = default;
CKivThreeVec& CKivThreeVec::operator=(const CKivThreeVec&) = default;
CKivThreeVec::~CKivThreeVec() = default;

void CKivThreeVec::UpdateSFactors(float* values, int count) {
    kiv::copyIntoBlock(values, count, scaleFactors);
}

void CKivThreeVec::UpdateQVCParameters(float* values, int count) {
    kiv::copyIntoBlock(values, count, qvcParameters);
}

void CKivThreeVec::UpdateLevel1Parameters(float* values, int count) {
    kiv::copyIntoBlock(values, count, level1Parameters);
}

void CKivThreeVec::UpdateLevel2Parameters(float* values, int count) {
    kiv::copyIntoBlock(values, count, level2Parameters);
}

void CKivThreeVec::GetQVCMatrix(float* out, int count) {
    std::copy_n(qvcMatrix, std::min(count, 6), out);
}

bool CKivThreeVec::CalTranxMatrix(double* const M, double azimuthOffset, double elevationOffset,
                                  int n, bool, bool) {
    using namespace kiv;
    if (n != 3)
        return false;

    MeasuringDirection direction = measuringDirection(M, qvcParameters, elevationOffset);
    InstrumentSide instrument = instrumentSide(iMMode, direction.azimuth, direction.elevation);
    double k[9];
    rotationFromLevel(level1Parameters, -M[4], direction.w1, instrument, k);
    storeQvcOutput(k, qvcParameters, qvcMatrix);
    rotateBackByAzimuth(k, M[5], azimuthOffset, M);
    return true;
}
