#pragma once

namespace kiv::platform {

// Standard error is shown to somebody on a terminal.
bool errorIsTerminal();

} // namespace kiv::platform
