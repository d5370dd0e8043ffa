#include "KIVInterface/CKivDualLevel.h"

#include <cmath>

#include "models/Blocks.h"
#include "models/Geometry.h"
#include "support/ZelUtil.h"

namespace kiv {

namespace {

// The tilted vertical (unit, instrument frame) from the two level readings lx, ly (radians), the
// measured point's azimuth phi, height z and horizontal distance rho, the angle c between the level
// axes and the offset s1 of the direction of the tilt.
void tiltedVertical(double lx, double ly, double phi, double z, double rho, double c, double s1,
                    double* e) {
    if (std::abs(lx) <= levelDeadBand && std::abs(ly) <= levelDeadBand) {
        e[0] = 0;
        e[1] = 0;
        e[2] = 1;
        return;
    }
    const double sinLx = std::sin(lx);
    const double sinLy = std::sin(ly);
    const double tau = std::asin(arcArgument(
        std::sqrt(sinLx * sinLx + sinLy * sinLy - std::cos(c) * 2 * sinLx * sinLy) / std::sin(c)));
    const double sinTau = std::sin(tau); // tau, from an arc sine, has the sign of its sine

    // The dip g of the line of sight's plane, from the direction p of the tilt.
    const double sinAbsLy = ly < 0 ? -sinLy : sinLy;
    const double p = std::acos(arcArgument(sinAbsLy / std::abs(sinTau))) + s1;
    double g = p < halfPi ? std::asin(arcArgument(std::cos(p) * sinTau))
                          : -std::asin(arcArgument(std::cos(pi - p) * sinTau));
    if (ly < 0)
        g = -g;

    double q = std::abs(z / std::tan(tau)) / std::abs(z / std::tan(ly));
    if (std::abs(q) >= 1)
        q = q / std::abs(q);
    const double a1 = std::acos(q);
    const double a2 = std::acos(arcArgument(-(std::tan(g) * std::abs(z) / rho)));

    double direction = twoPi - (a2 - a1);
    if (lx < 0 && g > 0)
        direction = a2 + a1;
    else if (lx < 0 && g < 0)
        direction = twoPi - (a2 + a1);
    else if (lx > 0 && g > 0)
        direction = a2 - a1;

    const double psi = direction + phi;
    e[0] = std::cos(psi) * sinTau;
    e[1] = std::sin(psi) * sinTau;
    e[2] = std::cos(tau);
}

} // namespace

} // namespace kiv

CKivDualLevel::CKivDualLevel() = default;
CKivDualLevel::CKivDualLevel(const CKivDualLevel&) = default;
CKivDualLevel& CKivDualLevel::operator=(const CKivDualLevel&) = default;
CKivDualLevel::~CKivDualLevel() = default;

void CKivDualLevel::UpdateSFactors(float* values, int count) {
    kiv::copyIntoBlock(values, count, scaleFactors);
}

void CKivDualLevel::UpdateQVCParameters(float*, int) {}
void CKivDualLevel::UpdateLevel1Parameters(float*, int) {}
void CKivDualLevel::UpdateLevel2Parameters(float*, int) {}
void CKivDualLevel::GetQVCMatrix(float*, int) {}

bool CKivDualLevel::CalTranxMatrix(double* const M, double azimuthOffset, double elevationOffset,
                                   int n, bool, bool) {
    return CKivDualLevel::CalTranxMatrix(M, azimuthOffset, elevationOffset, n);
}

bool CKivDualLevel::CalTranxMatrix(double* const M, double azimuthOffset, double elevationOffset,
                                   int n) {
    using namespace kiv;
    if (n != 3)
        return false;

    const double x = M[0];
    const double y = M[1];
    const double z = M[2];
    const double lx = M[3] * degToRad;
    const double ly = -(M[4] * degToRad);
    const double alpha = M[5] * degToRad - azimuthOffset;
    const double gamma = elevationOffset - M[6] * degToRad;

    const double rho2 = x * x + y * y;
    const double r = std::sqrt(z * z + rho2);
    const double rho = std::sqrt(rho2);
    double u[3] = {0, 0, 0};
    if (r > 0) {
        u[0] = x / r;
        u[1] = y / r;
        u[2] = z / r;
    }
    const double phi = fullTurnAngle(x, y, modelDeadBand);
    const double s1 = scaleFactors[1] * degToRad;
    const double c = (scaleFactors[0] + 90.0) * degToRad;
    double e[3];
    tiltedVertical(lx, ly, phi, z, rho, c, s1, e);

    double across[3];
    double up[3];
    CrossMultiply(e, u, across);
    normalize(across);
    CrossMultiply(u, across, up);
    normalize(up);
    frameFromColumns(u, across, up, M);

    return rotateBackByEncoders(M, alpha, gamma) && allFinite(M, 9);
}
