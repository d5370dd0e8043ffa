#include "support/ZelUtil.h"

#include "support/LookUp.h"

namespace {

// One knot's row of coef. From knot i to the next, with t = v - x[i], the spline is
// value + slope t + c t^2 + d t^3; the last row is the straight line beyond the last knot.
struct Row {
    double& value;
    double& slope;
    double& c;
    double& d;
};

Row rowOf(double* coef, int i) {
    double* const row = coef + 4 * static_cast<long long>(i);
    return {row[0], row[1], row[2], row[3]};
}

double step(const float* x, int i) {
    return static_cast<double>(x[i + 1]) - static_cast<double>(x[i]);
}

} // namespace

// With h[i] = x[i+1] - x[i] and s[i] = (y[i+1] - y[i]) / h[i]:
// h[i-1] c[i-1] + 2 (h[i-1] + h[i]) c[i] + h[i] c[i+1] = 3 (s[i] - s[i-1]), c[0] = c[n] = 0.
void CubicSplines(float* x, float* y, int n, double* coef) {
    if (n < 0)
        return;
    for (int i = 0; i <= n; ++i) {
        const Row row = rowOf(coef, i);
        row.value = static_cast<double>(y[i]);
        row.slope = row.c = row.d = 0.0;
    }

    // Forward elimination to c[i] = (row c) - (row d) c[i+1].
    for (int i = 1; i < n; ++i) {
        const Row before = rowOf(coef, i - 1);
        const Row row = rowOf(coef, i);
        const Row after = rowOf(coef, i + 1);
        const double h0 = step(x, i - 1);
        const double h1 = step(x, i);
        const double bend =
            3.0 * ((after.value - row.value) / h1 - (row.value - before.value) / h0);
        const double pivot = 2.0 * (h0 + h1) - h0 * before.d;
        row.c = (bend - h0 * before.c) / pivot;
        row.d = h1 / pivot;
    }

    for (int i = n - 1; i >= 0; --i) {
        const Row row = rowOf(coef, i);
        const Row after = rowOf(coef, i + 1);
        const double h = step(x, i);
        row.c -= row.d * after.c;
        row.slope = (after.value - row.value) / h - h * (after.c + 2.0 * row.c) / 3.0;
        row.d = (after.c - row.c) / (3.0 * h);
    }
    if (n > 0) {
        const Row before = rowOf(coef, n - 1);
        rowOf(coef, n).slope = before.slope + step(x, n - 1) * before.c;
    }
}

namespace {

// The last of the knots 0 to n - 1 that v has reached. Knots mostly stand at even steps: then the
// first look is enough.
template <class Reached>
int segmentOf(const float* x, int n, float v, Reached reached) {
    const float part = (v - x[0]) / (x[n] - x[0]);
    if (part > 0.0F && part < 1.0F) {
        const auto even = static_cast<int>(part * static_cast<float>(n));
        if (even < n && reached(even) && !reached(even + 1))
            return even;
    }
    return lastNotAbove(n, reached);
}

} // namespace

float CalcSpline(bool, float* x, double* coef, int n, float v, bool* outside) {
    if (n < 0) {
        *outside = true;
        return 0.0F;
    }
    const bool rising = x[n] >= x[0];
    const auto reached = [&](int knot) { return rising ? v >= x[knot] : v <= x[knot]; };
    const bool notBeyond = rising ? v <= x[n] : v >= x[n];
    *outside = !(reached(0) && notBeyond);

    const int i = reached(n) ? n : segmentOf(x, n, v, reached);
    const Row row = rowOf(coef, i);
    const double t = static_cast<double>(v) - static_cast<double>(x[i]);
    const bool before = rising ? v < x[0] : v > x[0];
    const double bend = before ? 0.0 : (row.d * t + row.c) * t;
    return static_cast<float>((bend + row.slope) * t + row.value);
}
