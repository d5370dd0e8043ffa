#include "sensor/OrientationAngles.h"

#include <cmath>

#include "models/Geometry.h"

namespace kiv {

namespace {

struct Column {
    double x, y, z;
};

Column unitColumn(const double* r, int j) {
    const double x = r[j];
    const double y = r[3 + j];
    const double z = r[6 + j];
    const double norm = std::sqrt(x * x + y * y + z * z);
    return {x / norm, y / norm, z / norm};
}

double quadrantAngle(double x, double y) {
    return signedAngle(x, y, angleDeadBand);
}

struct SineCosine {
    double s, c;
};

// Single precision, of the angle as stored: recorded results were computed so.
SineCosine sineCosine(float angle) {
    return {std::sin(angle), std::cos(angle)};
}

float inDegrees(float radians) {
    return static_cast<float>(radians * radToDeg);
}

OrientationAngles inDegrees(float rx, float rz, float ry) {
    return {inDegrees(rx), inDegrees(rz), inDegrees(ry)};
}

} // namespace

OrientationAngles machineAngles(const double* r) {
    Column cz = unitColumn(r, 2); // first, since all waits for it
    cz.y = -cz.y;
    const Column cx = unitColumn(r, 0);
    const Column cy = unitColumn(r, 1);

    const auto rx = static_cast<float>(quadrantAngle(cz.z, cz.y));
    const auto [s, c] = sineCosine(rx);
    const auto rz = static_cast<float>(quadrantAngle(s * cy.z + c * cy.y, s * cx.z + c * cx.y));
    const auto ry = static_cast<float>(halfPlaneAngle(s * cz.y + c * cz.z, cz.x, angleDeadBand));
    return inDegrees(rx, rz, ry);
}

OrientationAngles localAngles(const double* r) {
    const Column cx = unitColumn(r, 0);
    const Column cy = unitColumn(r, 1);
    Column cz = unitColumn(r, 2);
    cz.y = -cz.y;

    const auto rz = static_cast<float>(quadrantAngle(cx.x, cx.y));
    const auto [s, c] = sineCosine(rz);
    const auto ry = static_cast<float>(quadrantAngle(c * cx.x + s * cx.y, -cx.z));
    const auto rx = static_cast<float>(quadrantAngle(c * cy.y - s * cy.x, c * cz.y + s * cz.x));
    return inDegrees(rx, rz, ry);
}

OrientationAngles threeVectorAngles(const double* t) {
    const auto rx = static_cast<float>(std::atan2(-t[5], t[8]));
    const auto rz = static_cast<float>(std::atan2(-t[1], t[0]));
    const auto [s, c] = sineCosine(rx);
    const auto ry = static_cast<float>(std::atan2(t[2], c * t[8] - s * t[5]));
    return inDegrees(rx, rz, ry);
}

} // namespace kiv
