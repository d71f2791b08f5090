// dcsterm on Linux through pseudo-terminal pairs: one pair stands in for the
// serial cable (dcsterm opens its slave side as its serial port, the test
// plays the device on the master side), another for the console a user types
// at (dcsterm's standard input and output, so it runs interactively).
#include <string>
#include <vector>

#include "tests/pty/PtyTestUtil.h"

namespace {

// dcsterm with pipes for standard input and output.
pid_t StartPiped(const std::vector<std::string>& args, int* input, int* output) {
    int in[2], out[2];
    if (pipe(in) != 0 || pipe(out) != 0) return -1;
    std::vector<const char*> argv = PtyArgv(DCSTERM_PATH, args);
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
    CPtyCable cable;
    ASSERT_FALSE(cable.Port().empty());
    int console = -1;
    pid_t pid =
        PtyStartOnConsole(DCSTERM_PATH, {"--device", "serial:" + cable.Port() + ":57600"}, &console);
    ASSERT_GT(pid, 0);
    EXPECT_NE(PtyReadFor(console, 5000, "> ").find("> "), std::string::npos);  // the input row

    PtyWriteAll(console, "hello\\(33)\r");
    EXPECT_EQ(PtyReadFor(cable.Fd(), 5000, "\r"), "hello!\r");
    PtyWriteAll(cable.Fd(), "OK 1\r\n");
    EXPECT_NE(PtyReadFor(console, 5000, "OK 1").find("OK 1"), std::string::npos);

    // Up brings the last line back, Enter sends it again; Down after a send
    // shows the first line (the same here); Escape empties the line.
    PtyWriteAll(console, "second\r");
    EXPECT_EQ(PtyReadFor(cable.Fd(), 5000, "\r"), "second\r");
    PtyWriteAll(console, "\x1b[A\x1b[A\r");
    EXPECT_EQ(PtyReadFor(cable.Fd(), 5000, "\r"), "hello!\r");
    PtyWriteAll(console, "\x1b[B\r");
    EXPECT_EQ(PtyReadFor(cable.Fd(), 5000, "\r"), "hello!\r");
    PtyWriteAll(console, "junk");
    OsSleep(100);  // a lone ESC is told from a sequence by a pause
    PtyWriteAll(console, "\x1b");
    OsSleep(100);
    PtyWriteAll(console, "x\r");
    EXPECT_EQ(PtyReadFor(cable.Fd(), 5000, "\r"), "x\r");

    // A bad escape: the message, nothing sent, the text kept for mending.
    PtyReadFor(console, 200);
    PtyWriteAll(console, "a\\q\r");
    EXPECT_NE(PtyReadFor(console, 5000, "\".").find("Invalid ESC sequence \"\\q\"."), std::string::npos);
    EXPECT_EQ(PtyReadFor(cable.Fd(), 300), "");
    PtyWriteAll(console, "\x7f" "b\r");  // Backspace: "a\" and "b", the escape \b
    EXPECT_EQ(PtyReadFor(cable.Fd(), 5000, "\r"), "a\x0b\r");

    // Ctrl+D on an empty line ends dcsterm.
    PtyWriteAll(console, "\x04");
    EXPECT_EQ(PtyWaitExit(pid, 5000), 0);
    close(console);
}

TEST(DcstermPty, AOneShotQueryFromAPipeThroughTheSerialChannel) {
    CPtyCable cable;
    int input = -1, output = -1;
    pid_t pid = StartPiped({"--device", "serial:" + cable.Port(), "--idle", "300"}, &input, &output);
    ASSERT_GT(pid, 0);
    PtyWriteAll(input, "ver\n");
    close(input);
    EXPECT_EQ(PtyReadFor(cable.Fd(), 5000, "\r"), "ver\r");
    PtyWriteAll(cable.Fd(), "version 1.0\r\nready\r\n");
    EXPECT_EQ(PtyReadFor(output, 5000, "ready\n"), "version 1.0\nready\n");
    EXPECT_EQ(PtyWaitExit(pid, 5000), 0);
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
    PtyWaitExit(pid, 5000);
    close(input);
    close(output);
}

}  // namespace
