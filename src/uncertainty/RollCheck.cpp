#include "uncertainty/RollCheck.h"

#include <cmath>

namespace kiv {

namespace {

// v turned by a roll r about u has the height along * cos r + across * sin r + fixed.
struct Height {
    double along, across, fixed;
};

Height heightOf(const double* u, const double* v) {
    const double fixed = u[2] * (u[0] * v[0] + u[1] * v[1] + u[2] * v[2]);
    return {v[2] - fixed, u[0] * v[1] - u[1] * v[0], fixed};
}

// Twice the arc tangent, within 1e-12; a small one costs little.
double twiceAtan(double t) {
    const double s = t * t;
    return s < 4e-4 ? 2 * t * (1 - s * (1.0 / 3 - s / 5)) : 2 * std::atan(t);
}

} // namespace

RollCheck checkRoll(const double* u, const double* axis, double sineOfRise) {
    const Height h = heightOf(u, axis);
    const double squared = h.along * h.along + h.across * h.across;
    RollCheck check{0, h.across, 1, 0, true};
    if (squared > 0) {
        check.mirrorCosine = (h.along * h.along - h.across * h.across) / squared;
        check.mirrorSine = 2 * h.along * h.across / squared;
    }
    // along * cos r + across * sin r = wanted, for the tangent of r / 2.
    const double wanted = sineOfRise - h.fixed;
    const double left = squared - wanted * wanted;
    check.reachable = left >= 0;
    const double root = std::sqrt(check.reachable ? left : 0.0);
    const double denominator = h.across + std::copysign(root, h.across);
    const double numerator = wanted - h.along;
    check.error = numerator == 0 ? 0 : twiceAtan(numerator / denominator);
    return check;
}

double heightAfterRoll(const double* u, const double* v, double cosine, double sine) {
    const Height h = heightOf(u, v);
    return h.along * cosine + h.across * sine + h.fixed;
}

} // namespace kiv
