#include "support/platform/File.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kiv::platform {

namespace {

std::string nativePath(const char* path) {
    std::string native = path;
    std::replace(native.begin(), native.end(), '\\', '/');
    return native;
}

bool isRegularFile(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

} // namespace

bool InputFile::open(const char* path) {
    close();
    readFailed = false;
    if (mustFail(FileOperation::open))
        return false;
    // Without O_NONBLOCK, opening a pipe would wait for its writer.
    const int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int descriptor = ::open(nativePath(path).c_str(), flags);
    if (descriptor < 0)
        return false;
    handle = descriptor;
    if (isRegularFile(descriptor))
        return true;
    close();
    return false;
}

std::size_t InputFile::read(char* buffer, std::size_t size) {
    ssize_t n = -1;
    if (!mustFail(FileOperation::read))
        do
            n = ::read(static_cast<int>(handle), buffer, size);
        while (n < 0 && errno == EINTR);
    readFailed = readFailed || n < 0;
    return n < 0 ? 0 : static_cast<std::size_t>(n);
}

void InputFile::close() {
    if (handle < 0)
        return;
    mustFail(FileOperation::close);
    ::close(static_cast<int>(handle));
    handle = -1;
}

std::string currentDirectory() {
    char buffer[255];
    return getcwd(buffer, sizeof buffer) ? buffer : "";
}

} // namespace kiv::platform
