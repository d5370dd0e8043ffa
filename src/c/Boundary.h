#pragma once

#include <cstddef>
#include <limits>
#include <utility>

// Everything that is declared here is exported; on Windows kiv.def says so.
#if defined(__GNUC__)
#pragma GCC visibility push(default)
#endif
#include "kiv.h"
#if defined(__GNUC__)
#pragma GCC visibility pop
#endif

// Here the library meets a host that knows no exceptions.
namespace kiv::c {

// Runs a body that gives a status code. What it throws is memory, or another resource of the
// system, that was refused.
template <typename Body>
int guarded(Body body) noexcept {
    try {
        return body();
    } catch (...) {
        return KIV_STATUS_NO_MEMORY;
    }
}

inline bool fitsInt(std::size_t count) {
    return count <= static_cast<std::size_t>(std::numeric_limits<int>::max());
}

} // namespace kiv::c
