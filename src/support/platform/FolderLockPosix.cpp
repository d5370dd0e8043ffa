#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "support/platform/FolderLock.h"

namespace kiv::platform {

FolderLock::Result FolderLock::take(const char* folder, bool wait) {
    release();
    const int descriptor = ::open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return Result::failed;
    handle = descriptor;
    int failed;
    do
        failed = flock(descriptor, wait ? LOCK_EX : LOCK_EX | LOCK_NB);
    while (failed != 0 && errno == EINTR);
    if (failed == 0)
        return Result::taken;
    const Result result = errno == EWOULDBLOCK ? Result::busy : Result::failed;
    release();
    return result;
}

void FolderLock::release() {
    if (handle >= 0)
        ::close(static_cast<int>(handle));
    handle = -1;
}

} // namespace kiv::platform
