#pragma once

#include <charconv>
#include <cstddef>
#include <string_view>
#include <type_traits>

#include "c/Boundary.h"
#include "support/platform/FloatingPoint.h"

// What kiv_last_error tells of the call that this thread was refused last.
namespace kiv::c {

// Puts the text together, piece by piece; what does not fit is cut off.
class RefusalText {
public:
    // The system's own number of its reason; 0 where it had no part in the refusal.
    explicit RefusalText(int systemError) noexcept;
    ~RefusalText();
    RefusalText(const RefusalText&) = delete;
    RefusalText& operator=(const RefusalText&) = delete;

    void addPath(std::string_view path) noexcept; // of a long one the end
    void add(std::string_view piece) noexcept;
    template <typename Number>
    std::enable_if_t<std::is_arithmetic_v<Number>> add(Number number) noexcept {
        char digits[32];
        const auto [end, error] = std::to_chars(digits, digits + sizeof digits, number);
        add(std::string_view(digits, static_cast<std::size_t>(end - digits)));
    }

private:
    char* text = nullptr;
    std::size_t size = 0;
    bool full = false;
};

// Gives the code, with text and numbers as the detail.
template <typename... Pieces>
int refuse(int code, const Pieces&... pieces) noexcept {
    RefusalText text(0);
    (text.add(pieces), ...);
    return code;
}

// The same behind a file's name.
template <typename... Pieces>
int refuseFile(int code, std::string_view path, const Pieces&... pieces) noexcept {
    RefusalText text(0);
    text.addPath(path);
    (text.add(pieces), ...);
    return code;
}

// A pointer that an argument gives; it may be null where it is to an array of no elements.
struct Given {
    const char* name;
    bool missing;

    template <typename T>
    constexpr Given(const char* argument, T* pointer, std::size_t count = 1)
        : name(argument), missing(!pointer && count > 0) {}
};

// 0, or the refusal of the first pointer that is missing.
template <std::size_t count>
int refuseNull(const Given (&pointers)[count]) noexcept {
    for (const Given& pointer : pointers)
        if (pointer.missing)
            return refuse(KIV_STATUS_BAD_ARGUMENT, pointer.name,
                          ": expected a pointer, found null");
    return KIV_STATUS_OK;
}

inline int refuseMemory() noexcept {
    return refuse(KIV_STATUS_NO_MEMORY, "the system has no more memory for this call");
}

// Runs a body that gives a status code. What it throws is memory, or another resource of the
// system, that was refused.
template <std::size_t count, typename Body>
int guarded(const Given (&pointers)[count], Body body) noexcept {
    if (const int code = refuseNull(pointers))
        return code;
    const platform::OwnFloatingPoint floatingPoint;
    try {
        return body();
    } catch (...) {
        return refuseMemory();
    }
}

inline int refuseUnloaded() noexcept {
    return refuse(KIV_STATUS_NOT_LOADED, "parameters: expected a file to be loaded, found none");
}

} // namespace kiv::c
