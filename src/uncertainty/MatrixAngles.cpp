#include "uncertainty/MatrixAngles.h"

#include <cmath>
#include <numbers>

namespace kiv {

void matrixAngles(const double* r, bool localFrame, double* angles) {
    if (localFrame) {
        angles[0] = std::atan2(r[7], r[8]);
        angles[1] = std::atan2(-r[6], std::sqrt(r[0] * r[0] + r[3] * r[3]));
        angles[2] = std::atan2(r[3], r[0]);
    } else {
        angles[0] = std::atan2(-r[5], r[8]);
        angles[1] = std::atan2(r[2], std::sqrt(r[0] * r[0] + r[1] * r[1]));
        angles[2] = std::atan2(-r[1], r[0]);
    }
}

double turnBetween(double from, double to) {
    return std::remainder(to - from, 2 * std::numbers::pi);
}

} // namespace kiv
