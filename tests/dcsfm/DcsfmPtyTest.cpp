// dcsfm on Linux through pseudo-terminal pairs: one pair stands in for the
// serial cable (dcsfm opens its slave side as its serial port), another for
// the console a user types at (its standard input and output, so that it
// asks its questions, draws its bar and gets Ctrl+C from the terminal).
#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "os/Platform.h"

namespace fs = std::filesystem;

namespace {

const int kAborted = 19;

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
    std::vector<const char*> argv = {DCSFM_PATH};
    for (const std::string& a : args) argv.push_back(a.c_str());
    argv.push_back(nullptr);
    return argv;
}

// dcsfm on a console of its own; *console is the console's master side,
// where its standard output and error both arrive.
pid_t StartOnConsole(const std::vector<std::string>& args, int* console) {
    std::vector<const char*> argv = Argv(args);
    winsize size = {};
    size.ws_row = 24;
    size.ws_col = 60;
    pid_t pid = forkpty(console, nullptr, nullptr, &size);
    if (pid == 0) {
        execv(DCSFM_PATH, const_cast<char* const*>(argv.data()));
        _exit(127);
    }
    return pid;
}

// dcsfm with standard input from /dev/null and its output and errors in one pipe.
pid_t StartPiped(const std::vector<std::string>& args, int* output) {
    int out[2];
    if (pipe(out) != 0) return -1;
    std::vector<const char*> argv = Argv(args);
    pid_t pid = fork();
    if (pid == 0) {
        int null = open("/dev/null", O_RDONLY);
        dup2(null, 0);
        dup2(out[1], 1);
        dup2(out[1], 2);
        close(out[0]), close(out[1]), close(null);
        execv(DCSFM_PATH, const_cast<char* const*>(argv.data()));
        _exit(127);
    }
    close(out[1]);
    *output = out[0];
    return pid;
}

// Runs dcsfm piped to the end: its status and everything it printed.
int RunPiped(const std::vector<std::string>& args, std::string* output) {
    int fd = -1;
    pid_t pid = StartPiped(args, &fd);
    if (pid < 0) return -1;
    *output = ReadFor(fd, 10000);  // until dcsfm closes its end
    close(fd);
    return WaitExit(pid, 5000);
}

// A folder with files for the device and files to send.
class DcsfmPty : public ::testing::Test {
protected:
    DcsfmPty() {
        dir = fs::temp_directory_path() / ("dcsfm_pty_" + std::to_string(getpid()));
        fs::remove_all(dir);
        fs::create_directories(dir / "dev");
        Write("dev/3-1.bin", "three");
        Write("dev/7-2.bin", "seven");
        Write("dev/program.bin", "image");
        for (const char* name : {"a.bin", "b.bin", "c.bin"}) Write(name, name);
    }
    ~DcsfmPty() override { fs::remove_all(dir); }
    void Write(const std::string& name, const std::string& bytes) {
        FILE* f = fopen((dir / name).c_str(), "wb");
        ASSERT_NE(f, nullptr);
        fwrite(bytes.data(), 1, bytes.size(), f);
        fclose(f);
    }
    std::string Path(const std::string& name) const { return (dir / name).string(); }
    // The saved folder's file names, space-separated, in order.
    std::string Saved(const std::string& folder) const {
        std::vector<std::string> names;
        for (const auto& e : fs::directory_iterator(dir / folder)) names.push_back(e.path().filename());
        std::sort(names.begin(), names.end());
        std::string all;
        for (const std::string& n : names) all += n + " ";
        return all;
    }
    // The path as dcsfm shows it.
    std::string Shown(const std::string& name) const {
        std::string path = "Z:" + Path(name);
        for (char& c : path)
            if (c == '/') c = '\\';
        return path;
    }
    fs::path dir;
};

}  // namespace

// The raw serial port has no file system: every action ends with the
// channel's own text in the window's message, status 1, and nothing is
// written to the cable.
TEST_F(DcsfmPty, TheSerialChannelsClearErrors) {
    CCable cable;
    ASSERT_FALSE(cable.Port().empty());
    const std::string device = "--device=serial:" + cable.Port() + ":57600";
    const struct {
        std::vector<std::string> args;
        std::string shown;
    } cases[] = {
        {{"ls"},
         "File ID  File type   File size\nCould not read device directory:\n"
         "The raw serial port cannot read the device directory\n"},
        {{"put", Path("a.bin")},
         "0 files of 1 copied so far...\nCurrently copying " + Shown("a.bin") + "\n" +
             "Error during copying " + Shown("a.bin") +
             ": The raw serial port cannot transfer files: the device's file protocol is not "
             "available\n"},
        {{"rm", "--yes", "3", "4"},
         "Could not delete file with ID 3: The raw serial port cannot delete device files\n"},
        {{"format", "--yes"}, "Could not format device: The raw serial port cannot format the device\n"},
    };
    for (const auto& c : cases) {
        std::vector<std::string> args = {device};
        args.insert(args.end(), c.args.begin(), c.args.end());
        std::string output;
        EXPECT_EQ(RunPiped(args, &output), 1) << c.args[0] << ": " << output;
        EXPECT_EQ(output, c.shown);
    }
    EXPECT_EQ(ReadFor(cable.Fd(), 100), "");
}

// On a console rm and format ask the window's questions and do what the
// answer says; No to rm and Cancel to format end with status 19.
TEST_F(DcsfmPty, QuestionsOnAConsole) {
    const struct {
        std::vector<std::string> args;
        std::string question;
        std::string answer;
        int status;
        std::string saved;
    } cases[] = {
        {{"rm", "3"}, "Warning: Deleting 1 file from device, are you sure? [y/N] ", "y\r", 0,
         "007-2.bin program.bin "},
        {{"rm", "3", "7"}, "Warning: Deleting 2 files from device, are you sure? [y/N] ", "n\r",
         kAborted, "003-1.bin 007-2.bin program.bin "},
        {{"format"},
         "WARNING\r\nYou have selected to format the device.\r\n"
         "This will destroy all data stored on the device.\r\n\r\n"
         "Yes: Format all blocks on the device\r\n"
         "No: Format only the blocks that are marked as used\r\n"
         "Cancel: Have mercy on me!\r\n[y/n/C] ",
         "no\r", 0, "program.bin "},
        {{"format"}, "[y/n/C] ", "\r", kAborted, "003-1.bin 007-2.bin program.bin "},
    };
    for (const auto& c : cases) {
        std::vector<std::string> args = {"--sim-files", Path("dev"), "--sim-save", Path("out")};
        args.insert(args.end(), c.args.begin(), c.args.end());
        int console = -1;
        pid_t pid = StartOnConsole(args, &console);
        ASSERT_GT(pid, 0);
        std::string shown = ReadFor(console, 5000, c.question);
        EXPECT_NE(shown.find(c.question), std::string::npos) << shown;
        WriteAll(console, c.answer);
        ReadFor(console, 5000);  // until dcsfm ends
        EXPECT_EQ(WaitExit(pid, 5000), c.status) << c.args[0];
        close(console);
        EXPECT_EQ(Saved("out"), c.saved) << c.args[0] << " " << c.answer;
    }
}

// Ctrl+C on the console during a slow copy: the file being sent is aborted
// and reported, the file before it stays on the device, no further file
// starts; the bar was drawn in place before.
TEST_F(DcsfmPty, CtrlCStopsACopyAsAbortDoes) {
    int console = -1;
    pid_t pid = StartOnConsole({"--sim-delay", "10", "--sim-save", Path("out"), "put", "--id", "1",
                                Path("a.bin"), "--id", "2", Path("b.bin"), "--id", "3", Path("c.bin")},
                               &console);
    ASSERT_GT(pid, 0);
    std::string shown = ReadFor(console, 10000, "1 file of 3 copied so far... [");
    OsSleep(200);  // well inside the second file's second
    WriteAll(console, "\x03");
    shown += ReadFor(console, 5000);
    EXPECT_EQ(WaitExit(pid, 5000), kAborted) << shown;
    close(console);
    EXPECT_NE(shown.find("\r0 files of 3 copied so far... [###"), std::string::npos) << shown;
    EXPECT_NE(shown.find("Currently copying " + Shown("b.bin") + "\r\n"), std::string::npos) << shown;
    EXPECT_EQ(shown.find("c.bin"), std::string::npos) << shown;
    EXPECT_NE(shown.find("Error during copying " + Shown("b.bin") + ": Transfer aborted\r\n"),
              std::string::npos)
        << shown;
    EXPECT_EQ(Saved("out"), "001-1.bin ");
}

// The same from a signal when dcsfm runs in a pipe, SIGINT and SIGTERM alike;
// outside a copy (a question waiting) an interrupt ends dcsfm at once.
TEST_F(DcsfmPty, InterruptsInAPipeAndAtAQuestion) {
    for (int sig : {SIGINT, SIGTERM}) {
        int output = -1;
        pid_t pid = StartPiped({"--sim-delay", "10", "put", Path("a.bin"), Path("b.bin")}, &output);
        ASSERT_GT(pid, 0);
        std::string shown = ReadFor(output, 5000, "Currently copying " + Shown("a.bin"));
        OsSleep(200);
        kill(pid, sig);
        shown += ReadFor(output, 5000);
        close(output);
        EXPECT_EQ(WaitExit(pid, 5000), kAborted) << shown;
        EXPECT_EQ(shown, "0 files of 2 copied so far...\nCurrently copying " + Shown("a.bin") + "\n" +
                             "Error during copying " + Shown("a.bin") + ": Transfer aborted\n");
    }
    int console = -1;
    pid_t pid = StartOnConsole({"--sim-files", Path("dev"), "rm", "3"}, &console);
    ASSERT_GT(pid, 0);
    ReadFor(console, 5000, "[y/N] ");
    WriteAll(console, "\x03");
    std::string shown = ReadFor(console, 5000);
    EXPECT_EQ(WaitExit(pid, 5000), kAborted);
    EXPECT_NE(shown.find("dcsfm: interrupted"), std::string::npos) << shown;
    close(console);
}
