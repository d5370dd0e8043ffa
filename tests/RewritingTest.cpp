#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <new>
#include <random>

#ifdef _WIN32
#include <windows.h>
#endif

#include <gtest/gtest.h>

#include "params/Parser.h"
#include "support/platform/ByteSource.h"
#include "tests/Allocations.h"
#include "tests/FileFaults.h"

namespace {

using kiv::Block;
using namespace kiv::test;
namespace fs = std::filesystem;

// What a rewrite makes of the usual text, or of its first blocks.
std::string rewritten(std::size_t blocks = kiv::blockTable.size()) {
    static const std::string whole = contentOf(KIV_GOLDEN "/rewritten.txt").value_or("");
    if (blocks == kiv::blockTable.size())
        return whole;
    const auto end = whole.find(std::string(kiv::blockTable[blocks].title) + '\n');
    EXPECT_NE(end, whole.npos) << blocks;
    return whole.substr(0, end);
}

// With other values of some blocks.
std::string rewritten(const std::map<Block, std::string>& changed) {
    std::string text;
    for (std::size_t i = 0; i < kiv::blockTable.size(); ++i) {
        const auto found = changed.find(kiv::blockTable[i].block);
        text += found == changed.end()
                    ? rewritten(i + 1).substr(rewritten(i).size())
                    : std::string(kiv::blockTable[i].title) + '\n' + found->second;
    }
    return text;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (auto at = text.find(from); at != text.npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

// A table, and what becomes of it by the C library.
std::pair<std::string, std::string> randomTable(int rows) {
    std::mt19937 random(5);
    std::string text = std::to_string(rows), printed = text + '\n';
    for (int i = 0; i < 2 * rows; ++i) {
        const double mantissa = std::uniform_real_distribution(-10.0, 10.0)(random);
        char number[64];
        std::snprintf(number, sizeof number, "%.*g", 1 + i % 12,
                      std::ldexp(mantissa, std::uniform_int_distribution(-40, 60)(random)));
        text.append(i % 2 ? "\n" : " ").append(number);
        std::snprintf(number, sizeof number, "%f", double{std::strtof(number, nullptr)});
        printed.append(number).append(i % 2 ? "\n" : "\t");
    }
    return {text, printed};
}

TEST(Rewriting, PrintsEveryBlockAndDoesSoTwice) {
    using enum Block;
    const std::string usual = parameterText();
    const auto [table, printedTable] = randomTable(3000);
    const struct {
        const char* name;
        std::string text;
        std::map<Block, std::string> changed = {};
    } rows[] = {
        {"usual", usual},
        {"line ends of Windows", replaced(usual, "\n", "\r\n")},
        {"one line", replaced(usual, "\n", " ")},
        {"a word a line", replaced(replaced(usual, "\t", "\n"), " ", "\n")},
        {"number forms",
         parameterText({.values = {{azPositionGain, "+.5 -5. 1.5E-3 -0 0.1234567 1e-46"},
                                   {digitalDamping, "3.4028235e38 -3.4028235E+38 8388608.5 0"},
                                   {angleOffset, "-1e-7 0.0000005"},
                                   {serialNumber, "+0017"}}}),
         {{azPositionGain, "0.500000\t-5.000000\t0.001500\t-0.000000\t0.123457\t0.000000\n"},
          {digitalDamping, "340282346638528859811704183484516925440.000000\t"
                           "-340282346638528859811704183484516925440.000000\t"
                           "8388608.000000\t0.000000\n"},
          {angleOffset, "-0.000000\t0.000000\n"},
          {serialNumber, "17\n"}}},
        {"a tie",
         parameterText({.values = {{tiltOffset, "0.0000005 0.00000762939453125"}}}),
         {{tiltOffset, "0.000000\t0.000008\n"}}},
        {"counts below 1",
         parameterText({.values = {{azCalibration, "0"},
                                   {elCalibration, "-2147483648"},
                                   {tiltXCalibration, "-1 1 2 3 end"},
                                   {tiltYCalibration, "0\n-1 1 2 end"}}}),
         {{azCalibration, "0\n"},
          {elCalibration, "-2147483648\n"},
          {tiltXCalibration, "-1\n1.000000\t2.000000\t3.000000\nend\n"},
          {tiltYCalibration, "0\n-1.000000\t1.000000\t2.000000\nend\n"}}},
        {"titles with more", parameterText({.titles = {{tiltOffset, "Tilt Sensor Offset:"},
                                                       {scaleFactor, "[Scale Factors]"}}})},
        {"words",
         parameterText({.values = {{deviceOwner, "\xC4\x80\xFF%d"}}}),
         {{deviceOwner, "\xC4\x80\xFF%d\n"}}},
        {"random numbers",
         parameterText({.values = {{elCalibration, table}}}),
         {{elCalibration, printedTable}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Rewrite rewrite(row.text);
        EXPECT_EQ(rewrite.run(), KIV_OK);
        EXPECT_EQ(rewrite.file(), rewritten(row.changed));
        EXPECT_EQ(rewrite.temporary(), std::nullopt);
        const auto first = rewrite.file();
        EXPECT_EQ(rewrite.run(), KIV_OK);
        EXPECT_EQ(rewrite.file(), first);
    }
}

// Where there is a fault, the parameter file stays and the temporary one holds what came before.
void expectBroken(const std::string& text, unsigned messageId, const std::string& copied) {
    kiv::TextSource source(text);
    EXPECT_EQ(kiv::parseForRewrite(source).outcome.messageId, messageId);
    Rewrite rewrite(text);
    EXPECT_EQ(rewrite.run(), KIV_BAD_FORMAT);
    EXPECT_EQ(rewrite.file(), text);
    EXPECT_EQ(rewrite.temporary(), copied);
}

TEST(Rewriting, StopsAtATitleThatDoesNotMatch) {
    for (std::size_t i = 0; i < kiv::blockTable.size(); ++i) {
        const kiv::BlockLayout& layout = kiv::blockTable[i];
        SCOPED_TRACE(layout.title);
        expectBroken(parameterText({.titles = {{layout.block, "some other title"}}}),
                     layout.messageId, rewritten(i));
    }
}

TEST(Rewriting, GoesOnWithDefaultsWhereTheFileEnds) {
    const std::string defaults[] = {
        "Scale Factor\n0.000000\t0.000000\t0.000000\t0.000000\t"
        "1.000000\t1.000000\t1.000000\t0.000000\t\n",
        "Mounting Mode\n0\n",
        "QVC\n0.000000\t0.000000\t0.000000\t0.000000\t0.000000\t0.000000\t\n",
        "Level_X\n0.000000\t0.000000\t0.000000\t0.000000\t0.000000\t0.000000\t0.000000\t\n",
        "Level_Y\n0.000000\t0.000000\t0.000000\t0.000000\t0.000000\t0.000000\t0.000000\t\n",
    };
    for (std::size_t i = 0; i < kiv::blockTable.size(); ++i) {
        SCOPED_TRACE(i);
        std::string copied = rewritten(i);
        for (std::size_t block = std::max<std::size_t>(i, 18); i >= 17 && block < 23; ++block)
            copied += defaults[block - 18];
        const unsigned id = i < 17 ? kiv::blockTable[i].messageId : 609;
        expectBroken(parameterText({.blocks = i}) + " \n", id, copied);
    }
}

TEST(Rewriting, NeverInventsOrDropsAValue) {
    using enum Block;
    const std::string x300(300, 'x');
    const struct {
        const char* name;
        Block block;
        std::string values;
        std::string copied; // behind the title
        unsigned messageId;
    } rows[] = {
        {"serial number", serialNumber, "five", "", 601},
        {"long owner", deviceOwner, x300, "", 603},
        {"one value too few", azPositionGain, "1 2 3 4 5", "", 604},
        {"last of a matrix", localMatrix, "1 2 3 4 5 6 7 8 x",
         "1.000000\t2.000000\t3.000000\n4.000000\t5.000000\t6.000000\n", 611},
        {"beyond single precision", admOffset, "3.5e38", "", 615},
        {"one value too many", angleOffset, "1 2 3", "1.000000\t2.000000\n", 610},
        {"count", azCalibration, "2147483648", "", 616},
        {"rows", elCalibration, "3 1 2 3 4 5", "3\n1.000000\t2.000000\n3.000000\t4.000000\n", 617},
        {"last row", tiltXCalibration, "1 1 2 3 4 w", "1\n1.000000\t2.000000\n", 618},
        {"closing word", tiltYCalibration, "0 3 4 5 " + x300, "0\n3.000000\t4.000000\t5.000000\n",
         619},
        {"scale factor", scaleFactor, "1 2 3 x", "1.000000\n2.000000\n3.000000\n", 621},
        {"mounting mode", mountingMode, ".5", "", 619},
        {"QVC", qvc, "1 2 x", "1.000000\t2.000000\t", 622},
        {"end of file", halfAngle, "1", "", 609},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto before = static_cast<std::size_t>(row.block);
        const std::string title(kiv::layoutOf(row.block).title);
        expectBroken(parameterText({.values = {{row.block, row.values}}}), row.messageId,
                     rewritten(before) + title + '\n' + row.copied);
    }
    SCOPED_TRACE("no closing word");
    const std::string title = "Tilt X Calibration Table\n";
    expectBroken(parameterText({.blocks = 16}) + title + "0 1 2 3 \n", 618,
                 rewritten(16) + title + "0\n1.000000\t2.000000\t3.000000\n");
}

TEST(Rewriting, LeavesTheRecordAsItIs) {
    Rewrite rewrite(parameterText());
    LoadedRecord before;
    EXPECT_EQ(rewrite.run(), KIV_OK);
    EXPECT_TRUE(sameValues(rewrite.record, before));
    rewrite.record.setTiltOffset({123, 456});
    EXPECT_EQ(rewrite.run(), KIV_OK);
    EXPECT_EQ(rewrite.file(), rewritten());
    F_VECTOR2 offset{};
    rewrite.record.getTiltOffset(offset);
    EXPECT_EQ(offset.x, 123);
}

TEST(Rewriting, DoesNothingWithoutAFile) {
    Rewrite rewrite(parameterText());
    fs::remove(rewrite.path());
    EXPECT_EQ(rewrite.run(), KIV_OK);
    EXPECT_EQ(CKivPrm().PrmFileCopy(), KIV_OK); // no path yet
    EXPECT_TRUE(fs::is_empty(rewrite.current.path()));
    EXPECT_TRUE(fs::is_empty(rewrite.folder.path()));
}

TEST(Rewriting, ClearsTheReadOnlyAttribute) {
#ifdef _WIN32 // which has but one such attribute
    constexpr auto writable =
        fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
#else
    constexpr auto writable = fs::perms::owner_write;
#endif
    for (const bool complete : {true, false}) {
        SCOPED_TRACE(complete);
        Rewrite rewrite(parameterText({.blocks = complete ? 24U : 3U}));
        fs::permissions(rewrite.path(), writable, fs::perm_options::remove);
        fs::last_write_time(rewrite.path(),
                            fs::file_time_type::clock::now() - std::chrono::years(2));
        const auto time = fs::last_write_time(rewrite.path());
        const auto permissions = fs::status(rewrite.path()).permissions();
        EXPECT_EQ(rewrite.run(), complete ? KIV_OK : KIV_BAD_FORMAT);
        EXPECT_EQ(rewrite.file(), complete ? rewritten() : parameterText({.blocks = 3}));
        EXPECT_EQ(fs::status(rewrite.path()).permissions() & writable, writable);
        if (!complete) {
            EXPECT_EQ(fs::status(rewrite.path()).permissions(), permissions | writable);
            EXPECT_EQ(fs::last_write_time(rewrite.path()), time);
        }
    }
}

TEST(Rewriting, WaitsBeforeAndBehindTheDeletion) {
    struct Moment {
        std::chrono::milliseconds wait;
        bool fileThere;
        std::optional<std::string> temporary;
    };
    static std::vector<Moment> moments;
    static std::string path;
    Rewrite rewrite(parameterText());
    path = rewrite.path();
    kiv::platform::waitInstead = [](std::chrono::milliseconds wait) {
        moments.push_back({wait, fs::exists(path), contentOf("$tmp.prm")});
    };
    EXPECT_EQ(rewrite.run(), KIV_OK);
    ASSERT_EQ(moments.size(), 2U);
    for (const bool second : {false, true}) {
        EXPECT_EQ(moments[second].wait, std::chrono::milliseconds(500));
        EXPECT_EQ(moments[second].fileThere, !second);
        EXPECT_EQ(moments[second].temporary, rewritten());
    }
}

#ifdef _WIN32
// A scanner or a backup opens a file before or during the rewrite, and closes it in time.
TEST(Rewriting, WaitsForOtherProgramsOrLeavesTheFile) {
    constexpr DWORD read = FILE_SHARE_READ, write = FILE_SHARE_WRITE, remove = FILE_SHARE_DELETE;
    static struct Holding {
        const char* what;
        bool ofTheCopy;
        DWORD share;
        int code, waits;
        bool rewritten;
    } row;
    static HANDLE holder;
    static int waits;
    static std::string path;
    const auto hold = [] {
        holder = CreateFileA(row.ofTheCopy ? "$tmp.prm" : path.c_str(), GENERIC_READ, row.share,
                             nullptr, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(holder, INVALID_HANDLE_VALUE);
    };
    static void (*const begin)() = hold;
    for (const Holding& each : {
             Holding{"the copy, without delete sharing", true, read | write, KIV_OK, 4, true},
             {"the copy, shared", true, read | write | remove, KIV_OK, 2, true},
             {"the file, alone", false, 0, KIV_CANNOT_OPEN, 0, false},
             {"the file, for reading", false, read, KIV_OK, 2, false},
             {"the file, without delete sharing", false, read | write, KIV_OK, 2, false},
             {"the file, shared", false, read | write | remove, KIV_OK, 4, true},
         }) {
        row = each;
        SCOPED_TRACE(row.what);
        waits = 0;
        Rewrite rewrite(parameterText());
        path = rewrite.path();
        kiv::platform::waitInstead = [](std::chrono::milliseconds) {
            if (++waits == 1 && row.ofTheCopy)
                begin();
            if (waits == 4) // two before the copy is to get the name
                CloseHandle(holder);
        };
        if (!row.ofTheCopy)
            hold();
        EXPECT_EQ(rewrite.run(), row.code);
        if (waits < 4)
            CloseHandle(holder);
        EXPECT_EQ(waits, row.waits);
        EXPECT_EQ(rewrite.file() == rewritten(), row.rewritten);
        EXPECT_EQ(rewrite.file() == parameterText(), !row.rewritten);
    }
}
#endif

TEST(Rewriting, NeverReplacesAFileThatHasJustAppeared) {
    expectNoFileReplaced(fs::temp_directory_path());
}

TEST(Rewriting, ReplacesAnEarlierTemporaryFile) {
    Rewrite rewrite(parameterText());
    std::ofstream("$tmp.prm") << std::string(100000, 'x');
    EXPECT_EQ(rewrite.run(), KIV_OK);
    EXPECT_EQ(rewrite.file(), rewritten());
    fs::create_directory("$tmp.prm");
    EXPECT_EQ(rewrite.run(), KIV_CANNOT_OPEN);
    EXPECT_EQ(rewrite.file(), rewritten());

    const std::string incomplete = parameterText({.blocks = 3});
    Rewrite failing(incomplete);
    fs::create_hard_link(failing.path(), "$tmp.prm"); // nothing is written through it
    EXPECT_NE(failing.run(), KIV_OK);
    EXPECT_EQ(failing.file(), incomplete);

    Rewrite linked(parameterText());
    fs::rename(linked.path(), "$tmp.prm");
    fs::permissions("$tmp.prm", fs::perms(0444));
    std::error_code noLinks;
    fs::create_symlink(fs::absolute("$tmp.prm"), linked.path(), noLinks);
    if (noLinks)
        return;
    EXPECT_EQ(linked.run(), KIV_CANNOT_OPEN);
    EXPECT_EQ(linked.temporary(), parameterText());
    EXPECT_EQ(fs::status("$tmp.prm").permissions(), fs::perms(0444));
}

TEST(Rewriting, LosesNoFileWhateverOperationFails) {
    expectNoFileLost(fs::temp_directory_path());
}

TEST(Rewriting, LosesNoFileWhateverAllocationFails) {
    int status = KIV_CANNOT_OPEN;
    for (std::size_t n = 1; status != KIV_OK && n < 1000; ++n) {
        SCOPED_TRACE(n);
        Rewrite rewrite(parameterText());
        const auto descriptors = openDescriptors();
        failAllocation(n);
        try {
            status = rewrite.run();
        } catch (const std::bad_alloc&) {
            status = KIV_CANNOT_OPEN;
        }
        failAllocation(0);
        EXPECT_EQ(openDescriptors(), descriptors);
        EXPECT_EQ(rewrite.file(), status == KIV_OK ? rewritten() : parameterText());
    }
    EXPECT_EQ(status, KIV_OK);
}

} // namespace
