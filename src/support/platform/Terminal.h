#pragma once

namespace kiv::platform {

// Standard error, or standard output, is shown to somebody on a terminal.
bool errorIsTerminal();
bool outputIsTerminal();

} // namespace kiv::platform
