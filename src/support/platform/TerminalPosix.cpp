#include <csignal>

#include <unistd.h>

#include "support/platform/Terminal.h"

namespace kiv::platform {

bool errorIsTerminal() {
    return isatty(STDERR_FILENO) == 1;
}

bool outputIsTerminal() {
    return isatty(STDOUT_FILENO) == 1;
}

bool terminalIsOwn() {
    return false;
}

void prepareStreams() {}

void whenTerminalCloses(void (*action)(int)) {
    if (std::signal(SIGHUP, action) == SIG_IGN) // so started by nohup
        std::signal(SIGHUP, SIG_IGN);
}

} // namespace kiv::platform
