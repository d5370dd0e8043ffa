#include <algorithm>
#include <cstring>
#include <filesystem>
#include <new>

#include <gtest/gtest.h>

#include "KIVInterface/CKivPrm.h"
#include "support/ZelUtil.h"
#include "tests/Allocations.h"
#include "tests/FileFaults.h"

#ifndef _WIN32
#include <sys/stat.h>
#endif

namespace {

using kiv::Block;
using namespace kiv::test;
namespace fs = std::filesystem;

TEST(Loading, ConvertsTheValues) {
    LoadedRecord record(
        {.values = {{Block::angleOffset, "90 0"}, {Block::machineMatrix, "0 -2 0 4 0 0 0 0 8"}}});
    Got got;
    record.getEncoderOffset(got.v2);
    EXPECT_EQ(got.v2.x, static_cast<float>(1.5707963267946));
    record.getMachineMatrix(got.d, 3);
    const double inverse[9] = {0, 0.25, 0, -0.5, 0, 0, 0, 0, 0.125};
    EXPECT_TRUE(std::equal(inverse, inverse + 9, got.d));
    for (const Getter& getter : getters) {
        const bool x = getter.block == Block::tiltXCalibration;
        if (!x && getter.block != Block::tiltYCalibration)
            continue;
        getter.get(record, got);
        ASSERT_EQ(got.n, 4U);
        EXPECT_TRUE(got.f[4] == -30 && got.f[5] == 30 && got.f[6] == 0.5F) << x;
        for (std::size_t i = 0; i < 4; ++i) {
            bool outside = true;
            EXPECT_EQ(got.f[i], parameterNumber(getter.block, 2 * i));
            EXPECT_FLOAT_EQ(CalcSpline(true, got.f, got.d, 3, got.f[i], &outside),
                            parameterNumber(getter.block, 2 * i + 1));
        }
    }
}

TEST(Loading, StoresWhatComesBeforeAFailure) {
    TextChanges changes{.values = {{Block::mountingMode, "9"}}, .shift = 0.5F};
    for (const kiv::BlockLayout& layout : kiv::blockTable) {
        LoadedRecord old, record, complete(changes);
        TextChanges failing = changes;
        failing.titles[layout.block] = "no such title";
        EXPECT_EQ(ParameterFolder().load(record, parameterText(failing)), KIV_BAD_FORMAT);
        for (const Getter& getter : getters) {
            if (getter.block == Block::halfAngle) // the limits depend on the offset, too
                for (CKivPrm* each : {&old, &complete, &record})
                    each->setEncoderOffset({0, 0});
            CKivPrm& source = getter.block < layout.block ? complete : old;
            EXPECT_TRUE(gotFrom(record, getter) == gotFrom(source, getter))
                << kiv::layoutOf(getter.block).title << ", failing at " << layout.title;
            EXPECT_FALSE(gotFrom(complete, getter) == gotFrom(old, getter));
        }
    }
    // Another sensor's file fails behind its first title.
    LoadedRecord old, record;
    changes.values[Block::serialNumber] = "6";
    EXPECT_EQ(ParameterFolder().load(record, parameterText(changes)), KIV_BAD_FORMAT);
    EXPECT_TRUE(sameValues(record, old));
}

TEST(Loading, TakesDefaultsWhenTheFileEndsAfterTiltX) {
    const auto usual = [](Block block) { return parameterValues(kiv::layoutOf(block), 0); };
    LoadedRecord record;
    LoadedRecord expected({.values = {{Block::tiltYCalibration, usual(Block::tiltYCalibration)},
                                      {Block::scaleFactor, "0 0 0 0 1 1 1 0"},
                                      {Block::mountingMode, "0"},
                                      {Block::qvc, "0 0 0 0 0 0"},
                                      {Block::levelX, "0 0 0 0 0 0 0"},
                                      {Block::levelY, "0 0 0 0 0 0 0"},
                                      {Block::halfAngle, usual(Block::halfAngle)}},
                           .shift = 0.5F});
    expected.SetKIVLevelLimits({-30, 30, -30, 30});
    const std::string text = parameterText({.blocks = 17, .shift = 0.5F});
    EXPECT_EQ(ParameterFolder().load(record, text), KIV_BAD_FORMAT);
    EXPECT_TRUE(sameValues(record, expected));
    CKivPrm fresh;
    EXPECT_EQ(ParameterFolder().load(fresh, text), KIV_BAD_FORMAT);
    EXPECT_EQ(fresh.setTiltOffset({0, 0}), KIV_NOT_LOADED);
}

TEST(Loading, SetsTheLevelLimits) {
    for (const int mode : {6, 7, 8, 9}) {
        LoadedRecord record({.values = {{Block::mountingMode, std::to_string(mode)},
                                        {Block::tiltXCalibration, "1 0 0 -2 2 0 x"}}});
        F_VECTOR4 v{};
        record.GetKIVLevelLimits(v);
        const float x = mode == 7 || mode == 8 ? 0.0F : 2.0F;
        EXPECT_TRUE(v.x == -x && v.y == x && v.z == -30 && v.w == 30) << mode;
    }
}

TEST(Loading, ReplacesTables) {
    const ParameterFolder folder;
    CKivPrm record;
    for (const std::size_t rows : {10U, 20U, 0U, 5U}) {
        std::string text = rows ? std::to_string(rows) : "7"; // 7: of which none is there
        for (std::size_t i = 0; i < 2 * rows; ++i)
            text += ' ' + std::to_string(100 + i);
        EXPECT_EQ(folder.load(record, parameterText({.values = {{Block::elCalibration, text}}})),
                  KIV_OK);
        float table[40] = {}, first = 0, last = 0;
        unsigned n = 0;
        record.getElevationComp(n, table);
        record.getElevationCompRollover(first, last);
        EXPECT_EQ(n, rows);
        if (rows > 0) {
            EXPECT_EQ(table[2 * rows - 1], static_cast<float>(99 + 2 * rows));
        }
        EXPECT_EQ(first, rows ? 100 : 0);
        EXPECT_EQ(last, rows ? static_cast<float>(98 + 2 * rows) : 0);
    }
}

TEST(Loading, ComparesTheIdAs32Bits) {
    const ParameterFolder folder;
    LoadedRecord record, before;
    folder.load(record, parameterText());
    fs::copy_file(folder.file(), fs::path(folder.path()) / "Tg6.prm");
    EXPECT_EQ(record.ReadCalibrationFile(folder.path().c_str(), 6), KIV_BAD_FORMAT);
    EXPECT_TRUE(sameValues(record, before));
    std::ofstream(fs::path(folder.path()) / "Tg-2.prm")
        << parameterText({.values = {{Block::serialNumber, "-2"}}});
    EXPECT_EQ(record.ReadCalibrationFile(folder.path().c_str(), 0xFFFFFFFEUL), KIV_OK);
}

TEST(Loading, RefusesWhatIsNoFile) {
    const ParameterFolder folder;
    const auto path = [&](const char* name) { return fs::path(folder.path()) / name; };
    LoadedRecord record, before;
    folder.load(record, parameterText());
    const std::string there = folder.path();
    EXPECT_EQ(record.ReadCalibrationFile(nullptr, 5), KIV_CANNOT_OPEN);
    EXPECT_EQ(record.ReadCalibrationFile(there.c_str(), 1), KIV_CANNOT_OPEN); // missing
    fs::create_directory(path("Tg2.prm"));
    EXPECT_EQ(record.ReadCalibrationFile(there.c_str(), 2), KIV_CANNOT_OPEN);
    EXPECT_TRUE(sameValues(record, before));
    const auto padded = [&](std::size_t length) { // of the whole path
        return there + std::string(length - there.size() - std::strlen("\\Tg5.prm"), '/');
    };
    EXPECT_EQ(record.ReadCalibrationFile(padded(259).c_str(), 5), KIV_OK);
    EXPECT_EQ(record.ReadCalibrationFile(padded(260).c_str(), 5), KIV_CANNOT_OPEN);
    EXPECT_EQ(record.ReadCalibrationFile(padded(100000).c_str(), 5), KIV_CANNOT_OPEN);
}

TEST(Loading, RefusesAPipe) {
#ifdef _WIN32
    GTEST_SKIP() << "no pipe has a name in a folder here";
#else
    const ParameterFolder folder;
    CKivPrm record;
    ASSERT_EQ(mkfifo(folder.file().c_str(), 0600), 0);
    EXPECT_EQ(record.ReadCalibrationFile(folder.path().c_str(), 5), KIV_CANNOT_OPEN);
#endif
}

TEST(Loading, TakesTheCurrentDirectoryForAnEmptyOne) {
    const ParameterFolder folder;
    LoadedRecord expected;
    CKivPrm record;
    folder.load(expected, parameterText());
    const fs::path home = fs::current_path();
    fs::current_path(folder.path());
    EXPECT_EQ(record.ReadCalibrationFile("", 5), KIV_OK);
    fs::current_path(home);
    EXPECT_TRUE(sameValues(record, expected));
}

TEST(Loading, RefusesACurrentDirectoryTooDeep) {
#ifdef _WIN32
    GTEST_SKIP() << "a path this long cannot be the current directory here";
#else
    const ParameterFolder folder;
    CKivPrm record;
    const fs::path home = fs::current_path();
    const fs::path deep = fs::path(folder.path()) / std::string(150, 'x') / std::string(150, 'x');
    fs::create_directories(deep);
    std::ofstream(deep / "Tg5.prm") << parameterText();
    fs::current_path(deep);
    EXPECT_EQ(record.ReadCalibrationFile("", 5), KIV_CANNOT_OPEN);
    fs::current_path(home);
#endif
}

TEST(Loading, SurvivesEveryFailingFileOperation) {
    using kiv::platform::FileOperation;
    const ParameterFolder folder;
    CKivPrm record;
    LoadedRecord old;
    const std::string text = parameterText({.shift = 0.5F});
    const auto descriptors = openDescriptors();
    int k = 0;
    do {
        record = old;
        const FailingOperation failing(++k);
        const int status = folder.load(record, text);
        const bool harmless =
            FailingOperation::operation().value_or(FileOperation::close) == FileOperation::close;
        EXPECT_EQ(status, harmless ? KIV_OK : KIV_CANNOT_OPEN) << k;
        EXPECT_EQ(sameValues(record, old), !harmless) << k;
        EXPECT_EQ(openDescriptors(), descriptors) << k;
    } while (FailingOperation::operation());
    EXPECT_GE(k, 4); // at least an open, a read and a close failed
}

TEST(Loading, SurvivesEveryFailingAllocation) {
    const ParameterFolder folder;
    CKivPrm record;
    LoadedRecord old;
    std::ofstream(folder.file()) << parameterText({.shift = 0.5F});
    const std::string path = folder.path();
    const auto descriptors = openDescriptors();
    int status = KIV_CANNOT_OPEN;
    for (std::size_t n = 1; status != KIV_OK && n < 1000; ++n) {
        record = old;
        failAllocation(n);
        try {
            status = record.ReadCalibrationFile(path.c_str(), 5);
        } catch (const std::bad_alloc&) {
            EXPECT_TRUE(sameValues(record, old)) << n;
        }
        failAllocation(0);
        EXPECT_EQ(openDescriptors(), descriptors) << n;
    }
    EXPECT_EQ(status, KIV_OK);
}

} // namespace
