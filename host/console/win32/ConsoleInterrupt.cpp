#include "host/console/ConsoleInterrupt.h"

#include <windows.h>

namespace {

CConsoleInterrupt g_interrupt;
volatile LONG g_interrupts = 0;
bool g_watching = false;

// Runs on a thread of its own that the system starts for the event.
BOOL WINAPI OnConsoleEvent(DWORD event) {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
    if (InterlockedIncrement(&g_interrupts) > 1) return FALSE;  // the default: end the program
    g_interrupt.Call();
    return TRUE;
}

}  // namespace

void ConsoleStopOnInterrupt(void (*stop)(void*), void* context) {
    g_interrupt.Set(stop, context);
    if (g_watching || !stop) return;
    g_watching = true;
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}
