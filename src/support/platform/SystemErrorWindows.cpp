#include <cwchar>
#include <iterator>

#include "support/platform/SystemError.h"
#include "support/platform/WideText.h"

namespace kiv::platform {

int lastSystemError() {
    return static_cast<int>(GetLastError());
}

void setLastSystemError(int error) {
    SetLastError(static_cast<DWORD>(error));
}

bool meansMissing(int error) {
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

std::string systemErrorText(int error) {
    if (error == 0)
        return "the system gives no reason";
    wchar_t wide[512];
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                  nullptr, static_cast<DWORD>(error), 0, wide,
                                  static_cast<DWORD>(std::size(wide)), nullptr);
    while (length > 0 && std::wcschr(L"\r\n. ", wide[length - 1]))
        --length;
    const std::string text = utf8Of({wide, length});
    return text.empty() ? "error " + std::to_string(error) + " of the system" : text;
}

} // namespace kiv::platform
