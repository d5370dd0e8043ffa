#include "support/platform/File.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#ifdef __linux__
#include <sys/xattr.h>
#endif
#include <unistd.h>

namespace kiv::platform {

namespace {

// A path with this platform's separators; too long a path becomes empty, which names no file.
// Nothing here allocates, so that no exception comes between a file's removal and its replacement.
class NativePath {
public:
    explicit NativePath(const char* path, const char* suffix = "") {
        const std::size_t length = std::strlen(path), more = std::strlen(suffix);
        if (length + more >= sizeof text)
            return;
        std::replace_copy(path, path + length, text, '\\', '/');
        std::copy_n(suffix, more, text + length);
    }

    // Without the last name.
    NativePath folder() const {
        NativePath path(text);
        if (char* separator = std::strrchr(path.text, '/'))
            separator[1] = '\0';
        else
            std::strcpy(path.text, ".");
        return path;
    }

    operator const char*() const { return text; }

private:
    char text[4096] = {};
};

bool isRegularFile(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

bool exists(const char* path) {
    struct stat status {};
    return lstat(path, &status) == 0;
}

int openNew(const char* path) {
    return ::open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOCTTY | O_CLOEXEC, 0666);
}

// Another one at each call, in this process and, as far as the clock tells them apart, all others.
std::string ownName() {
    static std::atomic<unsigned> calls{0};
    const auto now = std::chrono::system_clock::now().time_since_epoch().count();
    return ".kiv-" + std::to_string(getpid()) + '-' + std::to_string(now) + '-'
           + std::to_string(calls++) + ".tmp";
}

// True also where there is none.
bool takeAccessList(int descriptor, const char* from) {
#ifdef __linux__
    constexpr const char* name = "system.posix_acl_access";
    char list[4096];
    const ssize_t size = getxattr(from, name, list, sizeof list);
    if (size < 0)
        return errno == ENODATA || errno == ENOTSUP;
    return fsetxattr(descriptor, name, list, static_cast<std::size_t>(size), 0) == 0;
#else
    return true;
#endif
}

// Owner, group, mode and list of rights of the file at a path.
bool copyRights(int descriptor, const char* from) {
    struct stat wanted {};
    struct stat own {};
    if (stat(from, &wanted) != 0 || fstat(descriptor, &own) != 0)
        return false;
    const auto sameOwner = [&] {
        return own.st_uid == wanted.st_uid && own.st_gid == wanted.st_gid;
    };
    if ((!sameOwner() && fchown(descriptor, wanted.st_uid, wanted.st_gid) != 0)
        || fchmod(descriptor, wanted.st_mode & 07777) != 0 || !takeAccessList(descriptor, from)
        || fstat(descriptor, &own) != 0)
        return false;
    errno = EPERM; // of a file system that does not keep them
    return sameOwner() && own.st_mode == wanted.st_mode;
}

int openFolder(const NativePath& path) {
    return ::open(path.folder(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

// The names in a folder are on the disk, as far as its file system can see to that.
void syncAndCloseFolder(std::intptr_t folder) {
    if (folder < 0)
        return;
    fsync(static_cast<int>(folder));
    ::close(static_cast<int>(folder));
}

bool renameWithinVolume(const char* from, const char* to) {
#ifdef RENAME_NOREPLACE
    if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS) // other than not having that call
        return false;
#endif
    if (link(from, to) == 0) {
        unlink(from);
        return true;
    }
    // Without second names either, only looking first is left.
    return errno != EEXIST && errno != EXDEV && !exists(to) && rename(from, to) == 0;
}

bool copyFile(const char* from, const char* to) {
    InputFile source;
    OutputFile copy;
    if (!source.open(from) || !copy.create(to))
        return false;
    char buffer[16 * 1024];
    while (const std::size_t n = source.read(buffer, sizeof buffer))
        copy.write({buffer, n});
    copy.flush();
    copy.sync();
    return copy.close() && !source.failed();
}

// By way of a file beside the target: half a file never has its name.
bool moveAcrossVolumes(const NativePath& from, const NativePath& to) {
    const NativePath copy(to, "$tmp");
    if (!copyFile(from, copy) || !renameWithinVolume(copy, to)) {
        unlink(copy);
        return false;
    }
    syncAndCloseFolder(openFolder(to));
    unlink(from);
    return true;
}

std::string identityIn(const struct stat& status) {
    return std::to_string(status.st_dev) + ' ' + std::to_string(status.st_ino);
}

} // namespace

bool InputFile::open(const char* path) {
    close();
    readFailed = false;
    if (mustFail(FileOperation::open))
        return noted(FileOperation::open, false);
    // Without O_NONBLOCK, opening a pipe would wait for its writer.
    const int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int descriptor = ::open(NativePath(path), flags);
    if (descriptor < 0)
        return noted(FileOperation::open, false);
    handle = descriptor;
    if (isRegularFile(descriptor))
        return true;
    close();
    errno = 0;
    return noted(FileOperation::open, false);
}

bool InputFile::open(Utf8Path path) {
    return open(path.text);
}

std::size_t InputFile::read(char* buffer, std::size_t size) {
    ssize_t n = -1;
    if (!mustFail(FileOperation::read))
        do
            n = ::read(static_cast<int>(handle), buffer, size);
        while (n < 0 && errno == EINTR);
    readFailed = !noted(FileOperation::read, n >= 0) || readFailed;
    return n < 0 ? 0 : static_cast<std::size_t>(n);
}

void InputFile::close() {
    if (handle < 0)
        return;
    mustFail(FileOperation::close);
    ::close(static_cast<int>(handle));
    handle = -1;
}

bool OutputFile::create(const char* path) {
    begin();
    if (mustFail(FileOperation::create))
        return noted(FileOperation::create, false);
    const NativePath native(path);
    unlink(native);
    handle = openNew(native);
    if (handle < 0)
        return noted(FileOperation::create, false);
    folder = openFolder(native);
    return true;
}

bool OutputFile::create(Utf8Path path) {
    return create(path.text);
}

std::string OutputFile::createBeside(Utf8Path path) {
    begin();
    std::string prefix(path.text); // the folder
    prefix.erase(prefix.find_last_of("/\\") + 1);
    std::string name;
    do {
        name = prefix + ownName();
        handle = mustFail(FileOperation::create) ? -1 : openNew(NativePath(name.c_str()));
    } while (handle < 0 && errno == EEXIST);
    return noted(FileOperation::create, handle >= 0) ? name : "";
}

bool OutputFile::takeRights(Utf8Path of) {
    return noted(FileOperation::status,
                 !mustFail(FileOperation::status)
                     && copyRights(static_cast<int>(handle), NativePath(of.text)));
}

void OutputFile::write(std::string_view text) {
    append(text);
}

void OutputFile::drain() {
    const char* next = buffer;
    const char* const end = buffer + size;
    if (size > 0 && !writeFailed)
        noteUnless(FileOperation::write, !mustFail(FileOperation::write));
    size = 0;
    while (next != end && !writeFailed) {
        const auto left = static_cast<std::size_t>(end - next);
        const ssize_t n = ::write(static_cast<int>(handle), next, left);
        if (n > 0)
            next += n;
        else
            noteUnless(FileOperation::write, n < 0 && errno == EINTR);
    }
}

void OutputFile::sync() {
    noteUnless(FileOperation::sync,
               !mustFail(FileOperation::sync) && fsync(static_cast<int>(handle)) == 0);
    syncAndCloseFolder(folder);
    folder = -1;
}

bool OutputFile::close() {
    if (handle < 0)
        return false;
    drain();
    noteUnless(FileOperation::close, !mustFail(FileOperation::close));
    noteUnless(FileOperation::close, ::close(static_cast<int>(handle)) == 0);
    if (folder >= 0)
        ::close(static_cast<int>(folder));
    handle = folder = -1;
    if (writeFailed)
        errno = error;
    return !writeFailed;
}

PathKind kindOf(const char* path) {
    struct stat status {};
    if (!noted(FileOperation::status,
               !mustFail(FileOperation::status) && stat(NativePath(path), &status) == 0))
        return PathKind::missing;
    return S_ISREG(status.st_mode) ? PathKind::file : PathKind::other;
}

std::string systemForm(Utf8Path path) {
    return path.text;
}

bool namesDevice(std::string_view) {
    return false;
}

std::string identityOf(const char* path) {
    struct stat status {};
    return stat(NativePath(path), &status) == 0 ? identityIn(status) : "";
}

std::string identityOf(StandardStream stream) {
    struct stat status {};
    const int descriptor = stream == StandardStream::input ? STDIN_FILENO : STDOUT_FILENO;
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) ? identityIn(status) : "";
}

bool isLink(const char* path) {
    struct stat status {};
    return lstat(NativePath(path), &status) == 0 && S_ISLNK(status.st_mode);
}

std::string realPath(const char* path) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(NativePath(path), nullptr),
                                                           &std::free);
    return real ? real.get() : path;
}

std::size_t nameCount(const char* path) {
    struct stat status {};
    return stat(NativePath(path), &status) == 0 ? status.st_nlink : 0;
}

bool makeWritable(const char* path) {
    const NativePath native(path);
    struct stat status {};
    if (mustFail(FileOperation::status) || stat(native, &status) != 0)
        return noted(FileOperation::status, false);
    const mode_t mode = status.st_mode & 07777;
    return noted(FileOperation::status, mode & S_IWUSR || chmod(native, mode | S_IWUSR) == 0);
}

bool removeFile(const char* path) {
    return noted(FileOperation::remove,
                 !mustFail(FileOperation::remove) && unlink(NativePath(path)) == 0);
}

bool removeFile(Utf8Path path) {
    return removeFile(path.text);
}

bool replaceFile(Utf8Path by, Utf8Path path) {
    const NativePath target(path.text);
    if (!noted(FileOperation::rename,
               !mustFail(FileOperation::rename) && rename(NativePath(by.text), target) == 0))
        return false;
    syncAndCloseFolder(openFolder(target));
    return true;
}

bool renameFile(const char* from, const char* to, bool /*removed*/) {
    if (mustFail(FileOperation::rename))
        return noted(FileOperation::rename, false);
    const NativePath source(from), target(to);
    return noted(FileOperation::rename,
                 renameWithinVolume(source, target)
                     || (errno == EXDEV && moveAcrossVolumes(source, target)));
}

std::string currentDirectory() {
    char buffer[255];
    return getcwd(buffer, sizeof buffer) ? buffer : "";
}

} // namespace kiv::platform
