// A module with the library's frame that tells the host what becomes of it. TEST_MODULE_INITIALISES
// says whether its initialisation succeeds.

#include "KIVInterface/Export.h"
#include "Record.h"
#include "support/platform/Framework.h"

namespace {

class TestApp : public CWinApp {
public:
    TestApp() { recordStep("constructed"); }

    ~TestApp() override {
        const bool left = !kiv::platform::isRegistered(*this) && !commandLine();
        recordStep(left ? "destroyed" : "destroyed, but not left");
    }

    bool InitInstance() override {
        const bool emptyCommandLine = commandLine() && !*commandLine();
        recordStep(emptyCommandLine ? "InitInstance" : "InitInstance without its command line");
        return CWinApp::InitInstance() && TEST_MODULE_INITIALISES;
    }

    int ExitInstance() override {
        recordStep(kiv::platform::isRegistered(*this) ? "ExitInstance" : "ExitInstance too late");
        return CWinApp::ExitInstance();
    }
};

TestApp theApp;

} // namespace

extern "C" KIV_API bool isModuleRegistered();

bool isModuleRegistered() {
    return kiv::platform::isRegistered(theApp);
}

#include "module/ModuleEntry.h"
