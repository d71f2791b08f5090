// Where the module's windows find their resources: this module's instance
// handle, never the host executable's, and this module's manifest (common
// controls version 6) whatever the host's own manifest says.
#pragma once

#include <windows.h>

HINSTANCE OndModuleInstance();

// Activates the module's activation context for its lifetime, so that dialogs
// created meanwhile get the common controls the module's manifest names. Does
// nothing where the module carries no manifest (a test program that links the
// core directly).
class COndModuleState {
public:
    COndModuleState();
    ~COndModuleState();
    COndModuleState(const COndModuleState&) = delete;
    COndModuleState& operator=(const COndModuleState&) = delete;

private:
    ULONG_PTR m_nCookie = 0;
    bool m_bActive = false;
};
