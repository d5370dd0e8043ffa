#include "support/platform/Clock.h"

#include <thread>

namespace kiv::platform {

void (*waitInstead)(std::chrono::milliseconds) = nullptr;

void wait(std::chrono::milliseconds duration) {
    if (waitInstead)
        waitInstead(duration);
    else
        std::this_thread::sleep_for(duration);
}

} // namespace kiv::platform
