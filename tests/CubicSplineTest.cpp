#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "support/ZelUtil.h"

namespace {

using Knots = std::vector<float>;

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

// Between the knots and beyond, kiv verify's cases have another computation.
TEST(CubicSpline, GoesThroughItsKnots) {
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
        for (std::size_t i = 0; i < n; ++i) {
            EXPECT_EQ(rising(row.x[i]), row.y[i]) << "knot " << i;
            EXPECT_EQ(falling(row.x[i]), row.y[i]) << "falling, knot " << i;
        }
    }
}

TEST(CubicSpline, OutsideBeginsAtTheNextFloat) {
    const float inside[] = {-3, std::nextafter(-3.0F, INFINITY), std::nextafter(5.0F, -INFINITY),
                            5};
    const float outside[] = {std::nextafter(-3.0F, -INFINITY), std::nextafter(5.0F, INFINITY),
                             -INFINITY, INFINITY, NAN};
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
        {"not a number last", {0, 1, NAN}, false},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        Knots y;
        for (std::size_t i = 0; i < row.x.size(); ++i)
            y.push_back(float(i * i));
        Spline spline(row.x, y);
        for (float v : {-INFINITY, -1.0F, 0.0F, 0.5F, 1.0F, 1.5F, 2.25F, 3.0F, 7.0F, INFINITY, NAN})
            EXPECT_EQ(std::isfinite(spline(v)), row.finite && std::isfinite(v)) << "at " << v;
    }
}

} // namespace
