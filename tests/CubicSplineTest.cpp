#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "support/ZelUtil.h"

namespace {

using Knots = std::vector<float>;

constexpr float inf = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

// Storage is exactly as large as the contract says, and the values are gone before the first
// look-up.
class Spline {
public:
    Spline(const Knots& knots, Knots values) : x(knots), coef(4 * knots.size()) {
        CubicSplines(x.data(), values.data(), int(x.size()) - 1, coef.data());
    }
    float operator()(float v) {
        return CalcSpline(true, x.data(), coef.data(), int(x.size()) - 1, v, &outside);
    }
    bool outside = true; // of the last look-up

private:
    Knots x;
    std::vector<double> coef;
};

// The same curve by another road: the natural spline, its straight ends included, is the only
// p + q u + sum of w[i] |u - u[i]|^3 through the points with sum w[i] = sum w[i] u[i] = 0.
double radialSum(const Knots& x, const Knots& y, float v) {
    const auto u = [&](float at) { return (double(at) - double(x[0])) / double(x.back() - x[0]); };
    const std::size_t n = x.size(), order = n + 2;
    std::vector<double> system(order * order), right(y.begin(), y.end()), w(order);
    right.resize(order);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j)
            system[i * order + j] = std::pow(std::abs(u(x[i]) - u(x[j])), 3);
        system[i * order + n] = system[n * order + i] = 1;
        system[i * order + n + 1] = system[(n + 1) * order + i] = u(x[i]);
    }
    EXPECT_TRUE(MatrixInverse(system.data(), int(order)));
    MatrixMultiply(system.data(), right.data(), int(order), int(order), 1, w.data());
    double sum = w[n] + w[n + 1] * u(v);
    for (std::size_t i = 0; i < n; ++i)
        sum += w[i] * std::pow(std::abs(u(v) - u(x[i])), 3);
    return sum;
}

TEST(CubicSpline, NaturalSpline) {
    const struct {
        const char* name;
        Knots x, y;
    } cases[] = {
        {"two", {-1, 3}, {2, -6}},
        {"uneven", {-9, -8.5F, -2, 0, 0.25F, 7, 40}, {3, -1, 0.5F, 0.75F, 2, 2, -30}},
        {"even", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, {3, 1, 4, 1, 5, 9, 2, 6, 5, 3, 5}},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        const std::size_t n = row.x.size();
        Spline rising(row.x, row.y);
        Spline falling({row.x.rbegin(), row.x.rend()}, {row.y.rbegin(), row.y.rend()});
        for (float place = -0.3F; place < 1.3F; place += 0.0093F) {
            const float v = row.x[0] + place * (row.x[n - 1] - row.x[0]);
            const double expected = radialSum(row.x, row.y, v);
            const double halfUlp = 6e-8 * std::abs(expected) + 1e-11;
            EXPECT_NEAR(double(rising(v)), expected, halfUlp) << "at " << v;
            EXPECT_NEAR(double(falling(v)), expected, halfUlp) << "falling, at " << v;
        }
        for (std::size_t i = 0; i < n; ++i) {
            EXPECT_EQ(rising(row.x[i]), row.y[i]) << "knot " << i;
            EXPECT_EQ(falling(row.x[i]), row.y[i]) << "falling, knot " << i;
        }
    }
}

TEST(CubicSpline, OutsideBeginsAtTheNextFloat) {
    const float inside[] = {-3, std::nextafter(-3.0F, inf), std::nextafter(5.0F, -inf), 5};
    const float outside[] = {std::nextafter(-3.0F, -inf), std::nextafter(5.0F, inf), -inf, inf,
                             nan};
    for (const Knots& x : {Knots{-3, 1, 5}, Knots{5, 1, -3}, Knots{-3, 5}, Knots{5, -3}}) {
        SCOPED_TRACE(testing::Message() << x.size() << " knots from " << x[0]);
        Spline spline(x, Knots(x.size(), 7));
        for (float v : inside) {
            EXPECT_EQ(spline(v), 7) << v;
            EXPECT_FALSE(spline.outside) << v;
        }
        for (float v : outside) {
            spline.outside = false;
            EXPECT_EQ(std::isfinite(spline(v)), std::isfinite(v)) << v;
            EXPECT_TRUE(spline.outside) << v;
        }
    }
}

TEST(CubicSpline, OddKnots) {
    Spline none({}, {}), one({2}, {-4});
    EXPECT_TRUE(none(3) == 0 && none.outside);
    EXPECT_TRUE(one(2) == -4 && !one.outside);
    EXPECT_TRUE(one(3) == -4 && one.outside);

    const struct {
        const char* name;
        Knots x;
        bool finite;
    } cases[] = {
        {"two at one place", {1, 1}, false},
        {"repeated", {0, 1, 1, 2, 3}, false},
        {"repeated last, falling", {3, 2, 1, 1}, false},
        {"turning back", {0, 2, 1, 3, 0.5F, 4, 2.5F, 6}, true},
        {"turning back to the start", {0, 3, 1, 0}, true},
        {"not a number last", {0, 1, nan}, false},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        Knots y;
        for (std::size_t i = 0; i < row.x.size(); ++i)
            y.push_back(float(i * i));
        Spline spline(row.x, y);
        for (float v : {-inf, -1.0F, 0.0F, 0.5F, 1.0F, 1.5F, 2.25F, 3.0F, 7.0F, inf, nan})
            EXPECT_EQ(std::isfinite(spline(v)), row.finite && std::isfinite(v)) << "at " << v;
    }
}

} // namespace
