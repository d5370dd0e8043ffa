#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <string>

#include "support/platform/Clock.h"
#include "support/platform/File.h"
#include "tests/ParameterRecord.h"

namespace kiv::test {

// Makes the k-th file operation from now on fail.
class FailingOperation {
public:
    explicit FailingOperation(int k) {
        left = k;
        failed.reset();
        platform::failFileOperation = [](platform::FileOperation operation) {
            if (--left == 0)
                failed = operation;
            return left == 0;
        };
    }
    ~FailingOperation() { platform::failFileOperation = nullptr; }
    FailingOperation(const FailingOperation&) = delete;
    FailingOperation& operator=(const FailingOperation&) = delete;

    // The one that has failed.
    static std::optional<platform::FileOperation> operation() { return failed; }

private:
    static inline int left = 0;
    static inline std::optional<platform::FileOperation> failed;
};

// 0 where they cannot be counted.
inline std::ptrdiff_t openDescriptors() {
#ifdef __linux__
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
#else
    return 0;
#endif
}

inline std::optional<std::string> contentOf(const std::filesystem::path& path) {
    std::ifstream file(path);
    if (!file)
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

// A parameter file in a folder of its own and a record that rewrites it from another folder, the
// current one while this lasts; nothing waits meanwhile.
class Rewrite {
public:
    explicit Rewrite(const std::string& text,
                     const std::filesystem::path& volume = std::filesystem::temp_directory_path())
        : current(volume) {
        folder.load(record, text);
        std::filesystem::current_path(current.path());
        platform::waitInstead = [](std::chrono::milliseconds) {};
    }
    ~Rewrite() {
        platform::waitInstead = nullptr;
        std::filesystem::current_path(home);
    }
    Rewrite(const Rewrite&) = delete;
    Rewrite& operator=(const Rewrite&) = delete;

    int run() { return record.PrmFileCopy(); }
    std::string path() const { return folder.file(); }
    std::optional<std::string> file() const { return contentOf(path()); }
    std::optional<std::string> temporary() const { return contentOf("$tmp.prm"); }

    const ParameterFolder folder, current;
    CKivPrm record;

private:
    const std::filesystem::path home = std::filesystem::current_path();
};

// Another file takes the place of the old one before the new one does.
inline void expectNoFileReplaced(const std::filesystem::path& volume) {
    static std::string path;
    Rewrite rewrite(parameterText(), volume);
    path = rewrite.path();
    platform::waitInstead = [](std::chrono::milliseconds) {
        if (!std::filesystem::exists(path))
            std::ofstream(path) << "another's";
    };
    EXPECT_EQ(rewrite.run(), KIV_OK);
    EXPECT_EQ(rewrite.file(), "another's");
    EXPECT_NE(rewrite.temporary(), std::nullopt);
}

// Rewrites with the first, the second, ... file operation failing until none fails. The old file
// is there as it was or the new one complete; nothing stays open.
inline void expectNoFileLost(const std::filesystem::path& volume) {
    using platform::FileOperation;
    const std::string text = parameterText();
    std::optional<std::string> rewritten;
    {
        Rewrite undisturbed(text, volume);
        EXPECT_EQ(undisturbed.run(), KIV_OK);
        EXPECT_EQ(undisturbed.temporary(), std::nullopt);
        rewritten = undisturbed.file();
    }
    bool failed = true;
    int unheeded = 0; // closes of what was read
    std::set<FileOperation> kinds;
    for (int k = 1; failed; ++k) {
        Rewrite rewrite(text, volume);
        const auto descriptors = openDescriptors();
        const FailingOperation failing(k);
        const int status = rewrite.run();
        const auto operation = FailingOperation::operation();
        failed = operation.has_value();
        if (failed)
            kinds.insert(*operation);
        SCOPED_TRACE("operation " + std::to_string(k) + ", of kind "
                     + std::to_string(failed ? static_cast<int>(*operation) : -1));
        EXPECT_EQ(openDescriptors(), descriptors);
        const auto file = rewrite.file(), temporary = rewrite.temporary();
        for (const auto& entry : std::filesystem::directory_iterator(rewrite.folder.path()))
            EXPECT_EQ(entry.path().filename(), "Tg5.prm");
        if (status == KIV_CANNOT_OPEN || operation == FileOperation::status) {
            EXPECT_TRUE(failed);
            EXPECT_EQ(file, text);
            EXPECT_EQ(status, k == 1 ? KIV_OK : KIV_CANNOT_OPEN);
        } else if (operation == FileOperation::remove) {
            EXPECT_EQ(file, text);
            EXPECT_EQ(temporary, rewritten);
        } else if (file) {
            EXPECT_EQ(operation.value_or(FileOperation::close), FileOperation::close);
            unheeded += failed;
            EXPECT_EQ(file, rewritten);
            EXPECT_EQ(temporary, std::nullopt);
        } else { // the rename, or the copy to another volume in its place
            EXPECT_EQ(status, KIV_OK);
            EXPECT_TRUE(failed);
            EXPECT_EQ(temporary, rewritten);
        }
    }
    EXPECT_EQ(kinds.size(), 10U); // every kind there is
    EXPECT_EQ(unheeded, volume == std::filesystem::temp_directory_path() ? 1 : 2);
}

} // namespace kiv::test
