#include <cerrno>
#include <system_error>

#include "support/platform/SystemError.h"

namespace kiv::platform {

int lastSystemError() {
    return errno;
}

void setLastSystemError(int error) {
    errno = error;
}

std::string systemErrorText(int error) {
    return std::generic_category().message(error);
}

} // namespace kiv::platform
