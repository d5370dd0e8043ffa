#pragma once

#include <chrono>

namespace kiv::platform {

// For tests: called in place of waiting, when it is set.
extern void (*waitInstead)(std::chrono::milliseconds);

void wait(std::chrono::milliseconds duration);

} // namespace kiv::platform
