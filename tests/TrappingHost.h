#pragma once

#include <gtest/gtest.h>
#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace kiv::test {

// A host that rounds upward, has a flag raised, and traps on every floating-point exception, as
// some compilers' programs do from their start; it finds all of that again.
class TrappingHost {
#if defined(__SSE2__)
public:
    TrappingHost() {
        _mm_setcsr(ofHost);
    }
    ~TrappingHost() {
        const unsigned int left = _mm_getcsr();
        _mm_setcsr(before);
        EXPECT_EQ(left, ofHost);
    }

private:
    static constexpr unsigned int ofHost = _MM_ROUND_UP | _MM_EXCEPT_INEXACT; // none masked
    const unsigned int before = _mm_getcsr();
#endif
};

} // namespace kiv::test
