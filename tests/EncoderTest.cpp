#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "KIVInterface/Encoder.h"

namespace {

using Table = std::vector<float>;

int setTable(CEncoder& encoder, const Table& table) {
    return encoder.setCalTable(table.data(), static_cast<int>(table.size() / 2));
}

TEST(Encoder, CorrectsThroughTheTable) {
    const Table unsorted{350, 2, 10, -2, 170, 6}, bothEnds{0, 1, 180, 2, 360, 3};
    const Table twice{20, 1, 20, 2, 200, 0, 20, 4}, negative{-90, 1, -450, 5, 90, 3};
    const float belowZero = std::nextafter(0.0F, -1.0F), aboveOne = std::nextafter(1.0F, 2.0F);
    const struct {
        const char* name;
        Table table;
        float raw, expected;
    } cases[] = {
        {"between rows", unsorted, 90, 92},
        {"before the first row", unsorted, 5, 4},
        {"after the last row", unsorted, 359.5F, 359.6F},
        {"a full turn", unsorted, 360, 360},
        {"turns on, not wrapped", unsorted, 730, 728},
        {"0 and 360 given, the last counts", bothEnds, 0, 3},
        {"0 and 360 given, before 360", bothEnds, 270, 272.5F},
        {"negative angles", negative, 0, 4},
        {"duplicate rows, the last counts", twice, 20, 24},
        {"beside duplicate rows", twice, 110, 112},
        {"one row at the seam", {720, 0.5F}, -0.25F, 0.25F},
        {"angles that round to a turn", {belowZero, 8, 90, 4}, belowZero, 8},
        {"one float apart", {1, 0, aboveOne, 2}, aboveOne, 3},
        {"far", unsorted, 1e30F, 1e30F},
        {"infinite", unsorted, -INFINITY, -INFINITY},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        CEncoder encoder;
        EXPECT_EQ(setTable(encoder, row.table), 0);
        encoder.setRawReading(row.raw);
        EXPECT_FLOAT_EQ(encoder.encCalibration(row.raw), row.expected);
        EXPECT_TRUE(std::isnan(encoder.encCalibration(NAN)));
    }
}

TEST(Encoder, WithoutATable) {
    const Table refused[] = {{}, {0, 1, 90, NAN}, {INFINITY, 1}};
    CEncoder encoder;
    EXPECT_EQ(encoder.encCalibration(-400), -400);
    for (const Table& table : refused) {
        EXPECT_EQ(setTable(encoder, {0, 1}), 0);
        EXPECT_EQ(setTable(encoder, table), 20) << testing::PrintToString(table);
        EXPECT_EQ(encoder.encCalibration(12.5F), 12.5F) << testing::PrintToString(table);
    }
    EXPECT_EQ(encoder.setCalTable(nullptr, 3), 20);
    EXPECT_EQ(encoder.setCalTable(refused[1].data(), -1), 20);
}

TEST(Encoder, KeepsItsOwnTable) {
    Table table{0, 1, 180, 3};
    CEncoder encoder;
    setTable(encoder, table);
    const CEncoder copy = encoder;
    table.assign(4, 100);
    EXPECT_EQ(encoder.encCalibration(90), 92);
    setTable(encoder, table);
    EXPECT_EQ(encoder.encCalibration(90), 190);
    EXPECT_EQ(copy.encCalibration(90), 92);
}

} // namespace
