#pragma once

// The functions of ZelUtil.h that are shorter than a call of them, for their callers to take in.
// Empty where another library stands behind ZelUtil.h.

#include <algorithm>
#include <cmath>
#include <utility>

namespace kiv::zelutil {

void multiplyAny(const double* a, const double* b, int m, int n, int p, double* c);
void transposeOblong(double* a, int rows, int cols);

inline void multiply3(const double* a, const double* b, double* c) {
    for (int row = 0; row < 3; ++row) {
        const double a0 = a[3 * row];
        const double a1 = a[3 * row + 1];
        const double a2 = a[3 * row + 2];
        c[3 * row] = a0 * b[0] + a1 * b[3] + a2 * b[6];
        c[3 * row + 1] = a0 * b[1] + a1 * b[4] + a2 * b[7];
        c[3 * row + 2] = a0 * b[2] + a1 * b[5] + a2 * b[8];
    }
}

inline void multiplyByVector3(const double* a, const double* v, double* out) {
    for (int row = 0; row < 3; ++row)
        out[row] = a[3 * row] * v[0] + a[3 * row + 1] * v[1] + a[3 * row + 2] * v[2];
}

inline int fill(double* r, const double (&entries)[9]) {
    std::copy_n(entries, 9, r);
    return 0;
}

} // namespace kiv::zelutil

inline void MatrixMultiply(const double* a, const double* b, int m, int n, int p, double* c) {
    if (m == 3 && n == 3 && p == 3)
        kiv::zelutil::multiply3(a, b, c);
    else if (m == 3 && n == 3 && p == 1)
        kiv::zelutil::multiplyByVector3(a, b, c);
    else
        kiv::zelutil::multiplyAny(a, b, m, n, p, c);
}

inline void EyeMatrix(double* a, int n) {
    for (int row = 0; row < n; ++row)
        for (int column = 0; column < n; ++column)
            a[row * n + column] = row == column ? 1.0 : 0.0;
}

inline void CrossMultiply(double* const a, double* const b, double* const c) {
    c[0] = a[1] * b[2] - a[2] * b[1];
    c[1] = a[2] * b[0] - a[0] * b[2];
    c[2] = a[0] * b[1] - a[1] * b[0];
}

inline void MatrixTransform(double* const a, int rows, int cols) {
    if (rows != cols) {
        kiv::zelutil::transposeOblong(a, rows, cols);
        return;
    }
    for (int row = 0; row < rows; ++row)
        for (int column = row + 1; column < cols; ++column)
            std::swap(a[row * cols + column], a[column * cols + row]);
}

inline int rotation_x(double* r, double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return kiv::zelutil::fill(r, {1.0, 0.0, 0.0, //
                                  0.0, c, -s,    //
                                  0.0, s, c});
}

inline int rotation_y(double* r, double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return kiv::zelutil::fill(r, {c, 0.0, s,     //
                                  0.0, 1.0, 0.0, //
                                  -s, 0.0, c});
}

inline int rotation_z(double* r, double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return kiv::zelutil::fill(r, {c, -s, 0.0, //
                                  s, c, 0.0,  //
                                  0.0, 0.0, 1.0});
}
