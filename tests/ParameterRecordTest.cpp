#include <algorithm>
#include <new>
#include <vector>

#include <gtest/gtest.h>

#include "KIVInterface/CKivPrm.h"
#include "tests/Allocations.h"
#include "tests/ParameterRecord.h"
#include "tests/ParameterText.h"

namespace {

using kiv::Block;
using namespace kiv::test;

double doubles[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
const float floats[8] = {1, 2, 3, 4, 5, 6, 7, 8};

std::vector<int> setEverything(CKivPrm& r) {
    return {r.setEncoderOffset({1, 2}),   r.setKnownVector(doubles),
            r.setLocalMatrix(doubles, 3), r.setMachineMatrix(doubles, 3),
            r.setScaleFactors(floats, 8), r.setThermalFactor({1, 2, 3, 4}),
            r.setTiltOffset({1, 2}),      r.SetKIVLevelLimits({5, 6, 7, 8})};
}

TEST(ParameterRecord, AnswersNothingBeforeLoading) {
    CKivPrm record;
    for (const Getter& getter : getters) {
        Got got;
        EXPECT_EQ(getter.get(record, got), KIV_NOT_LOADED) << layoutOf(getter.block).title;
        EXPECT_TRUE(got == Got()) << layoutOf(getter.block).title;
    }
    EXPECT_EQ(setEverything(record), std::vector<int>(8, KIV_NOT_LOADED));
    unsigned n = 77;
    EXPECT_EQ(record.getAzimuthComp(n, nullptr), KIV_NOT_LOADED);
    EXPECT_EQ(record.setScaleFactors(floats, 9), KIV_NOT_LOADED);
    EXPECT_EQ(n, 77U);
}

TEST(ParameterRecord, GivesBackWhatWasSet) {
    LoadedRecord record;
    EXPECT_EQ(setEverything(record), std::vector<int>(8, KIV_OK));
    Got g;
    record.getEncoderOffset(g.v2);
    EXPECT_TRUE(g.v2.x == 1 && g.v2.y == 2);
    record.getTiltOffset(g.v2 = {});
    EXPECT_TRUE(g.v2.x == 1 && g.v2.y == 2);
    record.getThermalFactor(g.v4);
    EXPECT_TRUE(g.v4.x == 1 && g.v4.y == 2 && g.v4.z == 3 && g.v4.w == 4);
    record.GetKIVLevelLimits(g.v4);
    EXPECT_TRUE(g.v4.x == 5 && g.v4.y == 6 && g.v4.z == 7 && g.v4.w == 8);
    record.getMachineMatrix(g.d, 3);
    EXPECT_TRUE(std::equal(doubles, doubles + 9, g.d));
    record.getKnownVector(g.d + 9);
    EXPECT_TRUE(std::equal(doubles, doubles + 3, g.d + 9));
    record.SetVector({7, 8, 9});
    record.getKnownVector(g.d);
    EXPECT_TRUE(std::equal(doubles + 6, doubles + 9, g.d));
    EXPECT_EQ(record.setLocalMatrix(doubles + 5, 2), KIV_OK);
    record.getLocalMatrix(g.d, 3);
    EXPECT_TRUE(g.d[0] == 6 && g.d[3] == 9 && g.d[4] == 5 && g.d[8] == 9);
    record.getLocalMatrix(g.d + 9, 2);
    EXPECT_TRUE(g.d[12] == 9 && g.d[13] == 0);
    EXPECT_EQ(record.setScaleFactors(floats + 5, 3), KIV_OK);
    record.getScaleFactors(g.f, g.n);
    EXPECT_TRUE(g.f[2] == 8 && g.f[3] == 4 && g.f[7] == 8);
}

TEST(ParameterRecord, RefusesBadArguments) {
    const struct {
        const char* name;
        int (*call)(CKivPrm& r, Got& g);
        unsigned n; // afterwards; 77 when it is not written
    } rows[] = {
        {"azimuth", [](CKivPrm& r, Got& g) { return r.getAzimuthComp(g.n, nullptr); }, 3},
        {"X spline", [](CKivPrm& r, Got& g) { return r.getLevelXComp(g.n, g.f, nullptr); }, 4},
        {"Y spline", [](CKivPrm& r, Got& g) { return r.getLevelYComp(g.n, g.f, nullptr); }, 4},
        {"level 1", [](CKivPrm& r, Got& g) { return r.getLevel1Parameters(nullptr, g.n); }, 77},
        {"vector", [](CKivPrm& r, Got&) { return r.getKnownVector(nullptr); }, 77},
        {"matrix", [](CKivPrm& r, Got&) { return r.getLocalMatrix(nullptr, 3); }, 77},
        {"order 4", [](CKivPrm& r, Got& g) { return r.getMachineMatrix(g.d, 4); }, 77},
        {"order 0", [](CKivPrm& r, Got& g) { return r.getLocalMatrix(g.d, 0); }, 77},
        {"set order 4", [](CKivPrm& r, Got&) { return r.setMachineMatrix(doubles, 4); }, 77},
        {"set vector", [](CKivPrm& r, Got&) { return r.setKnownVector(nullptr); }, 77},
        {"no factors", [](CKivPrm& r, Got&) { return r.setScaleFactors(floats, 0); }, 77},
        {"9 factors", [](CKivPrm& r, Got&) { return r.setScaleFactors(floats, 9); }, 77},
        {"null factors", [](CKivPrm& r, Got&) { return r.setScaleFactors(nullptr, 8); }, 77},
    };
    LoadedRecord record, untouched;
    for (const auto& row : rows) {
        Got got, expected;
        expected.n = row.n;
        EXPECT_EQ(row.call(record, got), KIV_BAD_ARGUMENT) << row.name;
        EXPECT_TRUE(got == expected) << row.name;
    }
    EXPECT_TRUE(sameValues(record, untouched));
}

TEST(ParameterRecord, ConvertsEncoderLimitsToDegrees) {
    LoadedRecord record({.values = {{Block::halfAngle, "180 60"}}});
    for (const float offset : {0.0F, 90.0F, -30.0F}) { // the azimuth's, and minus the elevation's
        const auto radians = static_cast<float>(offset * kiv::degToRad);
        record.setEncoderOffset({radians, -radians});
        F_VECTOR4 v{};
        record.getEncoderLimit(v);
        EXPECT_FLOAT_EQ(v.x, offset - 180);
        EXPECT_FLOAT_EQ(v.y, offset + 180);
        EXPECT_FLOAT_EQ(v.z, -offset - 60);
        EXPECT_FLOAT_EQ(v.w, -offset + 60);
    }
}

TEST(ParameterRecord, RescalesOneThermalGain) {
    float temperatures[] = {10, 20, 30};
    for (const int channel : {0, 1, -1}) {
        LoadedRecord record;
        record.setThermalFactor({0.001F, 1, 0.002F, 1});
        record.TgUpdateThermal(1.1F, temperatures, channel);
        F_VECTOR4 v{};
        record.getThermalFactor(v);
        EXPECT_TRUE(v.x == 0.001F && v.z == 0.002F);
        EXPECT_FLOAT_EQ(v.y, channel == 0 ? 1.102F : 1.0F) << channel;
        EXPECT_FLOAT_EQ(v.w, channel == 0 ? 1.0F : 1.104F) << channel;
    }
}

TEST(ParameterRecord, IsCopiedDeeply) {
    LoadedRecord source;
    LoadedRecord copy({.shift = 0.5F}), old({.shift = 0.5F});
    CKivPrm& itself = copy;
    for (const std::size_t n : {1U, 3U, 6U}) { // of six tables
        failAllocation(n);
        EXPECT_THROW(itself = source, std::bad_alloc);
        EXPECT_TRUE(sameValues(copy, old)) << n;
    }
    copy = source;
    itself = copy;
    source.Destroy();
    source.Destroy();
    LoadedRecord expected;
    EXPECT_TRUE(sameValues(copy, expected));
    itself = CKivPrm();
    EXPECT_EQ(copy.setTiltOffset({0, 0}), KIV_NOT_LOADED);
}

TEST(ParameterRecord, HasNoTablesAfterDestroy) {
    LoadedRecord record, copy, expected;
    record.Destroy();
    copy = record;
    for (CKivPrm* each : {&record, &copy}) {
        Got got, empty;
        empty.n = 0;
        EXPECT_EQ(each->getAzimuthComp(got.n, got.f), KIV_OK);
        EXPECT_TRUE(got == empty);
        EXPECT_EQ(each->getLevelYComp(got.n, got.f, got.d), KIV_OK);
        EXPECT_TRUE(got == empty);
        EXPECT_EQ(ParameterFolder().load(*each, parameterText()), KIV_OK);
        EXPECT_TRUE(sameValues(*each, expected));
    }
}

} // namespace
