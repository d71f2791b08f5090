// dcsfm on Linux through pseudo-terminal pairs: one pair stands in for the
// serial cable (dcsfm opens its slave side as its serial port), another for
// the console a user types at (its standard input and output, so that it
// asks its questions, draws its bar and gets Ctrl+C from the terminal).
#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/pty/PtyTestUtil.h"
#include "tests/unit/TestSupport.h"

namespace fs = std::filesystem;

namespace {

const int kAborted = 19;

// dcsfm on a console 60 columns wide; *console is the console's master side.
pid_t StartOnConsole(const std::vector<std::string>& args, int* console) {
    return PtyStartOnConsole(DCSFM_PATH, args, console, 60);
}

// dcsfm with standard input from /dev/null and its output and errors in one pipe.
pid_t StartPiped(const std::vector<std::string>& args, int* output) {
    int out[2];
    if (pipe(out) != 0) return -1;
    std::vector<const char*> argv = PtyArgv(DCSFM_PATH, args);
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
    *output = PtyReadFor(fd, 10000);  // until dcsfm closes its end
    close(fd);
    return PtyWaitExit(pid, 5000);
}

// A folder with files for the device and files to send. Path(name) is a
// path as dcsfm shows it, Arg(name) as it is given on the command line.
class DcsfmPty : public ScratchTest {
protected:
    DcsfmPty() {
        fs::create_directories(Native("dev"));
        Write("dev\\3-1.bin", "three");
        Write("dev\\7-2.bin", "seven");
        Write("dev\\program.bin", "image");
        for (const char* name : {"a.bin", "b.bin", "c.bin"}) Write(name, name);
    }
    std::string Arg(const std::string& name) const { return Native(name).string(); }
};

}  // namespace

// The raw serial port has no file system: every action ends with the
// channel's own text in the window's message, status 1, and nothing is
// written to the cable.
TEST_F(DcsfmPty, TheSerialChannelsClearErrors) {
    CPtyCable cable;
    ASSERT_FALSE(cable.Port().empty());
    const std::string device = "--device=serial:" + cable.Port() + ":57600";
    const struct {
        std::vector<std::string> args;
        std::string shown;
    } cases[] = {
        {{"ls"},
         "File ID  File type   File size\nCould not read device directory:\n"
         "The raw serial port cannot read the device directory\n"},
        {{"put", Arg("a.bin")},
         "0 files of 1 copied so far...\nCurrently copying " + Path("a.bin") + "\n" +
             "Error during copying " + Path("a.bin") +
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
    EXPECT_EQ(PtyReadFor(cable.Fd(), 100), "");
}

// On a console rm and format ask the window's questions and do what the
// answer says: No to rm deletes nothing (status 19), No to format formats the
// blocks marked as used (the program slot stays). The other answers: DcsfmViewTest.
TEST_F(DcsfmPty, QuestionsOnAConsole) {
    const struct {
        std::vector<std::string> args;
        std::string question;
        std::string answer;
        int status;
        std::string saved;
    } cases[] = {
        {{"rm", "3", "7"}, "Warning: Deleting 2 files from device, are you sure? [y/N] ", "n\r",
         kAborted, "003-1.bin 007-2.bin program.bin "},
        {{"format"},
         "WARNING\r\nYou have selected to format the device.\r\n"
         "This will destroy all data stored on the device.\r\n\r\n"
         "Yes: Format all blocks on the device\r\n"
         "No: Format only the blocks that are marked as used\r\n"
         "Cancel: Have mercy on me!\r\n[y/n/C] ",
         "no\r", 0, "program.bin "},
    };
    for (const auto& c : cases) {
        std::vector<std::string> args = {"--sim-files", Arg("dev"), "--sim-save", Arg("out")};
        args.insert(args.end(), c.args.begin(), c.args.end());
        int console = -1;
        pid_t pid = StartOnConsole(args, &console);
        ASSERT_GT(pid, 0);
        std::string shown = PtyReadFor(console, 5000, c.question);
        EXPECT_NE(shown.find(c.question), std::string::npos) << shown;
        PtyWriteAll(console, c.answer);
        PtyReadFor(console, 5000);  // until dcsfm ends
        EXPECT_EQ(PtyWaitExit(pid, 5000), c.status) << c.args[0];
        close(console);
        EXPECT_EQ(Names("out"), c.saved) << c.args[0] << " " << c.answer;
    }
}

// Ctrl+C on the console during a slow copy: the file being sent is aborted
// and reported, the file before it stays on the device, no further file
// starts; the bar was drawn in place before.
TEST_F(DcsfmPty, CtrlCStopsACopyAsAbortDoes) {
    int console = -1;
    pid_t pid = StartOnConsole({"--sim-delay", "10", "--sim-save", Arg("out"), "put", "--id", "1",
                                Arg("a.bin"), "--id", "2", Arg("b.bin"), "--id", "3", Arg("c.bin")},
                               &console);
    ASSERT_GT(pid, 0);
    std::string shown = PtyReadFor(console, 10000, "1 file of 3 copied so far... [");
    OsSleep(200);  // well inside the second file's second
    PtyWriteAll(console, "\x03");
    shown += PtyReadFor(console, 5000);
    EXPECT_EQ(PtyWaitExit(pid, 5000), kAborted) << shown;
    close(console);
    EXPECT_NE(shown.find("\r0 files of 3 copied so far... [###"), std::string::npos) << shown;
    EXPECT_NE(shown.find("Currently copying " + Path("b.bin") + "\r\n"), std::string::npos) << shown;
    EXPECT_EQ(shown.find("c.bin"), std::string::npos) << shown;
    EXPECT_NE(shown.find("Error during copying " + Path("b.bin") + ": Transfer aborted\r\n"),
              std::string::npos)
        << shown;
    EXPECT_EQ(Names("out"), "001-1.bin ");
}

// Outside a copy (a question waiting) an interrupt ends dcsfm at once.
TEST_F(DcsfmPty, CtrlCAtAQuestion) {
    int console = -1;
    pid_t pid = StartOnConsole({"--sim-files", Arg("dev"), "rm", "3"}, &console);
    ASSERT_GT(pid, 0);
    PtyReadFor(console, 5000, "[y/N] ");
    PtyWriteAll(console, "\x03");
    std::string shown = PtyReadFor(console, 5000);
    EXPECT_EQ(PtyWaitExit(pid, 5000), kAborted);
    EXPECT_NE(shown.find("dcsfm: interrupted"), std::string::npos) << shown;
    close(console);
}
