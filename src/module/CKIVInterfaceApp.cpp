#include "module/CKIVInterfaceApp.h"

CKIVInterfaceApp::CKIVInterfaceApp() : CWinApp(nullptr) {}

bool CKIVInterfaceApp::InitInstance() {
    CWinApp::InitInstance();
    return true;
}

namespace {

CKIVInterfaceApp theApp;

} // namespace

#ifdef KIV_STATIC // no loader enters
#include "KIVInterface/Module.h"

bool kiv::enterModule() {
    return platform::isRegistered(theApp) || platform::enterModule();
}

void kiv::leaveModule() {
    platform::leaveModule();
}
#else
#include "module/ModuleEntry.h"
#endif
