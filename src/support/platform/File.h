#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "support/platform/ByteSink.h"
#include "support/platform/ByteSource.h"
#include "support/platform/SystemError.h"

// Files by path. A backslash in a path separates folders on every platform. All that can fail is
// reported by a result, with the reason as the system's last error; nothing blocks on a path that
// is not a regular file.
namespace kiv::platform {

// Each operation below asks this first, when it is set; true makes the operation fail (a close
// still closes) with this error. For tests.
inline constexpr int errorOfTests = 5;
enum class FileOperation { open, create, read, write, flush, sync, close, status, remove, rename };
extern bool (*failFileOperation)(FileOperation);

inline bool mustFail(FileOperation operation) {
    const bool fails = failFileOperation && failFileOperation(operation);
    if (fails)
        setLastSystemError(errorOfTests);
    return fails;
}

// Told of each that has failed, when it is set, with the system's error. For who gets no more than
// a library's code.
extern void (*onFileFailure)(FileOperation, int error);

// Gives on whether the operation has been done.
inline bool noted(FileOperation operation, bool done) {
    if (!done && onFileFailure)
        onFileFailure(operation, lastSystemError());
    return done;
}

// Whether a file is found by names that differ from its own in case, or in dots and blanks at the
// end.
#ifdef _WIN32
inline constexpr bool namesAreLoose = true;
#else
inline constexpr bool namesAreLoose = false;
#endif

// On Windows some names lead to a device, whatever their folder and extension. The null device's
// own name does not count: it is there to throw an output away.
bool namesDevice(std::string_view path);

// A path in UTF-8 everywhere. Windows takes a plain const char* to be in the process's code page.
struct Utf8Path {
    const char* text;
};

// A path as the system takes it whatever its length, in UTF-8: on Windows a long one is absolute
// and has a prefix, and a short one has none.
std::string systemForm(Utf8Path path);

class InputFile final : public ByteSource {
public:
    InputFile() = default;
    ~InputFile() override;
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    // False when the path cannot be opened for reading or is not a regular file; the latter leaves
    // 0 as the system's error.
    bool open(const char* path);
    bool open(Utf8Path path);
    std::size_t read(char* buffer, std::size_t size) override;
    bool failed() const override { return readFailed; }
    void close();

private:
    template <typename Path>
    bool openPath(Path path);

    std::intptr_t handle = -1;
    bool readFailed = false;
};

// A text file that is written once from front to back, with the platform's line ends.
class OutputFile final : public ByteSink {
public:
    OutputFile() = default;
    ~OutputFile() override;
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // A new file in place of one of that name, which is removed, never written to: it may have a
    // second name. False when there is none.
    bool create(const char* path);
    bool create(Utf8Path path);
    // A new file with a name of its own in the folder of path; gives its path, an empty one where
    // there is no such file.
    std::string createBeside(Utf8Path path);
    // Owner, group and mode of another file, with its list of rights; false where they cannot be
    // had.
    bool takeRights(Utf8Path of);
    // What fails here shows in close.
    void write(std::string_view text) override;
    void flush();
    // What was flushed, and the file's name in its folder, are on the disk.
    void sync();
    // True when nothing has failed since create: all that was written is in the file. Else the
    // first failure's error is the system's last one.
    bool close();

private:
    template <typename Path>
    bool createPath(Path path);
    void begin();
    void append(std::string_view text);
    void drain();
    void noteUnless(FileOperation operation, bool done);

    std::intptr_t handle = -1;
    std::intptr_t folder = -1; // the file's, where a sync of the file alone leaves its name out
    bool writeFailed = false;
    int error = 0; // of the first failure
    std::size_t size = 0;
    char buffer[16 * 1024]; // within the object: nothing here allocates
};

enum class PathKind { missing, file, other }; // a file is a regular one

PathKind kindOf(const char* path);

// Which file or folder a path leads to, the same for all its names and for links to it; empty when
// there is none.
std::string identityOf(const char* path);
// The same of the file to which a standard stream leads; empty where it leads to no regular one.
enum class StandardStream { input, output };
std::string identityOf(StandardStream stream);
// The name itself is a symbolic link.
bool isLink(const char* path);
// Resolves all links; the path as given when there is nothing there.
std::string realPath(const char* path);
// How many names a file has; 0 when there is none.
std::size_t nameCount(const char* path);

// Clears the read-only attribute; all other attributes and the times stay.
bool makeWritable(const char* path);

// Removes what is no folder.
bool removeFile(const char* path);
bool removeFile(Utf8Path path);

// Never replaces a file; goes from one volume to another, too. After a failure the file is where it
// was, and nothing at the other path that was not there before. Of a file that has just been
// removed there, another program may keep the name for a moment, which is waited for.
bool renameFile(const char* from, const char* to, bool removed);

// Within a volume: at every moment the path names a whole file, the old one or the new one.
bool replaceFile(Utf8Path by, Utf8Path path);

// The current directory as the platform spells it (a separator ends it only at a root), through a
// buffer of 255 characters; empty when it does not fit.
std::string currentDirectory();

} // namespace kiv::platform
