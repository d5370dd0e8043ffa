#include <csignal>

#include <io.h>
#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include "support/platform/Terminal.h"

namespace kiv::platform {

namespace {

void (*onClose)(int) = nullptr;

// Returning would end the process at once.
BOOL WINAPI onConsoleEvent(DWORD event) {
    if (event == CTRL_C_EVENT) // a signal
        return FALSE;
    onClose(SIGTERM);
    Sleep(INFINITE);
    return TRUE;
}

} // namespace

bool errorIsTerminal() {
    constexpr int standardError = 2;
    return _isatty(standardError) != 0;
}

bool outputIsTerminal() {
    constexpr int standardOutput = 1;
    return _isatty(standardOutput) != 0;
}

void whenTerminalCloses(void (*action)(int)) {
    onClose = action;
    SetConsoleCtrlHandler(onConsoleEvent, TRUE);
}

} // namespace kiv::platform
