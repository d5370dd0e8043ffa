#include "KIVInterface/CKivPendulum.h"

#include <algorithm>
#include <cmath>

#include "models/Blocks.h"
#include "models/Geometry.h"
#include "models/PendulumSolver.h"

CKivPendulum::CKivPendulum() = default;
CKivPendulum::CKivPendulum(const CKivPendulum&) = default;
CKivPendulum& CKivPendulum::operator=(const CKivPendulum&) = default;
CKivPendulum::~CKivPendulum() = default;

void CKivPendulum::UpdateSFactors(float* values, int count) {
    kiv::copyIntoBlock(values, count, scaleFactors);
}

void CKivPendulum::UpdateQVCParameters(float*, int) {}
void CKivPendulum::UpdateLevel1Parameters(float*, int) {}
void CKivPendulum::UpdateLevel2Parameters(float*, int) {}
void CKivPendulum::GetQVCMatrix(float*, int) {}

bool CKivPendulum::CalTranxMatrix(double* const M, double azimuthOffset, double elevationOffset,
                                  int n, bool, bool) {
    return CKivPendulum::CalTranxMatrix(M, azimuthOffset, elevationOffset, n);
}

bool CKivPendulum::CalTranxMatrix(double* const M, double azimuthOffset, double elevationOffset,
                                  int n) {
    using namespace kiv;
    if (n != 3)
        return false;

    double alpha = M[5] * degToRad - azimuthOffset;
    double gamma = elevationOffset - M[6] * degToRad;
    double beta0 = (scaleFactors[1] + M[4]) * degToRad;
    if (iMMode == 1) {
        alpha = -alpha;
        gamma = -gamma;
        beta0 = -beta0;
    }
    alpha *= scaleFactors[4];
    beta0 *= scaleFactors[6];
    gamma *= scaleFactors[5];

    const double c0 = scaleFactors[0] * degToRad + halfPi;
    const double s2 = scaleFactors[2] * degToRad;
    const double s3 = scaleFactors[3] * degToRad;
    const double cosS2 = std::cos(s2);
    const PendulumSolution solution = solvePendulum({
        {M[0], M[1], M[2]},
        beta0,
        gamma,
        c0,
        {std::sin(s3) * cosS2, std::cos(s3) * cosS2, std::sin(s2)},
    });

    std::copy_n(solution.frame, 9, M);
    return rotateBackByEncoders(M, alpha, gamma) && allFinite(M, 9);
}
