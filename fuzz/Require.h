#pragma once

#include <cstdlib>

namespace kiv::fuzz {

// Stops the fuzzer at an input for which something that always holds does not.
inline void require(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace kiv::fuzz
