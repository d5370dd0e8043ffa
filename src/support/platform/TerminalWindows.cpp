#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <io.h>
#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include "support/platform/Terminal.h"

// The runtime's start asks this: * and ? in arguments become the names that they fit, as no shell
// here does it.
extern "C" {
int _dowildcard = -1;
}

namespace kiv::platform {

namespace {

void (*onClose)(int) = nullptr;

UINT codePageBefore = 0; // of the console; 0 where there is none

void restoreCodePage() {
    if (codePageBefore != 0)
        SetConsoleOutputCP(codePageBefore);
}

// The runtime's own handler would forget a signal's action before it calls it, so that the next one
// ended the process in the midst of its work.
BOOL WINAPI onConsoleEvent(DWORD event) {
    if (event != CTRL_LOGOFF_EVENT)
        restoreCodePage(); // the action may end the process at once
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

} // namespace

bool errorIsTerminal() {
    const HANDLE error = GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode;
    return GetConsoleMode(error, &mode)
           && SetConsoleMode(error, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

// The null device passes for a terminal with the runtime.
bool outputIsTerminal() {
    DWORD mode;
    return GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) != 0;
}

bool terminalIsOwn() {
    DWORD processes[2];
    return GetConsoleProcessList(processes, 2) == 1;
}

void prepareStreams() {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    codePageBefore = GetConsoleOutputCP();
    if (codePageBefore != 0 && SetConsoleOutputCP(CP_UTF8))
        std::atexit(restoreCodePage);
}

void whenTerminalCloses(void (*action)(int)) {
    onClose = action;
    SetConsoleCtrlHandler(onConsoleEvent, TRUE);
}

} // namespace kiv::platform
