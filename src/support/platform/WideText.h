#pragma once

#include <string>
#include <string_view>

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace kiv::platform {

// In UTF-8, of at most 4 096 characters; empty where there is none, or it does not fit.
inline std::string utf8Of(std::wstring_view wide) {
    char text[3 * 4096]; // a character takes three bytes at most
    const int size = WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()),
                                         text, int{sizeof text}, nullptr, nullptr);
    return {text, static_cast<std::size_t>(size)};
}

} // namespace kiv::platform
