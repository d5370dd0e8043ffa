#pragma once

#include <chrono>

namespace kiv::platform {

// Tests set it: it is called in place of waiting.
extern void (*waitInstead)(std::chrono::milliseconds);

void wait(std::chrono::milliseconds duration);

} // namespace kiv::platform
