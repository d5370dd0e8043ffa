#include "support/platform/LastRefusal.h"

namespace kiv::platform {

LastRefusal* lastRefusal() noexcept {
    thread_local LastRefusal own{};
    return &own;
}

} // namespace kiv::platform
