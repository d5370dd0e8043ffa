#pragma once

#include <cstddef>

namespace kiv::test {

// Calls of the global operator new since the program started.
std::size_t allocationCount();

// The n-th call of operator new from now on throws std::bad_alloc once; 0 switches this off.
void failAllocation(std::size_t n);

} // namespace kiv::test
