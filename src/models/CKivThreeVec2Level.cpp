#include "KIVInterface/CKivThreeVec2Level.h"

#include <algorithm>
#include <cmath>

#include "models/Blocks.h"
#include "models/ThreeVectors.h"
#include "support/ZelUtil.h"

namespace kiv {

namespace {

struct Angles {
    double rx, ry, rz; // radians, of Rx(rx) * Ry(ry) * Rz(rz)
};

Angles anglesOf(const double* k) {
    const double rx = std::atan2(-k[5], k[8]);
    const double rz = std::atan2(-k[1], k[0]);
    const double ry = std::atan2(k[2], std::cos(rx) * k[8] - std::sin(rx) * k[5]);
    return {rx, ry, rz};
}

// k = the rotation of the mean angles, without regard to the seam at +-pi.
void meanRotation(const double* k1, const double* k2, double* k) {
    const Angles a1 = anglesOf(k1);
    const Angles a2 = anglesOf(k2);
    double rx[9];
    double ry[9];
    double rz[9];
    double rxRy[9];
    rotation_x(rx, (a2.rx + a1.rx) * 0.5);
    rotation_y(ry, (a2.ry + a1.ry) * 0.5);
    rotation_z(rz, (a2.rz + a1.rz) * 0.5);
    MatrixMultiply(rx, ry, 3, 3, 3, rxRy);
    MatrixMultiply(rxRy, rz, 3, 3, 3, k);
}

} // namespace

} // namespace kiv

CKivThreeVec2Level::CKivThreeVec2Level() = default;
CKivThreeVec2Level::CKivThreeVec2Level(const CKivThreeVec2Level&) = default;
CKivThreeVec2Level& CKivThreeVec2Level::operator=(const CKivThreeVec2Level&) = default;
CKivThreeVec2Level::~CKivThreeVec2Level() = default;

void CKivThreeVec2Level::UpdateSFactors(float* values, int count) {
    kiv::copyIntoBlock(values, count, scaleFactors);
}

void CKivThreeVec2Level::UpdateQVCParameters(float* values, int count) {
    kiv::copyIntoBlock(values, count, qvcParameters);
}

void CKivThreeVec2Level::UpdateLevel1Parameters(float* values, int count) {
    kiv::copyIntoBlock(values, count, level1Parameters);
}

void CKivThreeVec2Level::UpdateLevel2Parameters(float* values, int count) {
    kiv::copyIntoBlock(values, count, level2Parameters);
}

void CKivThreeVec2Level::GetQVCMatrix(float* out, int count) {
    std::copy_n(qvcMatrix, std::min(count, 6), out);
}

void CKivThreeVec2Level::GetF1(const float* levelParameters, double levelReading, double* w1,
                               double azimuth, double elevation, int n, double* out) {
    if (n != 3)
        return;
    kiv::InstrumentSide instrument = kiv::instrumentSide(iMMode, azimuth, elevation);
    kiv::rotationFromLevel(levelParameters, levelReading, w1, instrument, out);
}

bool CKivThreeVec2Level::CalTranxMatrix(double* const M, double azimuthOffset,
                                        double elevationOffset, int n, bool levelXOutside,
                                        bool levelYOutside) {
    using namespace kiv;
    if (n != 3 || (levelXOutside && levelYOutside))
        return false;

    MeasuringDirection direction = measuringDirection(M, qvcParameters, elevationOffset);
    InstrumentSide instrument = instrumentSide(iMMode, direction.azimuth, direction.elevation);
    const auto fromLevel = [&](const float* levelParameters, double levelReading, double* out) {
        rotationFromLevel(levelParameters, levelReading, direction.w1, instrument, out);
    };
    double k[9];
    if (levelYOutside) {
        fromLevel(level1Parameters, -M[3], k);
    } else if (levelXOutside) {
        fromLevel(level2Parameters, -M[4], k);
    } else {
        double k1[9];
        double k2[9];
        fromLevel(level1Parameters, -M[3], k1);
        fromLevel(level2Parameters, -M[4], k2);
        meanRotation(k1, k2, k);
    }
    storeQvcOutput(k, qvcParameters, qvcMatrix);
    rotateBackByAzimuth(k, M[5], azimuthOffset, M);
    return true;
}
