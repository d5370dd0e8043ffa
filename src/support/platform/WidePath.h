#pragma once

#include <algorithm>
#include <string_view>

#include "support/platform/File.h"
#include "support/platform/WideText.h"

namespace kiv::platform {

// A path for the functions that take wide characters, from UTF-8 or, as plain text, from the
// process's code page. A long one is absolute, in the form for which 260 characters are no limit;
// one that is no text of its encoding, or longer than this has room for, is empty, which names no
// file.
class WidePath {
public:
    WidePath(Utf8Path path) : WidePath(CP_UTF8, MB_ERR_INVALID_CHARS, path.text) {}
    WidePath(const char* path) : WidePath(CP_ACP, 0, path) {}
    operator const wchar_t*() const { return text; }

private:
    static constexpr int room = 4096;
    static constexpr DWORD longestPlain = 247; // a folder's; a file's is 259

    WidePath(UINT codePage, DWORD flags, const char* path) {
        constexpr std::wstring_view asItStands = L"\\\\?\\", sharedSo = L"\\\\?\\UNC";
        wchar_t given[room] = {}, whole[room];
        if (MultiByteToWideChar(codePage, flags, path, -1, given, room) == 0)
            given[0] = L'\0';
        const bool hasDrive = std::wstring_view(given).starts_with(asItStands) && given[4] != L'\0'
                              && given[5] == L':'; // behind the prefix
        const wchar_t* const plain = hasDrive ? given + asItStands.size() : given;
        const DWORD length = GetFullPathNameW(plain, room, whole, nullptr);
        const bool needsPrefix = length > longestPlain && length < room
                                 && !std::wstring_view(plain).starts_with(asItStands);
        if (!needsPrefix) {
            std::copy_n(plain, std::wstring_view(plain).size() + 1, text);
            return;
        }
        const bool shared = std::wstring_view(whole).starts_with(L"\\\\");
        const std::wstring_view prefix = shared ? sharedSo : asItStands;
        const auto end = std::copy(prefix.begin(), prefix.end(), text);
        std::copy_n(whole + (shared ? 1 : 0), length + 1, end);
    }

    wchar_t text[room + 8] = {}; // with the prefix
};

} // namespace kiv::platform
