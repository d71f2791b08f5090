// dcsterm on Linux through pseudo-terminal pairs: one pair stands in for the
// serial cable (dcsterm opens its slave side as its serial port, the test
// plays the device on the master side), another for the console a user types
// at (dcsterm's standard input and output, so it runs interactively).
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

namespace {

// The device's end of a cable: a pty master in raw mode.
class CCable {
public:
    CCable() {
        m_master = posix_openpt(O_RDWR | O_NOCTTY);
        if (m_master < 0 || grantpt(m_master) != 0 || unlockpt(m_master) != 0) return;
        m_port = ptsname(m_master);
        termios tio;
        tcgetattr(m_master, &tio);
        cfmakeraw(&tio);
        tcsetattr(m_master, TCSANOW, &tio);
    }
    ~CCable() {
        if (m_master >= 0) close(m_master);
    }
    int Fd() const { return m_master; }
    const std::string& Port() const { return m_port; }

private:
    int m_master = -1;
    std::string m_port;
};

// Everything that arrives on fd within ms, or up to the text `until`.
std::string ReadFor(int fd, uint32_t ms, const std::string& until = std::string()) {
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

void WriteAll(int fd, const std::string& text) {
    ASSERT_EQ(write(fd, text.data(), text.size()), ssize_t(text.size()));
}

int WaitExit(pid_t pid, uint32_t ms) {
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

std::vector<const char*> Argv(const std::vector<std::string>& args) {
    std::vector<const char*> argv = {DCSTERM_PATH};
    for (const std::string& a : args) argv.push_back(a.c_str());
    argv.push_back(nullptr);
    return argv;
}

// dcsterm on a console of its own; *console is the console's master side.
pid_t StartOnConsole(const std::vector<std::string>& args, int* console) {
    std::vector<const char*> argv = Argv(args);
    pid_t pid = forkpty(console, nullptr, nullptr, nullptr);
    if (pid == 0) {
        execv(DCSTERM_PATH, const_cast<char* const*>(argv.data()));
        _exit(127);
    }
    return pid;
}

// dcsterm with pipes for standard input and output.
pid_t StartPiped(const std::vector<std::string>& args, int* input, int* output) {
    int in[2], out[2];
    if (pipe(in) != 0 || pipe(out) != 0) return -1;
    std::vector<const char*> argv = Argv(args);
    pid_t pid = fork();
    if (pid == 0) {
        dup2(in[0], 0);
        dup2(out[1], 1);
        close(in[0]), close(in[1]), close(out[0]), close(out[1]);
        execv(DCSTERM_PATH, const_cast<char* const*>(argv.data()));
        _exit(127);
    }
    close(in[0]);
    close(out[1]);
    *input = in[1];
    *output = out[0];
    return pid;
}

TEST(DcstermPty, TypedLinesHistoryAndAnswersOnAConsole) {
    CCable cable;
    ASSERT_FALSE(cable.Port().empty());
    int console = -1;
    pid_t pid = StartOnConsole({"--device", "serial:" + cable.Port() + ":57600"}, &console);
    ASSERT_GT(pid, 0);
    EXPECT_NE(ReadFor(console, 5000, "> ").find("> "), std::string::npos);  // the input row

    WriteAll(console, "hello\\(33)\r");
    EXPECT_EQ(ReadFor(cable.Fd(), 5000, "\r"), "hello!\r");
    WriteAll(cable.Fd(), "OK 1\r\n");
    EXPECT_NE(ReadFor(console, 5000, "OK 1").find("OK 1"), std::string::npos);

    // Up brings the last line back, Enter sends it again; Down after a send
    // shows the first line (the same here); Escape empties the line.
    WriteAll(console, "second\r");
    EXPECT_EQ(ReadFor(cable.Fd(), 5000, "\r"), "second\r");
    WriteAll(console, "\x1b[A\x1b[A\r");
    EXPECT_EQ(ReadFor(cable.Fd(), 5000, "\r"), "hello!\r");
    WriteAll(console, "\x1b[B\r");
    EXPECT_EQ(ReadFor(cable.Fd(), 5000, "\r"), "hello!\r");
    WriteAll(console, "junk");
    OsSleep(100);  // a lone ESC is told from a sequence by a pause
    WriteAll(console, "\x1b");
    OsSleep(100);
    WriteAll(console, "x\r");
    EXPECT_EQ(ReadFor(cable.Fd(), 5000, "\r"), "x\r");

    // A bad escape: the message, nothing sent, the text kept for mending.
    ReadFor(console, 200);
    WriteAll(console, "a\\q\r");
    EXPECT_NE(ReadFor(console, 5000, "\".").find("Invalid ESC sequence \"\\q\"."), std::string::npos);
    EXPECT_EQ(ReadFor(cable.Fd(), 300), "");
    WriteAll(console, "\x7f" "b\r");  // Backspace: "a\" and "b", the escape \b
    EXPECT_EQ(ReadFor(cable.Fd(), 5000, "\r"), "a\x0b\r");

    // Ctrl+D on an empty line ends dcsterm.
    WriteAll(console, "\x04");
    EXPECT_EQ(WaitExit(pid, 5000), 0);
    close(console);
}

TEST(DcstermPty, AOneShotQueryFromAPipeThroughTheSerialChannel) {
    CCable cable;
    int input = -1, output = -1;
    pid_t pid = StartPiped({"--device", "serial:" + cable.Port(), "--idle", "300"}, &input, &output);
    ASSERT_GT(pid, 0);
    WriteAll(input, "ver\n");
    close(input);
    EXPECT_EQ(ReadFor(cable.Fd(), 5000, "\r"), "ver\r");
    WriteAll(cable.Fd(), "version 1.0\r\nready\r\n");
    EXPECT_EQ(ReadFor(output, 5000, "ready\n"), "version 1.0\nready\n");
    EXPECT_EQ(WaitExit(pid, 5000), 0);
    close(output);
}

// Resident memory of a process, in KiB.
long RssKiB(pid_t pid) {
    std::string path = "/proc/" + std::to_string(pid) + "/status";
    FILE* f = fopen(path.c_str(), "r");
    if (!f) return -1;
    char line[256];
    long kib = -1;
    while (fgets(line, sizeof line, f))
        if (sscanf(line, "VmRSS: %ld kB", &kib) == 1) break;
    fclose(f);
    return kib;
}

// A device that never stops: dcsterm keeps up and its memory stays flat.
TEST(DcstermPty, ADeviceThatNeverStopsTalkingDoesNotGrowMemory) {
    int input = -1, output = -1;
    pid_t pid = StartPiped({"--sim-talk", "0"}, &input, &output);
    ASSERT_GT(pid, 0);
    uint64_t bytes = 0, start = OsTickCount();
    long early = -1;
    std::string buffer(1 << 16, '\0');
    while (OsTickCount() - start < 3000) {
        ssize_t n = read(output, &buffer[0], buffer.size());
        if (n <= 0) break;
        bytes += uint64_t(n);
        if (early < 0 && OsTickCount() - start >= 1000) early = RssKiB(pid);
    }
    long late = RssKiB(pid);
    double seconds = (OsTickCount() - start) / 1000.0;
    std::printf("dcsterm under a device that never stops: %.1f MB/s printed, RSS %ld KiB after 1 s, "
                "%ld KiB after %.0f s\n", bytes / 1e6 / seconds, early, late, seconds);
    EXPECT_GT(bytes, 1000000u);
    EXPECT_GT(early, 0);
#if !defined(__SANITIZE_ADDRESS__)
    // (AddressSanitizer keeps freed memory in quarantine: not a measure there.)
    EXPECT_LT(late - early, 2048);
#endif
    kill(pid, SIGTERM);
    WaitExit(pid, 5000);
    close(input);
    close(output);
}

}  // namespace
