#include "host/report/Envelope.h"

#include <algorithm>
#include <array>
#include <limits>

#include <gtest/gtest.h>

namespace {

using kiv::host::Envelope;
using Mark = Envelope::Mark;

TEST(Envelope, BinsDoubleWhenFull) {
    const struct {
        std::size_t rows;
        std::size_t rowsPerBin;
        std::size_t bins;
    } cases[] = {{0, 1, 0}, {1, 1, 1}, {8, 1, 8}, {9, 2, 5}, {16, 2, 8}, {17, 4, 5}, {100, 16, 7}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rows);
        Envelope envelope(1, 8);
        for (std::size_t row = 0; row < c.rows; ++row)
            envelope.addRow(10.0 * static_cast<double>(row),
                            std::array{static_cast<double>(row * row)}, Mark::notGood);
        EXPECT_EQ(envelope.rowsPerBin(), c.rowsPerBin);
        ASSERT_EQ(envelope.bins().size(), c.bins);
        for (std::size_t bin = 0; bin < c.bins; ++bin) {
            const std::size_t first = bin * c.rowsPerBin;
            const std::size_t last = std::min(first + c.rowsPerBin, c.rows) - 1;
            double sum = 0;
            for (std::size_t row = first; row <= last; ++row)
                sum += static_cast<double>(row * row);
            const Envelope::Range& range = envelope.range(bin, 0);
            EXPECT_EQ(envelope.bins()[bin].firstX, 10.0 * static_cast<double>(first)) << bin;
            EXPECT_EQ(envelope.bins()[bin].lastX, 10.0 * static_cast<double>(last)) << bin;
            EXPECT_EQ(envelope.bins()[bin].notGood, last - first + 1) << bin;
            EXPECT_EQ(range.least, static_cast<double>(first * first)) << bin;
            EXPECT_EQ(range.largest, static_cast<double>(last * last)) << bin;
            EXPECT_EQ(range.mean(), sum / static_cast<double>(last - first + 1)) << bin;
        }
    }
}

TEST(Envelope, WhatIsNotFiniteCountsAsNone) {
    Envelope envelope(2, 2);
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double infinite = std::numeric_limits<double>::infinity();
    envelope.addRow(0, std::array{none, none}, Mark::noOrientation);
    envelope.addRow(1, std::array{5.0, none}, Mark::refused);
    envelope.addRow(2, std::array{infinite, none}, Mark::noOrientation);
    ASSERT_EQ(envelope.bins().size(), 2U);
    EXPECT_EQ(envelope.bins()[0].noOrientation, 1U);
    EXPECT_EQ(envelope.bins()[0].refused, 1U);
    EXPECT_EQ(envelope.range(0, 0).count, 1U);
    EXPECT_EQ(envelope.range(0, 0).least, 5);
    EXPECT_EQ(envelope.range(0, 0).largest, 5);
    EXPECT_EQ(envelope.range(0, 1).count, 0U);
    EXPECT_EQ(envelope.range(1, 0).count, 0U);
}

// Bins of four rows, that were two of two before. The seam is where the values have it.
TEST(Envelope, TellsBinsAcrossTheSeam) {
    const struct {
        std::array<double, 4> rows;
        std::array<double, 2> first, second; // least and largest of a side
    } cases[] = {{{178, 179, -178, -177}, {178, 179}, {-178, -177}},
                 {{-179, 179, 178, -178}, {-179, -178}, {178, 179}},
                 {{359, 2, 1, 358}, {358, 359}, {1, 2}},
                 {{186, -173, -172, 185}, {185, 186}, {-173, -172}},
                 {{-80, 80, 90, -85}, {-85, 90}, {0, 0}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rows[0]);
        Envelope envelope(2, 2);
        for (const double value : c.rows)
            envelope.addRow(0, std::array{0.0, value});
        envelope.addRow(0, std::array{0.0, 0.0});
        ASSERT_EQ(envelope.rowsPerBin(), 4U);
        EXPECT_EQ(envelope.side(0, 1, 0).least, c.first[0]);
        EXPECT_EQ(envelope.side(0, 1, 0).largest, c.first[1]);
        EXPECT_EQ(envelope.side(0, 1, 1).least, c.second[0]);
        EXPECT_EQ(envelope.side(0, 1, 1).largest, c.second[1]);
        EXPECT_EQ(envelope.acrossSeam(0, 1), c.second[0] != 0);
        EXPECT_FALSE(envelope.acrossSeam(0, 0));
    }
}

} // namespace
