#include "models/Geometry.h"

#include <algorithm>

#include "support/ZelUtil.h"

namespace kiv {

void normalize(double* v) {
    const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    v[0] /= length;
    v[1] /= length;
    v[2] /= length;
}

void frameFromColumns(const double* a, const double* b, const double* c, double* m) {
    for (int row = 0; row < 3; ++row) {
        m[3 * row] = a[row];
        m[3 * row + 1] = b[row];
        m[3 * row + 2] = c[row];
    }
}

bool rotateBackByEncoders(double* m, double alpha, double gamma) {
    double rz[9];
    double ry[9];
    double k[9];
    double product[9];
    rotation_z(rz, alpha);
    rotation_y(ry, gamma);
    MatrixMultiply(rz, ry, 3, 3, 3, k);
    const bool ok = MatrixInverse(k, 3);
    MatrixMultiply(m, k, 3, 3, 3, product);
    std::copy_n(product, 9, m);
    return ok;
}

bool allFinite(const double* values, int count) {
    return std::all_of(values, values + count, [](double v) { return std::isfinite(v); });
}

} // namespace kiv
