#include <io.h>

#include "support/platform/Terminal.h"

namespace kiv::platform {

bool errorIsTerminal() {
    constexpr int standardError = 2;
    return _isatty(standardError) != 0;
}

bool outputIsTerminal() {
    constexpr int standardOutput = 1;
    return _isatty(standardOutput) != 0;
}

} // namespace kiv::platform
