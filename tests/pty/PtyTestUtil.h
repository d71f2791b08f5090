// Pseudo-terminal pairs for the console programs' tests on Linux: one pair
// stands in for a serial cable (the program opens its slave side as its
// port, the test plays the device on the master side), another for the
// console a user types at (the program's standard input and output).
#pragma once

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "os/Platform.h"

// The device's end of a cable: a pty master in raw mode.
class CPtyCable {
public:
    CPtyCable() {
        m_master = posix_openpt(O_RDWR | O_NOCTTY);
        if (m_master < 0 || grantpt(m_master) != 0 || unlockpt(m_master) != 0) return;
        m_port = ptsname(m_master);
        termios tio;
        tcgetattr(m_master, &tio);
        cfmakeraw(&tio);
        tcsetattr(m_master, TCSANOW, &tio);
    }
    ~CPtyCable() {
        if (m_master >= 0) close(m_master);
    }
    CPtyCable(const CPtyCable&) = delete;
    CPtyCable& operator=(const CPtyCable&) = delete;
    int Fd() const { return m_master; }
    const std::string& Port() const { return m_port; }

private:
    int m_master = -1;
    std::string m_port;
};

// Everything that arrives on fd within ms, or up to the text `until`.
inline std::string PtyReadFor(int fd, uint32_t ms, const std::string& until = std::string()) {
    std::string got;
    uint64_t start = OsTickCount();
    while (OsTickCount() - start < ms) {
        if (!until.empty() && got.find(until) != std::string::npos) break;
        pollfd p = {fd, POLLIN, 0};
        if (poll(&p, 1, 20) <= 0) continue;
        char buffer[4096];
        ssize_t n = read(fd, buffer, sizeof buffer);
        if (n <= 0) break;
        got.append(buffer, size_t(n));
    }
    return got;
}

inline void PtyWriteAll(int fd, const std::string& text) {
    ASSERT_EQ(write(fd, text.data(), text.size()), ssize_t(text.size()));
}

// The exit status (128 + the signal for a program a signal ended); -1 when
// it did not end within ms (it is then killed).
inline int PtyWaitExit(pid_t pid, uint32_t ms) {
    uint64_t start = OsTickCount();
    int status = 0;
    while (OsTickCount() - start < ms) {
        pid_t done = waitpid(pid, &status, WNOHANG);
        if (done == pid) return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        OsSleep(10);
    }
    kill(pid, SIGKILL);
    waitpid(pid, &status, 0);
    return -1;
}

// program's argument vector, null-terminated; the strings must outlive it.
inline std::vector<const char*> PtyArgv(const char* program, const std::vector<std::string>& args) {
    std::vector<const char*> argv = {program};
    for (const std::string& a : args) argv.push_back(a.c_str());
    argv.push_back(nullptr);
    return argv;
}

// program on a console of its own (columns wide, 0: the system's default);
// *console is the console's master side, where its output and errors arrive.
inline pid_t PtyStartOnConsole(const char* program, const std::vector<std::string>& args,
                               int* console, unsigned short columns = 0) {
    std::vector<const char*> argv = PtyArgv(program, args);
    winsize size = {};
    size.ws_row = 24;
    size.ws_col = columns;
    pid_t pid = forkpty(console, nullptr, nullptr, columns ? &size : nullptr);
    if (pid == 0) {
        execv(program, const_cast<char* const*>(argv.data()));
        _exit(127);
    }
    return pid;
}
