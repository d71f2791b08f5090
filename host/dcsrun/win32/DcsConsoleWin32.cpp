#include <fcntl.h>
#include <io.h>
#include <stdio.h>
#include <windows.h>

#include "host/dcsrun/DcsConsole.h"
#include "host/dcsrun/DcsInterrupt.h"

namespace {

CDcsInterrupt g_interrupt;
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

// Without this the C runtime writes "\r\n" for every "\n" of the script.
void DcsBinaryOutput() {
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
}

void DcsStopOnInterrupt(void (*stop)(void*), void* context) {
    g_interrupt.Set(stop, context);
    if (g_watching || !stop) return;
    g_watching = true;
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}
