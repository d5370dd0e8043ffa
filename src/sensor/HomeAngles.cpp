#include <cmath>

#include "KIVInterface/CKiv.h"
#include "models/Geometry.h"
#include "support/ZelUtil.h"

namespace {

using namespace kiv;

// The up vector of a sensor tilted by the two angles (degrees, about x and about y), turned about z
// by azimuth (radians).
void upVector(const D_VECTOR3& tilt, double azimuth, double* up) {
    const double x = tilt.y * degToRad;
    const double y = -(tilt.x * degToRad);
    double theta = std::acos(std::cos(y) * std::cos(x));
    if (theta > halfPi)
        theta = pi - theta;

    double phi = axisAngle(x, y, angleDeadBand, pi, threeHalfPi, [=] {
        // Never outside [-1, 1] but for the rounding of a small polar angle.
        const double sine = std::sin(y) / std::sin(theta);
        const double s = std::asin(std::abs(sine) > 1 ? std::copysign(1.0, sine) : sine);
        if (x < 0)
            return pi - s;
        return y < 0 ? s + twoPi : s;
    });
    phi += azimuth;

    const double sinTheta = std::sin(theta);
    up[0] = std::cos(phi) * sinTheta;
    up[1] = std::sin(phi) * sinTheta;
    up[2] = std::cos(theta);
}

} // namespace

bool CKiv::Calc_HV0(D_VECTOR3 frameX, D_VECTOR3 direction, D_VECTOR2 angles, D_VECTOR3 tilt,
                    double* homeH, double* homeV) {
    const double azimuth = fullTurnAngle(direction.x, direction.y, angleDeadBand);
    double p[3];
    upVector(tilt, azimuth, p);

    double first[3] = {frameX.x, frameX.y, frameX.z};
    double q[3];
    CrossMultiply(p, first, q);

    double u[3] = {0, 0, 0};
    const double length = std::sqrt(direction.x * direction.x + direction.y * direction.y
                                    + direction.z * direction.z);
    if (length > 0) {
        u[0] = direction.x / length;
        u[1] = direction.y / length;
        u[2] = direction.z / length;
    }
    double rv[3];
    double s[3];
    CrossMultiply(p, u, rv);
    CrossMultiply(u, rv, s);

    double tiltFrame[9];
    double directionFrame[9];
    double g[9];
    frameFromColumns(first, q, p, tiltFrame);
    frameFromColumns(u, rv, s, directionFrame);
    const bool ok = MatrixInverse(tiltFrame, 3);
    MatrixMultiply(tiltFrame, directionFrame, 3, 3, 3, g);

    const double h = signedAngle(g[4], -g[1], angleDeadBand);
    *homeH = (angles.x * degToRad - h) * radToDeg;

    const double a1 = std::atan((g[5] + g[2]) / (g[3] + g[0]));
    const double a2 = std::atan(-(g[6] / g[8]));
    *homeV = ((a1 + a2) * 0.5 + angles.y * degToRad) * radToDeg;
    return ok;
}
