#include <cmath>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "support/ZelUtil.h"

namespace {

using Values = std::vector<double>;

bool sameBits(const Values& a, const Values& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), 8 * a.size()) == 0;
}

TEST(Matrix, Products) {
    const Values wide{1, 2, 3, 4, 5, 6}, high{1, 0, 0, 1, 2, -1};
    Values product(4, NAN);
    MatrixMultiply(wide.data(), high.data(), 2, 3, 2, product.data());
    EXPECT_EQ(product, (Values{7, -1, 16, -1}));

    // The straight 3x3 product and the general loop agree in every bit.
    const Values a{1e16, 1, -1e16, 0, -0.0, 0, 1e-3, 3e5, -0.9};
    const Values b{1, -0.4, 0.6, 1, 0.5, -0.1, 1, -0.8, 0.7};
    Values c(9, NAN), image(3, NAN);
    MatrixMultiply(a.data(), b.data(), 3, 3, 3, c.data());
    EXPECT_EQ(c[0], 0) << "(1e16 + 1) - 1e16: the order of the sum";
    for (std::size_t j = 0; j < 3; ++j) {
        const Values column{b[j], b[3 + j], b[6 + j]};
        MatrixMultiply(a.data(), column.data(), 3, 3, 1, image.data());
        EXPECT_TRUE(sameBits(image, {c[j], c[3 + j], c[6 + j]})) << "column " << j;
    }
}

TEST(Matrix, TransposeIdentityCross) {
    Values square{1, 2, 3, 4, 5, 6, 7, 8, 9}, wide{1, 2, 3, 4, 5, 6, 7, 8};
    MatrixTransform(square.data(), 3, 3);
    EXPECT_EQ(square, (Values{1, 4, 7, 2, 5, 8, 3, 6, 9}));
    MatrixTransform(wide.data(), 2, 4);
    EXPECT_EQ(wide, (Values{1, 5, 2, 6, 3, 7, 4, 8}));
    EyeMatrix(square.data(), 3);
    EXPECT_EQ(square, (Values{1, 0, 0, 0, 1, 0, 0, 0, 1}));
    Values a{1, 2, 3}, b{-2, 5, 7}, c(3);
    CrossMultiply(a.data(), b.data(), c.data());
    EXPECT_EQ(c, (Values{-1, -13, 9}));
}

TEST(Matrix, Inverses) {
    const double big = std::ldexp(1.0, 40);
    const struct {
        const char* name;
        int n;
        Values a, inverse; // none: refused, and a left as it was
    } cases[] = {
        {"order 1", 1, {-4}, {-0.25}},
        {"zero pivot", 2, {0, 2, 4, 0}, {0, 0.25, 0.5, 0}},
        {"far rows", 2, {1e300, 1e300, 1e-300, -1e-300}, {5e-301, 5e299, 5e-301, -5e299}},
        {"order 3", 3, {1, 2, 3, 0, 1, 4, 5, 6, 0}, {-24, 18, 5, 20, -15, -4, -5, 4, 1}},
        {"badly scaled", 3, {1e6, 0, 0, 0, 1, 0, 0, 0, 1e-6}, {1e-6, 0, 0, 0, 1, 0, 0, 0, 1e6}},
        {"near", 3, {1, 0, 0, 0, 1, 0, 1, 1, 1 / big}, {1, 0, 0, 0, 1, 0, -big, -big, big}},
        {"order 4",
         4,
         {0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 2, 1, 2, 0, 0},
         {0, -2, 0, 1, 0, 1, 0, 0, -2, 0, 1, 0, 1, 0, 0, 0}},
        {"order 0", 0, {1}, {}},
        {"inverse beyond range", 1, {1e-310}, {}},
        {"singular, order 2", 2, {1, 2, 2, 4}, {}},
        {"singular", 3, {0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9}, {}},
        {"singular to rounding", 3, {1, 1, 1, 1, 1, 1 + 1e-15, 0, 0, 1}, {}},
        {"singular and small", 3, {1e-200, 2e-200, 0, 2e-200, 4e-200, 0, 0, 0, 1e-200}, {}},
        {"not a number", 3, {1, 0, 0, 0, NAN, 0, 0, 0, 1}, {}},
        {"infinite", 3, {INFINITY, 0, 0, 0, 1, 0, 0, 0, 1}, {}},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        Values a = row.a;
        EXPECT_EQ(MatrixInverse(a.data(), row.n), !row.inverse.empty());
        EXPECT_TRUE(!row.inverse.empty() || sameBits(a, row.a));
        for (std::size_t i = 0; i < row.inverse.size(); ++i)
            EXPECT_NEAR(a[i], row.inverse[i], 1e-14 * std::abs(row.inverse[i])) << "element " << i;
    }
}

TEST(Matrix, InverseOfScaledRotations) {
    Values x(9), z(9), rotation(9);
    EXPECT_EQ(rotation_x(x.data(), 0.7), 0);
    EXPECT_EQ(rotation_z(z.data(), -2.1), 0);
    MatrixMultiply(x.data(), z.data(), 3, 3, 3, rotation.data());
    for (double scale : {1.0, 1e-33, 1e-60, 1e-110, 1e-200, 1e-300, 1e33, 1e60, 1e200, 1e300}) {
        Values a = rotation;
        for (double& element : a)
            element *= scale;
        EXPECT_TRUE(MatrixInverse(a.data(), 3)) << scale;
        for (std::size_t i = 0; i < 9; ++i)
            EXPECT_NEAR(a[i] * scale, rotation[i % 3 * 3 + i / 3], 5e-16)
                << scale << ", element " << i;
    }
}

} // namespace
