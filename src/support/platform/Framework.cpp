#include "support/platform/Framework.h"

// The loader serialises all of this.
namespace {

CWinApp* theApplication = nullptr; // constant-initialised: set before any constructor runs
CWinApp* modules = nullptr;

} // namespace

CWinApp::CWinApp(const char* name) : applicationName(name) {
    theApplication = this;
}

CWinApp::~CWinApp() {
    theApplication = nullptr;
}

bool CWinApp::InitInstance() {
    return true;
}

int CWinApp::ExitInstance() {
    return 0;
}

namespace kiv::platform {

bool enterModule() {
    if (!theApplication)
        return false;
    theApplication->arguments = ""; // a module has no command line
    if (!theApplication->InitInstance()) {
        theApplication->arguments = nullptr;
        return false;
    }
    theApplication->nextModule = modules;
    modules = theApplication;
    return true;
}

void leaveModule() {
    if (!theApplication || !isRegistered(*theApplication))
        return;
    theApplication->ExitInstance();
    theApplication->arguments = nullptr;
    CWinApp** place = &modules;
    while (*place != theApplication)
        place = &(*place)->nextModule;
    *place = theApplication->nextModule;
}

bool isRegistered(const CWinApp& application) {
    for (const CWinApp* module = modules; module; module = module->nextModule)
        if (module == &application)
            return true;
    return false;
}

} // namespace kiv::platform
