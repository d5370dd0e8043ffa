#include <unistd.h>

#include "support/platform/Terminal.h"

namespace kiv::platform {

bool errorIsTerminal() {
    return isatty(STDERR_FILENO) == 1;
}

bool outputIsTerminal() {
    return isatty(STDOUT_FILENO) == 1;
}

} // namespace kiv::platform
