#pragma once

#include <gtest/gtest.h>
#if defined(__SSE2__)
#include <xmmintrin.h>
#else
#include <cfenv>
#endif

namespace kiv::test {

// A host that rounds upward, has a flag raised, and traps on every floating-point exception, as
// some compilers' programs do from their start; it finds all of that again. Not every ARM processor
// can trap.
class TrappingHost {
public:
#if defined(__SSE2__)
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
#else
    TrappingHost() {
        std::fegetenv(&before);
        std::fesetround(FE_UPWARD);
        std::feraiseexcept(FE_INEXACT);
    }
    ~TrappingHost() {
        EXPECT_EQ(std::fegetround(), FE_UPWARD);
        EXPECT_TRUE(std::fetestexcept(FE_INEXACT));
        std::fesetenv(&before);
    }

private:
    std::fenv_t before;
#endif
};

} // namespace kiv::test
