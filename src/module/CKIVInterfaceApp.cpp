#include "module/CKIVInterfaceApp.h"

CKIVInterfaceApp::CKIVInterfaceApp() : CWinApp(nullptr) {}

bool CKIVInterfaceApp::InitInstance() {
    CWinApp::InitInstance();
    return true;
}

namespace {

CKIVInterfaceApp theApp;

} // namespace

#include "module/ModuleEntry.h"
