#include "support/platform/File.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <chrono>
#include <cstring>
#include <iterator>
#include <limits>

#include "support/platform/Clock.h"
#include "support/platform/WidePath.h"

namespace kiv::platform {

namespace {

HANDLE native(std::intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle);
}

// Of a path; without any when there is no such file.
constexpr DWORD noFile = INVALID_FILE_ATTRIBUTES;

HANDLE openToRead(const WidePath& path) {
    return CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                       OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
}

HANDLE openNew(const WidePath& path) {
    DeleteFileW(path);
    return CreateFileW(path, GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

// Another one at each call, in this process and, as far as the clock tells them apart, all others.
std::string ownName() {
    static std::atomic<unsigned> calls{0};
    const auto now = std::chrono::system_clock::now().time_since_epoch().count();
    return "kiv-" + std::to_string(GetCurrentProcessId()) + '-' + std::to_string(now) + '-'
           + std::to_string(calls++) + ".tmp";
}

// Owner, group, list of rights and attributes of the file at a path.
bool copyRights(const wchar_t* from, HANDLE to) {
    constexpr SECURITY_INFORMATION what =
        OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;
    constexpr DWORD room = 16 * 1024;
    char wanted[room], own[room];
    DWORD wantedSize = 0, ownSize = 0;
    const DWORD attributes = GetFileAttributesW(from);
    if (attributes == noFile || !GetFileSecurityW(from, what, wanted, room, &wantedSize)
        || !GetKernelObjectSecurity(to, what, own, room, &ownSize))
        return false;
    const bool same = wantedSize == ownSize && std::memcmp(wanted, own, ownSize) == 0;
    FILE_BASIC_INFO information{}; // times of 0 stay
    information.FileAttributes = attributes;
    return (same || SetKernelObjectSecurity(to, what, wanted))
           && SetFileInformationByHandle(to, FileBasicInfo, &information, sizeof information);
}

DWORD attributesOf(const WidePath& path) {
    const DWORD found = mustFail(FileOperation::status) ? noFile : GetFileAttributesW(path);
    noted(FileOperation::status, found != noFile);
    return found;
}

bool isFolder(const WidePath& path) {
    const DWORD attributes = GetFileAttributesW(path);
    return attributes != noFile && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool isRegularFile(HANDLE file) {
    BY_HANDLE_FILE_INFORMATION information;
    return GetFileType(file) == FILE_TYPE_DISK && GetFileInformationByHandle(file, &information)
           && !(information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
}

// Deleted, and there until the last program that has it open closes it.
bool isBeingDeleted(HANDLE file) {
    FILE_STANDARD_INFO information;
    return GetFileInformationByHandleEx(file, FileStandardInfo, &information, sizeof information)
           && information.DeletePending;
}

bool isBeingDeleted(const WidePath& path) {
    const HANDLE file = CreateFileW(path, 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return GetLastError() == ERROR_ACCESS_DENIED;
    const bool pending = isBeingDeleted(file);
    CloseHandle(file);
    return pending;
}

// A scanner or a backup has a file open for a moment: the copy that is new, or the old file, which
// keeps its name until then.
bool renameOnceFree(const WidePath& from, const WidePath& to, DWORD how, bool removed = false) {
    constexpr std::chrono::milliseconds step{100}, most{5000}, mostDenied{1000};
    for (auto waited = 0 * step;; waited += step) {
        if (MoveFileExW(from, to, how | MOVEFILE_WRITE_THROUGH))
            return true;
        const DWORD error = GetLastError();
        // Another program's hold on the file, or a right that is missing for good.
        const bool denied = error == ERROR_ACCESS_DENIED && (how & MOVEFILE_REPLACE_EXISTING);
        const bool mayPass = denied || error == ERROR_SHARING_VIOLATION || isBeingDeleted(to)
                             || (removed && error == ERROR_ALREADY_EXISTS);
        SetLastError(error);
        if (!mayPass || waited >= (denied ? mostDenied : most))
            return false;
        wait(step);
    }
}

// Of a file or folder, behind all links; without any the count of its names is 0.
BY_HANDLE_FILE_INFORMATION informationOn(const WidePath& path, std::string* realPath = nullptr) {
    BY_HANDLE_FILE_INFORMATION information{};
    const HANDLE file = CreateFileW(path, 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return information;
    if (!GetFileInformationByHandle(file, &information))
        information.nNumberOfLinks = 0;
    char buffer[4096];
    const DWORD length = realPath ? GetFinalPathNameByHandleA(file, buffer, sizeof buffer, 0) : 0;
    if (length > 0 && length < sizeof buffer)
        *realPath = buffer;
    CloseHandle(file);
    return information;
}

std::string identityIn(const BY_HANDLE_FILE_INFORMATION& found) {
    return std::to_string(found.dwVolumeSerialNumber) + ' ' + std::to_string(found.nFileIndexHigh)
           + ' ' + std::to_string(found.nFileIndexLow);
}

} // namespace

template <typename Path>
bool InputFile::openPath(Path path) {
    close();
    readFailed = false;
    if (mustFail(FileOperation::open))
        return noted(FileOperation::open, false);
    const HANDLE file = openToRead(path);
    if (file == INVALID_HANDLE_VALUE) {
        if (GetLastError() == ERROR_ACCESS_DENIED)
            SetLastError(isFolder(path) ? ERROR_SUCCESS : ERROR_ACCESS_DENIED);
        return noted(FileOperation::open, false);
    }
    handle = reinterpret_cast<std::intptr_t>(file);
    const bool pending = isBeingDeleted(file);
    if (!pending && isRegularFile(file))
        return true;
    close();
    SetLastError(pending ? ERROR_DELETE_PENDING : ERROR_SUCCESS);
    return noted(FileOperation::open, false);
}

bool InputFile::open(const char* path) {
    return openPath(path);
}

bool InputFile::open(Utf8Path path) {
    return openPath(path);
}

std::size_t InputFile::read(char* buffer, std::size_t size) {
    const std::size_t most = std::numeric_limits<DWORD>::max();
    DWORD n = 0;
    if (!mustFail(FileOperation::read)
        && ReadFile(native(handle), buffer, static_cast<DWORD>(std::min(size, most)), &n, nullptr))
        return n;
    readFailed = true;
    noted(FileOperation::read, false);
    return 0;
}

void InputFile::close() {
    if (native(handle) == INVALID_HANDLE_VALUE)
        return;
    mustFail(FileOperation::close);
    CloseHandle(native(handle));
    handle = -1;
}

template <typename Path>
bool OutputFile::createPath(Path path) {
    begin();
    const HANDLE file = mustFail(FileOperation::create) ? INVALID_HANDLE_VALUE : openNew(path);
    handle = reinterpret_cast<std::intptr_t>(file);
    return noted(FileOperation::create, file != INVALID_HANDLE_VALUE);
}

bool OutputFile::create(const char* path) {
    return createPath(path);
}

bool OutputFile::create(Utf8Path path) {
    return createPath(path);
}

std::string OutputFile::createBeside(Utf8Path path) {
    begin();
    std::string prefix(path.text); // the folder
    prefix.erase(prefix.find_last_of("/\\") + 1);
    std::string name;
    HANDLE file = INVALID_HANDLE_VALUE;
    do {
        name = prefix + ownName();
        if (!mustFail(FileOperation::create))
            file = CreateFileW(WidePath(Utf8Path{name.c_str()}),
                               GENERIC_WRITE | WRITE_DAC | WRITE_OWNER, FILE_SHARE_READ, nullptr,
                               CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    } while (file == INVALID_HANDLE_VALUE && GetLastError() == ERROR_FILE_EXISTS);
    handle = reinterpret_cast<std::intptr_t>(file);
    return noted(FileOperation::create, file != INVALID_HANDLE_VALUE) ? name : "";
}

bool OutputFile::takeRights(Utf8Path of) {
    return noted(FileOperation::status,
                 !mustFail(FileOperation::status) && copyRights(WidePath(of), native(handle)));
}

void OutputFile::write(std::string_view text) {
    while (!text.empty()) {
        const std::size_t lineEnd = std::min(text.find('\n'), text.size());
        append(text.substr(0, lineEnd));
        text.remove_prefix(lineEnd);
        if (!text.empty()) {
            append("\r\n");
            text.remove_prefix(1);
        }
    }
}

void OutputFile::drain() {
    DWORD n = 0;
    if (size > 0 && !writeFailed)
        noteUnless(FileOperation::write,
                   !mustFail(FileOperation::write)
                       && WriteFile(native(handle), buffer, static_cast<DWORD>(size), &n, nullptr)
                       && n == size);
    size = 0;
}

void OutputFile::sync() {
    noteUnless(FileOperation::sync,
               !mustFail(FileOperation::sync) && FlushFileBuffers(native(handle)));
}

bool OutputFile::close() {
    if (native(handle) == INVALID_HANDLE_VALUE)
        return false;
    drain();
    noteUnless(FileOperation::close, !mustFail(FileOperation::close));
    noteUnless(FileOperation::close, CloseHandle(native(handle)));
    handle = -1;
    if (writeFailed)
        SetLastError(static_cast<DWORD>(error));
    return !writeFailed;
}

PathKind kindOf(const char* path) {
    const DWORD attributes = attributesOf(path);
    if (attributes == noFile)
        return PathKind::missing;
    const bool other = attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE);
    return other ? PathKind::other : PathKind::file;
}

std::string systemForm(Utf8Path path) {
    return utf8Of(static_cast<const wchar_t*>(WidePath(path)));
}

bool namesDevice(std::string_view path) {
    std::string name(path.substr(path.find_last_of("/\\:") + 1));
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    std::string stem = name.substr(0, name.find('.'));
    stem.erase(stem.find_last_not_of(' ') + 1);
    if (stem == "nul")
        return name != stem || path.size() != name.size();
    const bool numbered = stem.size() == 4 && (stem.starts_with("com") || stem.starts_with("lpt"))
                          && stem[3] >= '1' && stem[3] <= '9';
    return numbered || stem == "con" || stem == "prn" || stem == "aux";
}

std::string identityOf(const char* path) {
    const BY_HANDLE_FILE_INFORMATION found = informationOn(path);
    return found.nNumberOfLinks == 0 ? "" : identityIn(found);
}

std::string identityOf(StandardStream stream) {
    const HANDLE file =
        GetStdHandle(stream == StandardStream::input ? STD_INPUT_HANDLE : STD_OUTPUT_HANDLE);
    BY_HANDLE_FILE_INFORMATION found;
    return GetFileType(file) == FILE_TYPE_DISK && GetFileInformationByHandle(file, &found)
               ? identityIn(found)
               : "";
}

bool isLink(const char* path) {
    WIN32_FIND_DATAW entry;
    const HANDLE search = FindFirstFileW(WidePath(path), &entry);
    if (search == INVALID_HANDLE_VALUE)
        return false;
    FindClose(search);
    return (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)
           && entry.dwReserved0 == IO_REPARSE_TAG_SYMLINK;
}

std::string realPath(const char* path) {
    std::string real = path;
    informationOn(path, &real);
    return real;
}

std::size_t nameCount(const char* path) {
    return informationOn(path).nNumberOfLinks;
}

bool makeWritable(const char* path) {
    const DWORD attributes = attributesOf(path);
    if (attributes == noFile || !(attributes & FILE_ATTRIBUTE_READONLY))
        return attributes != noFile;
    const DWORD others = attributes & ~DWORD{FILE_ATTRIBUTE_READONLY};
    return noted(FileOperation::status,
                 SetFileAttributesW(WidePath(path), others ? others : FILE_ATTRIBUTE_NORMAL) != 0);
}

bool removeFile(const char* path) {
    return noted(FileOperation::remove,
                 !mustFail(FileOperation::remove) && DeleteFileW(WidePath(path)));
}

bool removeFile(Utf8Path path) {
    return noted(FileOperation::remove,
                 !mustFail(FileOperation::remove) && DeleteFileW(WidePath(path)));
}

bool replaceFile(Utf8Path by, Utf8Path path) {
    return noted(FileOperation::rename, !mustFail(FileOperation::rename)
                                            && renameOnceFree(by, path, MOVEFILE_REPLACE_EXISTING));
}

bool renameFile(const char* from, const char* to, bool removed) {
    return noted(FileOperation::rename,
                 !mustFail(FileOperation::rename)
                     && renameOnceFree(from, to, MOVEFILE_COPY_ALLOWED, removed));
}

std::string currentDirectory() {
    char buffer[255];
    const DWORD length = GetCurrentDirectoryA(sizeof buffer, buffer);
    return {buffer, length < sizeof buffer ? length : 0};
}

} // namespace kiv::platform
