#include "support/platform/File.h"

#include <algorithm>
#include <limits>

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace kiv::platform {

namespace {

HANDLE native(std::intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle);
}

bool isRegularFile(HANDLE file) {
    BY_HANDLE_FILE_INFORMATION information;
    return GetFileType(file) == FILE_TYPE_DISK && GetFileInformationByHandle(file, &information)
           && !(information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
}

} // namespace

bool InputFile::open(const char* path) {
    close();
    readFailed = false;
    if (mustFail(FileOperation::open))
        return false;
    const HANDLE file = CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    handle = reinterpret_cast<std::intptr_t>(file);
    if (isRegularFile(file))
        return true;
    close();
    return false;
}

std::size_t InputFile::read(char* buffer, std::size_t size) {
    const std::size_t most = std::numeric_limits<DWORD>::max();
    DWORD n = 0;
    if (!mustFail(FileOperation::read)
        && ReadFile(native(handle), buffer, static_cast<DWORD>(std::min(size, most)), &n, nullptr))
        return n;
    readFailed = true;
    return 0;
}

void InputFile::close() {
    if (native(handle) == INVALID_HANDLE_VALUE)
        return;
    mustFail(FileOperation::close);
    CloseHandle(native(handle));
    handle = -1;
}

std::string currentDirectory() {
    char buffer[255];
    const DWORD length = GetCurrentDirectoryA(sizeof buffer, buffer);
    return {buffer, length < sizeof buffer ? length : 0};
}

} // namespace kiv::platform
