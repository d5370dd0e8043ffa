#include "support/ZelUtil.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

namespace {

// The determinant's rounding error against the product of the row lengths is below 4 epsilon; the
// other half is the rounding of the entries themselves.
constexpr double singular = 8 * std::numeric_limits<double>::epsilon();

// Between these limits of the squared product of the row lengths no product of the closed form
// overflows, and none loses digits to underflow.
constexpr double smallestSquaredBound = 1e-200;
constexpr double largestSquaredBound = 1e200;

double squaredLength(const double* v) {
    return v[0] * v[0] + v[1] * v[1] + v[2] * v[2];
}

// Adjugate over determinant.
bool invert3(double* a, double squaredBound) {
    const double adjugate[9] = {
        a[4] * a[8] - a[5] * a[7], a[2] * a[7] - a[1] * a[8], a[1] * a[5] - a[2] * a[4],
        a[5] * a[6] - a[3] * a[8], a[0] * a[8] - a[2] * a[6], a[2] * a[3] - a[0] * a[5],
        a[3] * a[7] - a[4] * a[6], a[1] * a[6] - a[0] * a[7], a[0] * a[4] - a[1] * a[3]};
    const double determinant = a[0] * adjugate[0] + a[1] * adjugate[3] + a[2] * adjugate[6];
    if (determinant * determinant <= singular * singular * squaredBound)
        return false;
    for (int i = 0; i < 9; ++i)
        a[i] = adjugate[i] / determinant;
    return true;
}

// The e for which the largest entry of the row lies in [2^(e - 1), 2^e); 0 for a row of zeros.
int rowExponent(const double* row, std::size_t n) {
    double largest = 0.0;
    for (std::size_t i = 0; i < n; ++i)
        largest = std::max(largest, std::abs(row[i]));
    int exponent = 0;
    std::frexp(largest, &exponent);
    return exponent;
}

bool allFinite(const double* values, std::size_t count) {
    return std::all_of(values, values + count, [](double v) { return std::isfinite(v); });
}

// Gauss-Jordan elimination of (D a | I) with partial pivoting, where the diagonal D of powers of
// two brings every row to the same size: the right half becomes (D a)^-1, and a^-1 = (D a)^-1 D.
bool invertByElimination(double* a, std::size_t n) {
    if (!allFinite(a, n * n))
        return false;

    const std::size_t width = 2 * n;
    double ofThree[2 * 3 * 3];
    std::vector<double> ofMore;
    if (n > 3)
        ofMore.resize(n * width);
    double* const work = n > 3 ? ofMore.data() : ofThree;

    for (std::size_t i = 0; i < n; ++i) {
        const int exponent = rowExponent(a + i * n, n);
        for (std::size_t j = 0; j < n; ++j) {
            work[i * width + j] = std::scalbn(a[i * n + j], -exponent);
            work[i * width + n + j] = i == j ? 1.0 : 0.0;
        }
    }

    for (std::size_t column = 0; column < n; ++column) {
        const auto size = [&](std::size_t row) { return std::abs(work[row * width + column]); };
        std::size_t pivotRow = column;
        for (std::size_t i = column + 1; i < n; ++i)
            if (size(i) > size(pivotRow))
                pivotRow = i;
        if (size(pivotRow) <= singular)
            return false;

        double* const top = work + column * width;
        if (pivotRow != column)
            std::swap_ranges(top, top + width, work + pivotRow * width);
        const double pivot = top[column];
        for (std::size_t j = 0; j < width; ++j)
            top[j] /= pivot;
        for (std::size_t i = 0; i < n; ++i) {
            const double factor = work[i * width + column];
            if (i != column && factor != 0.0)
                for (std::size_t j = 0; j < width; ++j)
                    work[i * width + j] -= factor * top[j];
        }
    }

    for (std::size_t j = 0; j < n; ++j) {
        const int exponent = rowExponent(a + j * n, n);
        for (std::size_t i = 0; i < n; ++i)
            work[i * width + n + j] = std::scalbn(work[i * width + n + j], -exponent);
    }
    for (std::size_t i = 0; i < n; ++i)
        if (!allFinite(work + i * width + n, n))
            return false;
    for (std::size_t i = 0; i < n; ++i)
        std::copy_n(work + i * width + n, n, a + i * n);
    return true;
}

} // namespace

namespace kiv::zelutil {

void multiplyAny(const double* a, const double* b, int m, int n, int p, double* c) {
    for (int row = 0; row < m; ++row) {
        for (int column = 0; column < p; ++column) {
            double sum = -0.0; // keeps the sign of a first product that is zero
            for (int k = 0; k < n; ++k)
                sum += a[row * n + k] * b[k * p + column];
            c[row * p + column] = sum;
        }
    }
}

// Fills the places in order. A source before its target has been swapped away already, to the place
// that was its own source.
void transposeOblong(double* a, int rows, int cols) {
    for (int target = 0; target < rows * cols; ++target) {
        int source = target;
        do
            source = source % rows * cols + source / rows;
        while (source < target);
        std::swap(a[target], a[source]);
    }
}

} // namespace kiv::zelutil

bool MatrixInverse(double* a, int n) {
    if (n < 1)
        return false;
    if (n == 3) {
        const double squaredBound = squaredLength(a) * squaredLength(a + 3) * squaredLength(a + 6);
        if (squaredBound > smallestSquaredBound && squaredBound < largestSquaredBound)
            return invert3(a, squaredBound);
    }
    return invertByElimination(a, static_cast<std::size_t>(n));
}
