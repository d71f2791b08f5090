// Stack bounds of the calling thread on Windows.
#include <windows.h>

#include "script/ScriptStack.h"

uintptr_t ScriptStackLowLimit() {
    // GetCurrentThreadStackLimits is Windows 8 and later: look it up rather than link it.
    typedef VOID(WINAPI * TGetLimits)(PULONG_PTR, PULONG_PTR);
    static TGetLimits getLimits = reinterpret_cast<TGetLimits>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleA("kernel32.dll"), "GetCurrentThreadStackLimits")));
    ULONG_PTR low = 0, high = 0;
    if (getLimits) {
        getLimits(&low, &high);
    } else {
        // The reservation's base, from the thread's own stack region.
        MEMORY_BASIC_INFORMATION info;
        if (!VirtualQuery(&info, &info, sizeof info)) return 0;
        low = (ULONG_PTR)info.AllocationBase;
    }
    if (low == 0) return 0;
    // The lowest pages are the guard page and the overflow reserve: never usable.
    return (uintptr_t)low + 3 * 4096;
}
