#include <csignal>
#include <cstdio>

#include <fcntl.h>
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

// The runtime's own handler would forget a signal's action before it calls it, so that the next one
// ended the process in the midst of its work.
BOOL WINAPI onConsoleEvent(DWORD event) {
    switch (event) {
    case CTRL_C_EVENT:
    case CTRL_BREAK_EVENT:
        onClose(SIGINT);
        return TRUE;
    case CTRL_LOGOFF_EVENT: // of any user, to a service
        return TRUE;
    default:
        onClose(SIGTERM);
        Sleep(INFINITE); // returning would end the process at once
        return TRUE;
    }
}

// The null device passes for a terminal with the runtime.
bool isConsole(DWORD stream) {
    DWORD mode;
    return GetConsoleMode(GetStdHandle(stream), &mode) != 0;
}

} // namespace

bool errorIsTerminal() {
    return isConsole(STD_ERROR_HANDLE);
}

bool outputIsTerminal() {
    return isConsole(STD_OUTPUT_HANDLE);
}

void makeStreamsBinary() {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
}

void whenTerminalCloses(void (*action)(int)) {
    onClose = action;
    SetConsoleCtrlHandler(onConsoleEvent, TRUE);
}

} // namespace kiv::platform
