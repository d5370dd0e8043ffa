#include <iterator>
#include <string>

#include "support/platform/Replacement.h"
#include "support/platform/WidePath.h"

namespace kiv::platform::replacement {

namespace {

WidePath wide(const std::string& path) {
    return Utf8Path{path.c_str()};
}

// Of a file or folder behind all links, for what is known of it alone.
HANDLE opened(const std::string& path) {
    return CreateFileW(wide(path), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                       nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
}

} // namespace

std::string followed(const std::string& path) {
    const DWORD attributes = GetFileAttributesW(wide(path));
    if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_REPARSE_POINT))
        return path;
    const HANDLE file = opened(path);
    if (file == INVALID_HANDLE_VALUE)
        return path;
    wchar_t target[4096];
    const DWORD length = GetFinalPathNameByHandleW(file, target, DWORD{std::size(target)}, 0);
    CloseHandle(file);
    const std::string text = length < std::size(target) ? utf8Of({target, length}) : std::string();
    return text.empty() ? path : text;
}

ReplacementFault refusal(const std::string& path, bool& exists) {
    const DWORD attributes =
        mustFail(FileOperation::status) ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(wide(path));
    exists = attributes != INVALID_FILE_ATTRIBUTES;
    if (!exists) {
        const DWORD error = GetLastError();
        return error == ERROR_FILE_NOT_FOUND ? ReplacementFault{} : refusalBySystem();
    }
    constexpr DWORD irregular =
        FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE | FILE_ATTRIBUTE_REPARSE_POINT;
    if (attributes & irregular)
        return {"expected a regular file", 0};
    if (attributes & FILE_ATTRIBUTE_READONLY)
        return {"expected a file that may be written, found a read-only one", ERROR_ACCESS_DENIED};
    const HANDLE file = opened(path);
    BY_HANDLE_FILE_INFORMATION information{};
    const bool known =
        file != INVALID_HANDLE_VALUE && GetFileInformationByHandle(file, &information);
    if (file != INVALID_HANDLE_VALUE)
        CloseHandle(file);
    if (!known)
        return refusalBySystem();
    if (information.nNumberOfLinks > 1)
        return {"expected a file with one name, found "
                    + std::to_string(information.nNumberOfLinks),
                0};
    return {};
}

} // namespace kiv::platform::replacement
