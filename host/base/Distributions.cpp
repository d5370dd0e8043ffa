#include "host/base/Distributions.h"

#include <algorithm>
#include <cmath>
#include <limits>

// Source: NIST Digital Library of Mathematical Functions, chapter 8; continued fractions by the
// modified method of W. Lentz, Applied Optics 15 (1976), 668.
namespace kiv::host {

namespace {

constexpr double mostDegrees = 1e6;
constexpr double precision = std::numeric_limits<double>::epsilon();
constexpr int mostTerms = 1000000;
constexpr double tiny = 1e-300; // in place of a denominator of 0
constexpr double none = std::numeric_limits<double>::quiet_NaN();

struct Term {
    double a, b;
};

// b0 + a1 / (b1 + a2 / (b2 + ...)), where term(n) gives those of n.
template <typename TermOf>
double continuedFraction(double b0, TermOf term) {
    double fraction = b0 == 0 ? tiny : b0, c = fraction, d = 0, factor = 0;
    for (int n = 1; n < mostTerms && std::abs(factor - 1) > precision; ++n) {
        const auto [a, b] = term(n);
        d = b + a * d;
        d = 1 / (d == 0 ? tiny : d);
        c = b + a / c;
        c = c == 0 ? tiny : c;
        factor = c * d;
        fraction *= factor;
    }
    return fraction;
}

// The regularised incomplete beta function I_x(a, b), y = 1 - x. DLMF 8.17.4 and 8.17.22.
double incompleteBeta(double x, double y, double a, double b) {
    if (x > (a + 1) / (a + b + 2))
        return 1 - incompleteBeta(y, x, b, a);
    const double front = std::exp(a * std::log(x) + b * std::log(y) + std::lgamma(a + b)
                                  - std::lgamma(a) - std::lgamma(b));
    return front / a / continuedFraction(1, [=](int n) -> Term {
               const int m = n / 2;
               const double even = m * (b - m) * x / ((a + 2 * m - 1) * (a + 2 * m));
               const double odd = -(a + m) * (a + b + m) * x / ((a + 2 * m) * (a + 2 * m + 1));
               return {n % 2 == 0 ? even : odd, 1};
           });
}

// The regularised incomplete gamma function P(a, x). DLMF 8.11.4 and 8.9.2.
double incompleteGamma(double a, double x) {
    const double front = std::exp(a * std::log(x) - x - std::lgamma(a));
    if (x >= a + 1)
        return 1 - front / continuedFraction(x + 1 - a, [=](int n) -> Term {
                       return {-n * (n - a), x + 2 * n + 1 - a};
                   });
    double sum = 1 / a;
    double term = sum;
    for (int n = 1; n < mostTerms && term > precision * sum; ++n)
        sum += term *= x / (a + n);
    return front * sum;
}

// Where a rising function of what is positive comes to a value, to the last bit.
template <typename Function>
double inverse(Function f, double value) {
    double low = 0, high = 1;
    while (f(high) < value)
        high *= 2;
    for (double middle = high / 2; low < middle && middle < high; middle = (low + high) / 2)
        (f(middle) < value ? low : high) = middle;
    return high;
}

// The probability of more than t, which is positive.
double studentTail(double t, double degrees) {
    const double square = t * t;
    return incompleteBeta(degrees / (degrees + square), square / (degrees + square), degrees / 2,
                          0.5)
           / 2;
}

// No number where there are none.
double usable(double degrees) {
    return degrees > 0 ? std::min(degrees, mostDegrees) : none;
}

} // namespace

double studentProbability(double t, double degreesOfFreedom) {
    const double degrees = usable(degreesOfFreedom);
    const double tail = t == 0 ? 0.5 : studentTail(std::abs(t), degrees);
    return std::isnan(t) || std::isnan(degrees) ? none : t > 0 ? 1 - tail : tail;
}

double studentQuantile(double probability, double degreesOfFreedom) {
    const double degrees = usable(degreesOfFreedom);
    const double tail = std::min(probability, 1 - probability);
    if (!(tail > 0) || std::isnan(degrees))
        return tail == 0 ? std::copysign(INFINITY, probability - 0.5) : none;
    const double t =
        tail == 0.5 ? 0 : inverse([=](double x) { return -studentTail(x, degrees); }, -tail);
    return probability < 0.5 ? -t : t;
}

double chiSquaredProbability(double value, double degreesOfFreedom) {
    const double degrees = usable(degreesOfFreedom);
    if (!(value >= 0) || std::isnan(degrees))
        return none;
    return value == 0 ? 0 : incompleteGamma(degrees / 2, value / 2);
}

double chiSquaredQuantile(double probability, double degreesOfFreedom) {
    const double degrees = usable(degreesOfFreedom);
    if (!(probability >= 0 && probability < 1) || std::isnan(degrees))
        return probability == 1 ? INFINITY : none;
    return probability == 0
               ? 0
               : inverse([=](double x) { return chiSquaredProbability(x, degrees); }, probability);
}

} // namespace kiv::host
