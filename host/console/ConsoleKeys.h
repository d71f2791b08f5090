// Keys from an interactive console, one at a time and without echo, for a
// line editor of the program's own (dcsterm's input line with its history).
// One implementation per platform (posix/: a tty in raw mode and its escape
// sequences; win32/: the console's key events).
#pragma once

#include <cstdint>

enum ECONSOLEKEY {
    CONSOLEKEY_NONE,       // nothing within the time-out
    CONSOLEKEY_CHAR,       // a character to insert: *ch
    CONSOLEKEY_ENTER,
    CONSOLEKEY_BACKSPACE,
    CONSOLEKEY_UP,
    CONSOLEKEY_DOWN,
    CONSOLEKEY_ESCAPE,
    CONSOLEKEY_INTERRUPT,  // Ctrl+C
    CONSOLEKEY_END,        // Ctrl+D (Ctrl+Z on Windows), or the console went away
};

class CConsoleKeys {
public:
    CConsoleKeys() = default;
    CConsoleKeys(const CConsoleKeys&) = delete;
    CConsoleKeys& operator=(const CConsoleKeys&) = delete;
    ~CConsoleKeys() { Stop(); }

    // Puts standard input into key-at-a-time mode; false when it is no console.
    bool Start();
    // Gives the console its settings back (also on destruction).
    void Stop();
    // The next key, waiting up to timeoutMs.
    ECONSOLEKEY Read(uint32_t timeoutMs, char* ch);

private:
    bool m_started = false;
};
