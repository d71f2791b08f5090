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

namespace {

// Made on first use (a window's thread, never DllMain) and kept until the
// process ends; the operator dialogs may ask from a script's thread.
HANDLE CreateModuleActCtx() {
    ACTCTXA info = {};
    info.cbSize = sizeof info;
    info.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    info.hModule = OndModuleInstance();
    info.lpResourceName = MAKEINTRESOURCEA(2);  // a library's manifest id
    return CreateActCtxA(&info);
}

HANDLE ModuleActCtx() {
    static const HANDLE context = CreateModuleActCtx();  // thread-safe initialisation
    return context;
}

}  // namespace

COndModuleState::COndModuleState() {
    HANDLE context = ModuleActCtx();
    if (context != INVALID_HANDLE_VALUE) m_bActive = ActivateActCtx(context, &m_nCookie) != 0;
}

COndModuleState::~COndModuleState() {
    if (m_bActive) DeactivateActCtx(0, m_nCookie);
}
