#include <string>

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include "support/platform/File.h"
#include "support/platform/FolderLock.h"

namespace kiv::platform {

// A folder itself cannot be locked; a mutex is named after it.
FolderLock::Result FolderLock::take(const char* folder, bool wait) {
    release();
    const std::string identity = identityOf(folder);
    if (identity.empty())
        return Result::failed;
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, ("Global\\kiv rewrite " + identity).c_str());
    if (!mutex)
        return Result::failed;
    const DWORD found = WaitForSingleObject(mutex, wait ? INFINITE : 0);
    if (found == WAIT_OBJECT_0 || found == WAIT_ABANDONED) {
        handle = reinterpret_cast<std::intptr_t>(mutex);
        return Result::taken;
    }
    CloseHandle(mutex);
    return found == WAIT_TIMEOUT ? Result::busy : Result::failed;
}

void FolderLock::release() {
    if (handle == -1)
        return;
    const HANDLE mutex = reinterpret_cast<HANDLE>(handle);
    ReleaseMutex(mutex);
    CloseHandle(mutex);
    handle = -1;
}

} // namespace kiv::platform
