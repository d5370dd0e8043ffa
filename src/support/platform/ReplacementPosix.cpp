#include <algorithm>
#include <cerrno>
#include <climits>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/platform/Replacement.h"

namespace kiv::platform::replacement {

std::string followed(const std::string& path) {
    constexpr int mostLinks = 40; // as the system follows
    std::string last = path;
    std::replace(last.begin(), last.end(), '\\', '/');
    for (int i = 0; i < mostLinks; ++i) {
        char target[PATH_MAX];
        const ssize_t size = readlink(last.c_str(), target, sizeof target);
        if (size <= 0)
            break;
        if (target[0] == '/')
            last.clear();
        else
            last.erase(last.find_last_of('/') + 1);
        last.append(target, static_cast<std::size_t>(size));
    }
    return last;
}

ReplacementFault refusal(const std::string& path, bool& exists) {
    struct stat status {};
    exists = !mustFail(FileOperation::status) && lstat(path.c_str(), &status) == 0;
    if (!exists)
        return errno == ENOENT ? ReplacementFault{} : refusalBySystem();
    if (!S_ISREG(status.st_mode))
        return {"expected a regular file", 0};
    if (status.st_nlink > 1)
        return {"expected a file with one name, found " + std::to_string(status.st_nlink), 0};
    if ((status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0)
        return {"expected a file that may be written, found a read-only one", EACCES};
    if (faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0)
        return refusalBySystem();
    return {};
}

} // namespace kiv::platform::replacement
