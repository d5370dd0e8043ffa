#pragma once

#include <algorithm>
#include <cmath>

namespace kiv {

// A rotation times its transpose departs from the identity by no more: entries in print have six
// decimals.
inline constexpr double rotationTolerance = 1e-5;

// How far a row-major 3x3 matrix is from a rotation.
struct RotationCheck {
    double departure;   // the largest entry of M times its transpose less the identity
    double stretch;     // half that difference's largest sum of a row, its bound as an operator
    double determinant; // below 0: a reflection
};

inline RotationCheck checkRotation(const double* m) {
    RotationCheck check{};
    for (int i = 0; i < 3; ++i) {
        double sum = 0;
        for (int j = 0; j < 3; ++j) {
            const double product =
                m[3 * i] * m[3 * j] + m[3 * i + 1] * m[3 * j + 1] + m[3 * i + 2] * m[3 * j + 2];
            const double off = std::abs(product - (i == j ? 1 : 0));
            sum += off;
            check.departure = std::max(check.departure, off);
        }
        check.stretch = std::max(check.stretch, sum / 2);
    }
    check.determinant = m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6])
                        + m[2] * (m[3] * m[7] - m[4] * m[6]);
    return check;
}

} // namespace kiv
