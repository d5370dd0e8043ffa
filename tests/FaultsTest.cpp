#include <algorithm>
#include <clocale>
#include <functional>

#include <gtest/gtest.h>

#include "kiv.h"
#include "tests/FileFaults.h"
#include "tests/ToolRunner.h"

namespace {

using kiv::Block;
using namespace kiv::test;

// Longer than one read and one write.
std::string largeText() {
    std::string rows = "20000";
    for (int i = 0; i < 20000; ++i)
        rows += '\n' + std::to_string(i) + " 0.5";
    return parameterText({.values = {{Block::azCalibration, rows}}});
}

struct Parameters {
    explicit Parameters(const std::string& path) {
        EXPECT_EQ(kiv_parameters_new(&handle), KIV_STATUS_OK);
        code = kiv_parameters_load(handle, path.c_str());
    }
    ~Parameters() { kiv_parameters_free(handle); }

    kiv_parameters* handle = nullptr;
    int code = 0;
};

} // namespace

#ifdef __linux__

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "params/Parser.h"

namespace {

int syncedFiles = 0, syncedFolders = 0;

} // namespace

// In place of the system's own, for the whole program.
extern "C" int fsync(int descriptor) {
    struct stat status {};
    const bool folder = fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
    ++(folder ? syncedFolders : syncedFiles);
    return static_cast<int>(syscall(SYS_fsync, descriptor));
}

namespace {

namespace fs = std::filesystem;

constexpr int skipped = 77;

// Runs what would change this process for good in a child, whose failures are this one's; false
// when it has returned false because the machine lacks something.
template <typename Body>
bool inChild(Body body) {
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        const bool done = body();
        std::fflush(nullptr);
        _exit(::testing::Test::HasFailure() ? 1 : done ? 0 : skipped);
    }
    int status = 0;
    waitpid(child, &status, 0);
    const bool lacking = WIFEXITED(status) && WEXITSTATUS(status) == skipped;
    if (!lacking) {
        EXPECT_EQ(status, 0) << "in the child process";
    }
    return !lacking;
}

// A file's contents before its name, and the name.
TEST(Faults, RewritesReachTheDisk) {
    Rewrite rewrite(parameterText());
    syncedFiles = syncedFolders = 0;
    EXPECT_EQ(rewrite.run(), KIV_OK);
    EXPECT_TRUE(syncedFiles == 1 && syncedFolders == 1) << syncedFiles << ' ' << syncedFolders;
    const Parameters parameters(rewrite.path());
    EXPECT_EQ(kiv_parameters_rewrite(parameters.handle, rewrite.path().c_str()), KIV_OK);
    EXPECT_TRUE(syncedFiles == 2 && syncedFolders == 2) << syncedFiles << ' ' << syncedFolders;
}

void expectRefused(Rewrite& rewrite) {
    const auto before = rewrite.file();
    const auto descriptors = openDescriptors();
    EXPECT_EQ(rewrite.run(), KIV_CANNOT_OPEN);
    EXPECT_EQ(rewrite.file(), before);
    EXPECT_EQ(openDescriptors(), descriptors);
}

TEST(Faults, FileSizeLimit) {
    inChild([] {
        std::signal(SIGXFSZ, SIG_IGN);
        Rewrite small(parameterText());
        Rewrite large(largeText());
        const rlimit limit{1000, 1000};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
        expectRefused(small);
        expectRefused(large);
        return true;
    });
}

TEST(Faults, OrdinaryUser) {
    const struct {
        const char* name;
        fs::perms folder, current, file;
        int status;
    } rows[] = {
        {"current folder", fs::perms(0777), fs::perms(0555), fs::perms(0644), KIV_CANNOT_OPEN},
        {"file's folder", fs::perms(0555), fs::perms(0777), fs::perms(0644), KIV_OK},
        {"another's read-only file", fs::perms(0777), fs::perms(0777), fs::perms(0444),
         KIV_CANNOT_OPEN},
    };
    std::optional<std::string> rewritten;
    {
        Rewrite undisturbed(parameterText());
        undisturbed.run();
        rewritten = undisturbed.file();
    }
    const bool all = inChild([&] {
        const bool root = geteuid() == 0;
        for (const auto& row : rows) {
            SCOPED_TRACE(row.name);
            if (!root && row.file == fs::perms(0444))
                continue; // skipped below
            Rewrite rewrite(parameterText());
            fs::permissions(rewrite.folder.path(), row.folder);
            fs::permissions(rewrite.current.path(), row.current);
            fs::permissions(rewrite.path(), row.file);
            EXPECT_TRUE(!root || seteuid(65534) == 0);
            EXPECT_EQ(rewrite.run(), row.status);
            EXPECT_EQ(rewrite.file(), parameterText());
            EXPECT_EQ(rewrite.temporary(), row.status == KIV_OK ? rewritten : std::nullopt);
            EXPECT_TRUE(!root || seteuid(0) == 0);
            fs::permissions(rewrite.folder.path(), fs::perms(0777));
            fs::permissions(rewrite.current.path(), fs::perms(0777));
        }
        return root;
    });
    if (!all)
        GTEST_SKIP() << "only root can give a file to another: not \"" << rows[2].name << '"';
}

TEST(Faults, AcrossVolumes) {
    const fs::path other = "/dev/shm";
    struct stat here {
    }, there{};
    if (stat(fs::temp_directory_path().c_str(), &here) != 0 || stat(other.c_str(), &there) != 0
        || here.st_dev == there.st_dev || access(other.c_str(), W_OK) != 0)
        GTEST_SKIP() << "no second volume";
    expectNoFileLost(other);
    expectNoFileReplaced(other);
}

TEST(Faults, NotARegularFile) {
    for (const bool pipe : {false, true}) {
        SCOPED_TRACE(pipe);
        Rewrite rewrite(parameterText());
        fs::remove(rewrite.path());
        EXPECT_TRUE(pipe ? mkfifo(rewrite.path().c_str(), 0400) == 0
                         : fs::create_directory(rewrite.path()));
        const auto before = fs::status(rewrite.path());
        EXPECT_EQ(rewrite.run(), KIV_CANNOT_OPEN);
        EXPECT_EQ(fs::status(rewrite.path()).type(), before.type());
        EXPECT_EQ(fs::status(rewrite.path()).permissions(), before.permissions());
        EXPECT_TRUE(fs::is_empty(rewrite.current.path()));
    }
}

// A text followed by a gigabyte of one character.
class Junk final : public kiv::ByteSource {
public:
    Junk(std::string_view text, char repeated) : start(text), filler(repeated) {}
    std::size_t read(char* buffer, std::size_t size) override {
        if (const std::size_t n = start.read(buffer, size))
            return n;
        const std::size_t n = std::min(size, left);
        left -= n;
        std::fill_n(buffer, n, filler);
        return n;
    }

private:
    kiv::TextSource start;
    char filler;
    std::size_t left = 1 << 30;
};

long peakKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST(Faults, JunkTakesLittleMemory) {
    const std::string table =
        parameterText({.blocks = 14}) + "AZ Calibration Table 2147483647\n1 2 ";
    const struct {
        const char* name;
        std::string start;
        char repeated;
    } rows[] = {
        {"spaces", "", ' '},
        {"NUL bytes", "", '\0'},
        {"a word", "Serial Number 5 Device Owner ", 'x'},
        {"a title", "Serial ", 'N'},
        {"digits", table, '1'},
        {"zeros", table + "0.", '0'},
        {"an exponent", table + "1e-", '9'},
        {"a count", table.substr(0, table.size() - 14), '7'},
    };
    inChild([&] {
        const long before = peakKilobytes();
        for (const auto& row : rows) {
            Junk toLoad(row.start, row.repeated), toRewrite(row.start, row.repeated);
            EXPECT_EQ(kiv::parseParameterFile(toLoad, 5).outcome.code, KIV_BAD_FORMAT) << row.name;
            EXPECT_EQ(kiv::parseForRewrite(toRewrite).outcome.code, KIV_BAD_FORMAT) << row.name;
        }
        Rewrite sparse(table);
        fs::resize_file(sparse.path(), 1 << 30);
        EXPECT_EQ(sparse.record.ReadCalibrationFile(sparse.folder.path().c_str(), 5),
                  KIV_BAD_FORMAT);
        EXPECT_EQ(sparse.run(), KIV_BAD_FORMAT);
        EXPECT_LE(peakKilobytes() - before, 50 * 1024);
        return true;
    });
}

bool setCommaLocale(const ParameterFolder& folder) {
    const std::string make =
        "localedef -i de_DE -f ISO-8859-1 " + folder.path() + "/de_DE >/dev/null 2>&1";
    return std::system(make.c_str()) == 0 && setenv("LOCPATH", folder.path().c_str(), 1) == 0
           && std::setlocale(LC_ALL, "de_DE");
}

} // namespace

#else

namespace {

bool setCommaLocale(const ParameterFolder&) {
    return std::setlocale(LC_ALL, "German_Germany.1252");
}

TEST(Faults, OfLinux) {
    GTEST_SKIP() << "needs Linux";
}

} // namespace

#endif

namespace {

TEST(Faults, NothingIsTakenOfAFileThatIsNotReadToItsEnd) {
    using kiv::platform::FileOperation;
    const ParameterFolder folder;
    std::ofstream(folder.file(), std::ios::binary) << largeText();
    const auto toolTakes = [&](const char* command) {
        return [=, file = folder.file()] { return tool({command, file}).code == 0; };
    };
    const std::pair<const char*, std::function<bool()>> readers[] = {
        {"kiv.h", [&] { return Parameters(folder.file()).code == KIV_STATUS_OK; }},
        {"check", toolTakes("check")},
        {"info", toolTakes("info")},
        {"simulate", toolTakes("simulate")}};
    for (const auto& [name, takes] : readers) {
        bool failed = true;
        for (int k = 1; failed; ++k) {
            const FailingOperation failing(k);
            const bool taken = takes();
            const auto operation = FailingOperation::operation();
            failed = operation.has_value();
            EXPECT_EQ(taken, operation.value_or(FileOperation::close) == FileOperation::close)
                << name << ' ' << k;
        }
    }
}

TEST(Faults, DecimalComma) {
    LoadedRecord expected;
    Rewrite usual(parameterText());
    EXPECT_EQ(usual.run(), KIV_OK);

    const std::string before = std::setlocale(LC_ALL, nullptr);
    const ParameterFolder folder;
    if (!setCommaLocale(folder))
        GTEST_SKIP() << "no locale with a decimal comma";
    EXPECT_STREQ(std::localeconv()->decimal_point, ",");
    Rewrite rewrite(parameterText());
    EXPECT_TRUE(sameValues(rewrite.record, expected));
    EXPECT_EQ(rewrite.run(), KIV_OK);
    std::setlocale(LC_ALL, before.c_str());
    EXPECT_EQ(rewrite.file(), usual.file());
}

} // namespace
