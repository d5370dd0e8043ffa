#include "models/Geometry.h"

#include <algorithm>

#include "support/ZelUtil.h"

namespace kiv {

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
