// The library's entry. It runs under the loader lock, so it only records
// what it needs and installs the thread's message hook: no waiting, no
// loading of libraries, no windows. user32 is imported statically and so is
// initialised before we are; a hook for the current thread with no module
// handle injects nothing. Resources and the activation context are looked up
// later, on first use.
#include <windows.h>

#include "frame/win32/App.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved) {
    switch (reason) {
        case DLL_PROCESS_ATTACH:
            DisableThreadLibraryCalls(instance);
            OndApp().Start();
            break;
        case DLL_PROCESS_DETACH:
            // reserved is non-null when the process is ending.
            OndApp().Stop(reserved != nullptr);
            break;
    }
    return TRUE;
}
