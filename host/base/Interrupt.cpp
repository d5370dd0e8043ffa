#include "host/base/Interrupt.h"

#include <atomic>
#include <csignal>
#include <cstdlib>

#include "host/base/Cli.h"
#include "support/platform/Terminal.h"

namespace kiv::host {

namespace {

std::atomic<bool> requestedByUser{false};
std::atomic<bool> waiting{false};
static_assert(std::atomic<bool>::is_always_lock_free, "used in a signal handler");

extern "C" void onInterrupt(int) {
    requestedByUser = true;
    if (waiting)
        std::_Exit(interrupted);
}

} // namespace

void Interrupt::install() {
    std::signal(SIGINT, onInterrupt);
    std::signal(SIGTERM, onInterrupt);
    platform::whenTerminalCloses(onInterrupt);
#ifdef SIGPIPE
    std::signal(SIGPIPE, SIG_IGN);
#endif
}

bool Interrupt::requested() {
    return requestedByUser;
}

Interrupt::Waiting::Waiting(bool willWait) : before(waiting) {
    waiting = before || willWait;
    if (waiting && requestedByUser)
        std::_Exit(interrupted);
}

Interrupt::Waiting::~Waiting() {
    waiting = before;
}

} // namespace kiv::host
