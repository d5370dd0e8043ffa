#pragma once

#include <string>

namespace kiv::platform {

// The system's own number of the reason why it refused the calling thread's last call to it: errno,
// or that of GetLastError.
int lastSystemError();
void setLastSystemError(int error);

// There is no such file or folder.
bool meansMissing(int error);

// In the system's words, in UTF-8, without a full stop: "Permission denied"; of 0 that it
// gives no reason.
std::string systemErrorText(int error);

} // namespace kiv::platform
