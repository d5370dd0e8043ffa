#pragma once

#include "support/platform/Framework.h"

// The library's application object; it has no data of its own.
class CKIVInterfaceApp : public CWinApp {
public:
    CKIVInterfaceApp();

    bool InitInstance() override;
};
