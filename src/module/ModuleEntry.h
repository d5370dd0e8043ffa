#pragma once

// Included once, at the end of the file that defines a module's application object: where the
// loader enters and leaves the module.

#include "support/platform/Framework.h"

#ifdef _WIN32

#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID);

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH)
        return kiv::platform::enterModule() ? TRUE : FALSE;
    if (reason == DLL_PROCESS_DETACH)
        kiv::platform::leaveModule();
    return TRUE;
}

#else

namespace {

// Constructed behind the application object of this file and destroyed before it. A constructor
// cannot refuse a load: a module that fails to initialise stays unwound and out of the list.
const struct ModuleEntry {
    ModuleEntry() { kiv::platform::enterModule(); }
    ~ModuleEntry() { kiv::platform::leaveModule(); }
} moduleEntry;

} // namespace

#endif
