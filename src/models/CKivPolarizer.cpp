#include "KIVInterface/CKivPolarizer.h"

#include <cmath>

#include "models/Blocks.h"
#include "models/Geometry.h"
#include "support/ZelUtil.h"

CKivPolarizer::CKivPolarizer() = default;
CKivPolarizer::CKivPolarizer(const CKivPolarizer&) = default;
CKivPolarizer& CKivPolarizer::operator=(const CKivPolarizer&) = default;
CKivPolarizer::~CKivPolarizer() = default;

void CKivPolarizer::UpdateSFactors(float* values, int count) {
    kiv::copyIntoBlock(values, count, scaleFactors);
}

void CKivPolarizer::UpdateQVCParameters(float*, int) {}
void CKivPolarizer::UpdateLevel1Parameters(float*, int) {}
void CKivPolarizer::UpdateLevel2Parameters(float*, int) {}
void CKivPolarizer::GetQVCMatrix(float*, int) {}

bool CKivPolarizer::CalTranxMatrix(double* const M, double azimuthOffset, double elevationOffset,
                                   int n, bool, bool) {
    return CKivPolarizer::CalTranxMatrix(M, azimuthOffset, elevationOffset, n);
}

bool CKivPolarizer::CalTranxMatrix(double* const M, double azimuthOffset, double elevationOffset,
                                   int n) {
    using namespace kiv;
    if (n != 3)
        return false;

    const double x = M[0];
    const double y = M[1];
    const double z = M[2];
    const double a0 = -std::atan2(x, y);
    const double r = std::sqrt(z * z + (y * y + x * x));
    const double e0 = std::asin(arcArgument(z / r));
    const double beta = (scaleFactors[1] + M[4]) * degToRad * scaleFactors[6];
    const double m0 = scaleFactors[0] * degToRad;
    const double gamma = (elevationOffset - M[6] * degToRad) * scaleFactors[5];
    const double alpha = (azimuthOffset - M[5] * degToRad) * scaleFactors[4];

    // M = Rz(a0) Rx(e0) Ry(beta) Rz(m0) Rx(gamma) Rz(alpha), multiplied from the left.
    double r1[9];
    double r2[9];
    rotation_z(r1, a0);
    rotation_x(r2, e0);
    MatrixMultiply(r1, r2, 3, 3, 3, M);
    rotation_y(r1, beta);
    MatrixMultiply(M, r1, 3, 3, 3, r2);
    rotation_z(r1, m0);
    MatrixMultiply(r2, r1, 3, 3, 3, M);
    rotation_x(r1, gamma);
    MatrixMultiply(M, r1, 3, 3, 3, r2);
    rotation_z(r1, alpha);
    MatrixMultiply(r2, r1, 3, 3, 3, M);
    return true;
}
