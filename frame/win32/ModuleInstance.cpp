#include "frame/win32/ModuleInstance.h"

// The address of this function lies inside the module, whichever module it is
// linked into (the DLL, or a test program that links the core directly).
HINSTANCE OndModuleInstance() {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                           GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCSTR>(&OndModuleInstance), &module);
    return module;
}
