#pragma once

#include <cmath>
#include <iomanip>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

// Assertions on row-major 3x3 matrices; each prints the whole matrix and its worst element.
namespace kiv::test {

inline std::string printed(const double* m) {
    std::ostringstream text;
    text << std::setprecision(17);
    for (int i = 0; i < 9; ++i)
        text << m[i] << (i % 3 == 2 ? '\n' : ' ');
    return text.str();
}

inline ::testing::AssertionResult isNear(const double* m, const double* expected,
                                         double tolerance) {
    int worst = 0;
    double largest = -1;
    for (int i = 0; i < 9; ++i) {
        const double difference = std::abs(m[i] - expected[i]);
        if (!(difference <= largest)) { // also for an entry that is not a number
            largest = difference;
            worst = i;
        }
        if (std::isnan(difference))
            break;
    }
    if (largest <= tolerance)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "entry " << worst / 3 << ',' << worst % 3 << " differs by " << largest << ", allowed "
           << tolerance << "\n"
           << printed(m) << "expected\n"
           << printed(expected);
}

inline ::testing::AssertionResult isRotation(const double* m, double tolerance) {
    double gram[9];
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            gram[3 * i + j] = m[i] * m[j] + m[3 + i] * m[3 + j] + m[6 + i] * m[6 + j];
    const double identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    if (auto orthonormal = isNear(gram, identity, tolerance); !orthonormal)
        return ::testing::AssertionFailure() << "not orthonormal:\n"
                                             << printed(m) << orthonormal.message();
    const double determinant = m[0] * (m[4] * m[8] - m[5] * m[7])
                               - m[1] * (m[3] * m[8] - m[5] * m[6])
                               + m[2] * (m[3] * m[7] - m[4] * m[6]);
    if (!(std::abs(determinant - 1) <= tolerance))
        return ::testing::AssertionFailure() << "determinant " << determinant << "\n" << printed(m);
    return ::testing::AssertionSuccess();
}

} // namespace kiv::test
