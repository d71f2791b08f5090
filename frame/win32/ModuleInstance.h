// The module's own instance handle: dialog templates and icons are looked up
// there, never in the host executable.
#pragma once

#include <windows.h>

HINSTANCE OndModuleInstance();
