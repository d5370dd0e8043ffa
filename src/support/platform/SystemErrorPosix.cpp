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

bool meansMissing(int error) {
    return error == ENOENT;
}

std::string systemErrorText(int error) {
    return error == 0 ? "the system gives no reason" : std::generic_category().message(error);
}

} // namespace kiv::platform
