#include "KIVInterface/CKivDualLevel.h"

#include <cmath>

#include "models/Blocks.h"
#include "models/Geometry.h"
#include "support/ZelUtil.h"

namespace kiv {

namespace {

// Angles are radians.
struct TiltProblem {
    double levelX, levelY;      // readings
    double azimuth;             // of the measured point
    double height;              // of the measured point above the instrument
    double horizontalDistance;  // of the measured point
    double axesAngle;           // between the axes of the two levels
    double tiltDirectionOffset; // added to the direction of the tilt
};

// The tilted vertical, a unit vector in the instrument frame.
void tiltedVertical(const TiltProblem& problem, double* vertical) {
    const double levelX = problem.levelX;
    const double levelY = problem.levelY;
    if (std::abs(levelX) <= levelDeadBand && std::abs(levelY) <= levelDeadBand) {
        vertical[0] = 0;
        vertical[1] = 0;
        vertical[2] = 1;
        return;
    }
    const double sinX = std::sin(levelX);
    const double sinY = std::sin(levelY);
    const double tilt = std::asin(arcArgument(
        std::sqrt(sinX * sinX + sinY * sinY - std::cos(problem.axesAngle) * 2 * sinX * sinY)
        / std::sin(problem.axesAngle)));
    const double sinTilt = std::sin(tilt); // the tilt, from an arc sine, has the sign of its sine

    // The direction of the tilt from level Y, and the dip of the line of sight's plane.
    const double sinAbsY = levelY < 0 ? -sinY : sinY;
    const double tiltDirection =
        std::acos(arcArgument(sinAbsY / std::abs(sinTilt))) + problem.tiltDirectionOffset;
    double dip = tiltDirection < halfPi
                     ? std::asin(arcArgument(std::cos(tiltDirection) * sinTilt))
                     : -std::asin(arcArgument(std::cos(pi - tiltDirection) * sinTilt));
    if (levelY < 0)
        dip = -dip;

    const double height = problem.height;
    double ratio = std::abs(height / std::tan(tilt)) / std::abs(height / std::tan(levelY));
    if (std::abs(ratio) >= 1)
        ratio = ratio / std::abs(ratio);
    const double fromLevel = std::acos(ratio);
    const double fromDip =
        std::acos(arcArgument(-(std::tan(dip) * std::abs(height) / problem.horizontalDistance)));

    double direction = twoPi - (fromDip - fromLevel);
    if (levelX < 0 && dip > 0)
        direction = fromDip + fromLevel;
    else if (levelX < 0 && dip < 0)
        direction = twoPi - (fromDip + fromLevel);
    else if (levelX > 0 && dip > 0)
        direction = fromDip - fromLevel;

    const double verticalAzimuth = direction + problem.azimuth;
    vertical[0] = std::cos(verticalAzimuth) * sinTilt;
    vertical[1] = std::sin(verticalAzimuth) * sinTilt;
    vertical[2] = std::cos(tilt);
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
    const double levelX = M[3] * degToRad;
    const double levelY = -(M[4] * degToRad);
    const double alpha = M[5] * degToRad - azimuthOffset;
    const double gamma = elevationOffset - M[6] * degToRad;

    const double rho2 = x * x + y * y;
    const double r = std::sqrt(z * z + rho2);
    double u[3] = {0, 0, 0};
    if (r > 0) {
        u[0] = x / r;
        u[1] = y / r;
        u[2] = z / r;
    }
    double vertical[3];
    tiltedVertical(
        {
            levelX,
            levelY,
            fullTurnAngle(x, y, lengthDeadBand),
            z,
            std::sqrt(rho2),
            (scaleFactors[0] + 90.0) * degToRad,
            scaleFactors[1] * degToRad,
        },
        vertical);

    double across[3];
    double up[3];
    CrossMultiply(vertical, u, across);
    normalize(across);
    CrossMultiply(u, across, up);
    normalize(up);
    frameFromColumns(u, across, up, M);

    return rotateBackByEncoders(M, alpha, gamma) && allFinite(M, 9);
}
