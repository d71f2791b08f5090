// Keys from a tty: raw input (no echo, no line editing, no signals), output
// left as it is. Up and Down arrive as the escape sequences ESC [ A / ESC O A
// (and B); an ESC that no '[' or 'O' follows within 30 ms is Escape itself.
#include "host/console/ConsoleKeys.h"

#include <poll.h>
#include <signal.h>
#include <termios.h>
#include <unistd.h>

namespace {

termios g_saved;
volatile sig_atomic_t g_saved_valid = 0;
const int kEndingSignals[] = {SIGTERM, SIGHUP, SIGQUIT};
struct sigaction g_before[3];  // the actions the raw mode replaced

// A signal that ends the program leaves the tty as it found it.
void RestoreAndDie(int sig) {
    if (g_saved_valid) tcsetattr(STDIN_FILENO, TCSANOW, &g_saved);
    signal(sig, SIG_DFL);
    raise(sig);
}

// One byte within timeoutMs: 1, 0 (none), -1 (end of input or error).
int ReadByte(uint32_t timeoutMs, unsigned char* byte) {
    pollfd p = {STDIN_FILENO, POLLIN, 0};
    if (poll(&p, 1, static_cast<int>(timeoutMs)) <= 0) return 0;  // also EINTR
    ssize_t n = read(STDIN_FILENO, byte, 1);
    return n == 1 ? 1 : -1;
}

}  // namespace

bool CConsoleKeys::Start() {
    if (m_started) return true;
    if (!isatty(STDIN_FILENO) || tcgetattr(STDIN_FILENO, &g_saved) != 0) return false;
    g_saved_valid = 1;
    termios raw = g_saved;
    raw.c_iflag &= ~static_cast<tcflag_t>(IXON | ICRNL | INLCR | IGNCR | ISTRIP | BRKINT);
    raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ISIG | IEXTEN);
    raw.c_cc[VMIN] = 1;
    raw.c_cc[VTIME] = 0;
    if (tcsetattr(STDIN_FILENO, TCSANOW, &raw) != 0) return false;
    // Only where the signal would end the program: an ignored one (nohup)
    // stays ignored, a handler of the program's own stays.
    for (int i = 0; i < 3; ++i) {
        if (sigaction(kEndingSignals[i], nullptr, &g_before[i]) != 0 ||
            g_before[i].sa_handler != SIG_DFL)
            continue;
        struct sigaction restore = {};
        restore.sa_handler = RestoreAndDie;
        sigemptyset(&restore.sa_mask);
        sigaction(kEndingSignals[i], &restore, nullptr);
    }
    m_started = true;
    return true;
}

void CConsoleKeys::Stop() {
    if (!m_started) return;
    for (int i = 0; i < 3; ++i)
        if (g_before[i].sa_handler == SIG_DFL) sigaction(kEndingSignals[i], &g_before[i], nullptr);
    tcsetattr(STDIN_FILENO, TCSANOW, &g_saved);
    g_saved_valid = 0;
    m_started = false;
}

ECONSOLEKEY CConsoleKeys::Read(uint32_t timeoutMs, char* ch) {
    unsigned char byte;
    int got = ReadByte(timeoutMs, &byte);
    if (got < 0) return CONSOLEKEY_END;
    if (got == 0) return CONSOLEKEY_NONE;
    switch (byte) {
    case '\r':
    case '\n': return CONSOLEKEY_ENTER;
    case 0x7F:
    case 0x08: return CONSOLEKEY_BACKSPACE;
    case 0x03: return CONSOLEKEY_INTERRUPT;
    case 0x04: return CONSOLEKEY_END;
    case 0x1B: {
        unsigned char next;
        if (ReadByte(30, &next) != 1) return CONSOLEKEY_ESCAPE;
        if (next != '[' && next != 'O') return CONSOLEKEY_NONE;  // Alt+key: ignored
        // The sequence's parameters, then its final byte (0x40..0x7E).
        unsigned char final = 0;
        for (int i = 0; i < 16 && ReadByte(30, &final) == 1; ++i)
            if (final >= 0x40 && final <= 0x7E) break;
        if (final == 'A') return CONSOLEKEY_UP;
        if (final == 'B') return CONSOLEKEY_DOWN;
        return CONSOLEKEY_NONE;  // other keys (Left, Home, F1, ...) do nothing
    }
    }
    if (byte < 0x20) return CONSOLEKEY_NONE;  // other control keys do nothing
    *ch = static_cast<char>(byte);
    return CONSOLEKEY_CHAR;
}
