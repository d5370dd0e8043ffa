#include "models/ThreeVectors.h"

#include <algorithm>
#include <cmath>

#include "models/Geometry.h"
#include "support/ZelUtil.h"

namespace kiv {

void tiltedAxis(const float* tilts, int untilted, double* axis) {
    const double t0 = std::tan(tilts[0] * degToRad);
    const double t1 = std::tan(tilts[1] * degToRad);
    const double length = std::sqrt(t0 * t0 + 1 + t1 * t1);
    axis[untilted] = 1 / length;
    axis[1 - untilted] = t0 / length;
    axis[2] = t1 / length;
}

MeasuringDirection measuringDirection(const double* M, const float* qvcParameters,
                                      double elevationOffset) {
    MeasuringDirection direction;
    double s[3] = {M[0], M[1], M[2]};
    ConvertCartesianToSphericalCoordinates(s);
    direction.azimuth = s[0];
    direction.elevation = s[1];

    const double q5 = qvcParameters[5] * degToRad;
    double w0[3] = {std::cos(q5), 0, std::sin(q5)};
    double axis[3];
    tiltedAxis(qvcParameters + 3, 1, axis);
    mlaRotateAroundAxis(w0, M[6] - elevationOffset * radToDeg, axis, direction.w1);
    return direction;
}

InstrumentSide instrumentSide(int parity, double azimuth, double elevation) {
    InstrumentSide side{{0, 0, parity == 0 ? -1.0 : 1.0}, elevation, {}};
    const double az = azimuth * degToRad;
    const double el = elevation * degToRad;
    const double cosEl = std::cos(el);
    double b0[3] = {-std::sin(az) * cosEl, std::cos(az) * cosEl, std::sin(el)};
    double e[3];
    double f[3];
    CrossMultiply(side.w2, b0, e);
    normalize(e);
    CrossMultiply(e, b0, f);
    frameFromColumns(e, b0, f, side.frame);
    return side;
}

void rotationFromLevel(const float* levelParameters, double levelReading, double* w1,
                       InstrumentSide& instrument, double* out) {
    double axis[3];
    tiltedAxis(levelParameters + 3, 0, axis);
    const double lambda = (levelReading - levelParameters[5]) * levelParameters[6] + 90.0;

    // The vertical as the sensor sees it.
    double x[3];
    solveVectorsRelAng(instrument.w2, w1, axis, instrument.elevation + 90.0, lambda, x);

    double c[3];
    double d[3];
    double sensorSide[9];
    CrossMultiply(x, w1, c);
    normalize(c);
    CrossMultiply(c, w1, d);
    frameFromColumns(c, w1, d, sensorSide);

    MatrixTransform(sensorSide, 3, 3);
    MatrixMultiply(instrument.frame, sensorSide, 3, 3, 3, out);
}

void storeQvcOutput(const double* k, const float* qvcParameters, float* qvcMatrix) {
    const double vector[3] = {qvcParameters[0], qvcParameters[2], qvcParameters[1]};
    double out[3];
    MatrixMultiply(k, vector, 3, 3, 1, out);
    qvcMatrix[0] = static_cast<float>(out[0]);
    qvcMatrix[1] = static_cast<float>(out[2]);
    qvcMatrix[2] = static_cast<float>(out[1]);
}

void rotateBackByAzimuth(const double* k, double azimuthAngle, double azimuthOffset, double* M) {
    double rz[9];
    rotation_z(rz, -(azimuthAngle - azimuthOffset * radToDeg) * degToRad);
    MatrixMultiply(k, rz, 3, 3, 3, M);
}

} // namespace kiv
