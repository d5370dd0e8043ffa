#pragma once

#if defined(__SSE2__) || defined(_M_X64)
#include <xmmintrin.h>
#else
#include <cfenv>
#endif

namespace kiv::platform {

// While it lives, the calling thread rounds to nearest and no floating-point exception traps,
// whatever the host has set; then the host's settings and flags are back as they were.
class OwnFloatingPoint {
public:
    OwnFloatingPoint(const OwnFloatingPoint&) = delete;
    OwnFloatingPoint& operator=(const OwnFloatingPoint&) = delete;

#if defined(__SSE2__) || defined(_M_X64)
    // The control register alone, as all that computes here goes by it: a call into the C library
    // would cost a tenth of an update.
    OwnFloatingPoint() : ofHost(_mm_getcsr()) {
        _mm_setcsr(_MM_MASK_MASK);
    }
    ~OwnFloatingPoint() {
        _mm_setcsr(ofHost);
    }

private:
    unsigned int ofHost;
#else
    OwnFloatingPoint() {
        std::fegetenv(&ofHost);
        std::fesetenv(FE_DFL_ENV);
    }
    ~OwnFloatingPoint() {
        std::fesetenv(&ofHost);
    }

private:
    std::fenv_t ofHost;
#endif
};

} // namespace kiv::platform
