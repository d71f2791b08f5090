// dcsfm's view of the File Manager's actions: the questions as the console
// asks them, the bar on a terminal, and the listing as text and JSON. (The
// copy's lines, report and abort are checked from the outside: DcsfmRun.cmake,
// DcsfmPtyTest.cpp, interrupt.sh.)
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "host/dcsfm/DcsfmListing.h"
#include "host/dcsfm/DcsfmProgress.h"
#include "host/dcsfm/DcsfmView.h"
#include "host/sim/SimDevice.h"
#include "tests/unit/TestSupport.h"

namespace fs = std::filesystem;

namespace {

// A stream backed by a file, read back as a whole.
class CStream {
public:
    explicit CStream(const std::string& content = std::string()) {
        static int serial = 0;
        m_path = fs::temp_directory_path() / ("dcsfm_view_" + std::to_string(serial++) + ".txt");
        m_file = std::fopen(m_path.string().c_str(), "w+b");
        std::fwrite(content.data(), 1, content.size(), m_file);
        std::rewind(m_file);
    }
    ~CStream() {
        std::fclose(m_file);
        std::error_code ec;
        fs::remove(m_path, ec);
    }
    FILE* File() { return m_file; }
    std::string Text() {
        std::fflush(m_file);
        std::string text;
        FILE* f = std::fopen(m_path.string().c_str(), "rb");
        int c;
        while ((c = std::fgetc(f)) != EOF) text += char(c);
        std::fclose(f);
        return text;
    }

private:
    fs::path m_path;
    FILE* m_file;
};

// Local files to copy, in a folder of their own.
class DcsfmCopy : public ScratchTest {
protected:
    DcsfmCopy() {
        for (int i = 1; i <= 3; ++i) {
            TFILEENTRY entry;
            entry.path = Native("f" + std::to_string(i) + ".bin").string();
            entry.fileId = uint8_t(i);
            entry.fileType = 1;
            Write("f" + std::to_string(i) + ".bin", "data");
            files.push_back(entry);
        }
    }
    TDCSFMVIEWSETUP Setup(CStream* messages, CStream* progress) {
        TDCSFMVIEWSETUP setup;
        setup.channel = &sim;
        setup.messages = messages->File();
        setup.progress = progress->File();
        setup.stop = &stop;
        return setup;
    }
    TFILEENTRYLIST files;
    CSimDevice sim;
    TDCSFMSTOP stop;
};

}  // namespace

TEST(DcsfmView, QuestionsAsTheConsoleAsksThem) {
    static const std::string padded = std::string(300, ' ') + "yes\n";  // one line, however long
    const struct {
        bool format;
        const char* typed;
        EFMANSWER answer;
        bool stopped;
    } cases[] = {
        {false, "y\n", FM_ANSWER_YES, false},
        {false, " YES \r\n", FM_ANSWER_YES, false},
        {false, padded.c_str(), FM_ANSWER_YES, false},
        {false, "n\n", FM_ANSWER_NO, true},
        {false, "\n", FM_ANSWER_NO, true},
        {false, "", FM_ANSWER_NO, true},  // the end of input
        {true, "y\n", FM_ANSWER_YES, false},
        {true, "No\n", FM_ANSWER_NO, false},
        {true, "c\n", FM_ANSWER_CANCEL, true},
        {true, "\n", FM_ANSWER_CANCEL, true},  // Cancel is the default
        {true, "", FM_ANSWER_CANCEL, true},
    };
    for (const auto& c : cases) {
        CStream input(c.typed), messages;
        TDCSFMVIEWSETUP setup;
        setup.answers = input.File();
        setup.messages = messages.File();
        CDcsfmView view(setup);
        EFMANSWER answer = c.format ? view.AskFormat("Q?") : view.AskDelete("Q?");
        EXPECT_EQ(answer, c.answer) << c.typed;
        EXPECT_EQ(view.Stopped(), c.stopped) << c.typed;
        std::string shown = messages.Text();
        std::string prompt = c.format ? "WARNING\nQ?\n[y/n/C] " : "Warning: Q? [y/N] ";
        EXPECT_EQ(shown.substr(0, prompt.size()), prompt);
    }
    // --yes answers without a word: Yes, or No for format with --used-only.
    for (bool usedOnly : {false, true}) {
        CStream messages;
        TDCSFMVIEWSETUP setup;
        setup.yes = true;
        setup.usedOnly = usedOnly;
        setup.messages = messages.File();
        CDcsfmView view(setup);
        EXPECT_EQ(view.AskDelete("Q?"), FM_ANSWER_YES);
        EXPECT_EQ(view.AskFormat("Q?"), usedOnly ? FM_ANSWER_NO : FM_ANSWER_YES);
        EXPECT_EQ(messages.Text(), "");
        EXPECT_FALSE(view.Stopped());
    }
}

TEST_F(DcsfmCopy, OnATerminalTheBarIsRedrawnUnderTheNameLines) {
    CStream messages, progress;
    TDCSFMVIEWSETUP setup = Setup(&messages, &progress);
    setup.terminal = true;
    setup.columns = 40;
    files.resize(1);
    CDcsfmView view(setup);
    view.CopyFiles(files);
    std::string shown = progress.Text();
    // The name line shortened to 39 characters, as the window shortens it to its width.
    std::string name = "Currently copying ..." + files[0].path.substr(files[0].path.size() - 18);
    ASSERT_EQ(shown.substr(0, name.size() + 1), name + "\n");
    // Steps 0 to 100: each percentage drawn once, in order (no redraw of an
    // unchanged line).
    size_t at = 0;
    for (unsigned percent = 0; percent <= 100; ++percent) {
        char line[64];
        std::snprintf(line, sizeof line, "\r0 files of 1 copied so far... %3u%%", percent);
        size_t next = shown.find(line, at);
        ASSERT_NE(next, std::string::npos) << line;
        at = next + 1;
    }
    size_t draws = 0;
    for (size_t p = shown.find("copied so far"); p != std::string::npos; p = shown.find("copied so far", p + 1))
        ++draws;
    EXPECT_EQ(draws, 101u);
    // The bar is gone at the end; nothing else remains on its line.
    std::string clear = "\r" + std::string(34, ' ') + "\r";
    EXPECT_EQ(shown.substr(shown.size() - clear.size()), clear);
    EXPECT_EQ(messages.Text(), "");
}

TEST(DcsfmProgress, TheBarLine) {
    const struct {
        uint32_t done, total, steps;
        int columns;
        const char* line;
    } cases[] = {
        {0, 1, 0, 80, "0 files of 1 copied so far... [----------------------------------------]   0%"},
        {1, 2, 50, 80, "1 file of 2 copied so far... [##############################----------]  75%"},
        {2, 3, 100, 60, "2 files of 3 copied so far... [######################] 100%"},
        {0, 4, 0, 48, "0 files of 4 copied so far... [----------]   0%"},
        {0, 4, 0, 47, "0 files of 4 copied so far...   0%"},  // no room for 10 marks
        {0, 4, 0, 20, "0 files of 4 copied"},
    };
    for (const auto& c : cases) EXPECT_EQ(DcsfmBarLine(c.done, c.total, c.steps, c.columns), c.line);
}

TEST(DcsfmListing, TableAndJson) {
    std::vector<TDEVDIRENTRY> entries = {{1, 2, 10}, {255, 0, 4000000000u}};
    EXPECT_EQ(DcsfmListTable(entries),
              "File ID  File type   File size\n"
              "      1          2          10\n"
              "    255          0  4000000000\n");
    EXPECT_EQ(DcsfmListTable({}), "File ID  File type   File size\n");
    TDEVDIRINFO info = {4096, 1048576, 2, 10, 8192};  // 4 GiB free: 64 bits
    EXPECT_EQ(DcsfmListJson(entries, &info, "a\nb"),
              "{\n  \"files\": [\n"
              "    {\"id\": 1, \"type\": 2, \"size\": 10},\n"
              "    {\"id\": 255, \"type\": 0, \"size\": 4000000000}\n  ],\n"
              "  \"fileCount\": 2,\n  \"bytesInFiles\": 10,\n  \"bytesOnDisk\": 8192,\n"
              "  \"bytesFree\": 4294967296,\n  \"summary\": \"a\\nb\"\n}\n");
    EXPECT_EQ(DcsfmListJson({}, nullptr, "Could not read device directory:\nbad"),
              "{\n  \"files\": [],\n  \"error\": \"Could not read device directory:\\nbad\"\n}\n");
    EXPECT_EQ(DcsfmJsonString("q\"\\\t\r\x01\x7f\xe4"), "\"q\\\"\\\\\\t\\r\\u0001\\u007f\\u00e4\"");
}
