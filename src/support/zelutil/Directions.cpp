#include "support/ZelUtil.h"

#include <cmath>
#include <numbers>

namespace {

double squaredLength(const double* v) {
    return v[0] * v[0] + v[1] * v[1] + v[2] * v[2];
}

} // namespace

// The part of out in the plane of b and c is ((out.b) c - (out.c) b) x n / |n|^2, n = b x c. Its
// error grows as 1 / |n| where b and c draw together; that of a solution through 1 - (b.c)^2 as 1 /
// |n|^2.
void solveVectorsRelAng(double* const a, double* const b, double* const c, double alpha,
                        double beta, double* const out) {
    constexpr double degree = std::numbers::pi / 180.0;
    const double s = -a[2];
    const double outB = s * std::cos(alpha * degree);
    const double outC = s * std::cos(beta * degree);

    double n[3];
    CrossMultiply(b, c, n);
    const double det = squaredLength(n);
    double difference[3];
    for (int i = 0; i < 3; ++i)
        difference[i] = outB * c[i] - outC * b[i];
    double inPlane[3];
    CrossMultiply(difference, n, inPlane);
    for (double& component : inPlane)
        component /= det;

    const double squared = squaredLength(inPlane);
    const bool reachable = squared <= 1.0;
    const double alongN = reachable ? std::sqrt((1.0 - squared) / det) : 0.0;
    const double length = reachable ? 1.0 : std::sqrt(squared);
    for (int i = 0; i < 3; ++i)
        out[i] = inPlane[i] / length + alongN * n[i];
}

void ConvertCartesianToSphericalCoordinates(double* p) {
    constexpr double degrees = 180.0 / std::numbers::pi;
    const double across = std::hypot(p[0], p[1]);
    const double length = std::hypot(across, p[2]);
    double horizontal = 0.0;
    double vertical = 0.0;
    if (length != 0.0) {
        horizontal = std::atan2(0.0 - p[0], p[1]) * degrees; // 0 - x: no negative zero
        if (horizontal <= -180.0)
            horizontal = 180.0;
        vertical = std::atan2(p[2], across) * degrees;
    }
    p[0] = horizontal;
    p[1] = vertical;
    p[2] = length;
}
