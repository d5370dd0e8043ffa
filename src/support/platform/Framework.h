#pragma once

// The part of an application framework that a loadable module needs: an application object and the
// list of modules that are loaded. One copy lives in every module that is built with it.

class CWinApp;

namespace kiv::platform {

// What the loader's entry and exit do, in this order: the application object has been constructed
// before enterModule and is destroyed after leaveModule.
//
// Initialises the framework for this module, runs the application's InitInstance, and puts the
// module into the list. False, and everything unwound, when InitInstance fails.
bool enterModule();
// Runs ExitInstance, terminates the framework for this module, and takes it out of the list. Does
// nothing for a module that is not in the list.
void leaveModule();

bool isRegistered(const CWinApp& application);

} // namespace kiv::platform

// The application object of a module; each module has exactly one, a global.
class CWinApp {
public:
    explicit CWinApp(const char* name = nullptr);
    CWinApp(const CWinApp&) = delete;
    CWinApp& operator=(const CWinApp&) = delete;
    virtual ~CWinApp();

    virtual bool InitInstance(); // true: initialised
    virtual int ExitInstance();  // an exit code

    const char* name() const { return applicationName; }
    const char* commandLine() const { return arguments; } // null until the module is entered

private:
    friend bool kiv::platform::enterModule();
    friend void kiv::platform::leaveModule();
    friend bool kiv::platform::isRegistered(const CWinApp& application);

    const char* applicationName;
    const char* arguments = nullptr;
    CWinApp* nextModule = nullptr; // in the list of modules
};
