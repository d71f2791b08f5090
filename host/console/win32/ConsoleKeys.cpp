// Keys from the Windows console: its key events, read without echo.
#include "host/console/ConsoleKeys.h"

#include <windows.h>

namespace {
DWORD g_savedMode = 0;
}  // namespace

bool CConsoleKeys::Start() {
    if (m_started) return true;
    HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    if (!GetConsoleMode(input, &g_savedMode)) return false;
    // No line input, no echo; Ctrl+C arrives as a key.
    if (!SetConsoleMode(input, g_savedMode & ~DWORD(ENABLE_LINE_INPUT | ENABLE_ECHO_INPUT |
                                                    ENABLE_PROCESSED_INPUT)))
        return false;
    m_started = true;
    return true;
}

void CConsoleKeys::Stop() {
    if (!m_started) return;
    SetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), g_savedMode);
    m_started = false;
}

ECONSOLEKEY CConsoleKeys::Read(uint32_t timeoutMs, char* ch) {
    HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD start = GetTickCount();
    for (;;) {
        DWORD spent = GetTickCount() - start;
        if (spent > timeoutMs) return CONSOLEKEY_NONE;
        DWORD woke = WaitForSingleObject(input, timeoutMs - spent);
        if (woke == WAIT_TIMEOUT) return CONSOLEKEY_NONE;
        if (woke != WAIT_OBJECT_0) return CONSOLEKEY_END;
        INPUT_RECORD record;
        DWORD count = 0;
        if (!ReadConsoleInputA(input, &record, 1, &count)) return CONSOLEKEY_END;
        if (count != 1 || record.EventType != KEY_EVENT || !record.Event.KeyEvent.bKeyDown) continue;
        const KEY_EVENT_RECORD& key = record.Event.KeyEvent;
        switch (key.wVirtualKeyCode) {
        case VK_RETURN: return CONSOLEKEY_ENTER;
        case VK_BACK: return CONSOLEKEY_BACKSPACE;
        case VK_UP: return CONSOLEKEY_UP;
        case VK_DOWN: return CONSOLEKEY_DOWN;
        case VK_ESCAPE: return CONSOLEKEY_ESCAPE;
        }
        unsigned char c = static_cast<unsigned char>(key.uChar.AsciiChar);
        if (c == 0x03) return CONSOLEKEY_INTERRUPT;
        if (c == 0x1A || c == 0x04) return CONSOLEKEY_END;
        if (c >= 0x20 && c != 0x7F) {
            *ch = static_cast<char>(c);
            return CONSOLEKEY_CHAR;
        }
    }
}
