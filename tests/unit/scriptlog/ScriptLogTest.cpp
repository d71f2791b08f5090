// The Script Processor window's log lines: carriage returns, continued lines,
// the line cap, and the change records the window's list box follows.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "scriptrt/ScriptLog.h"

namespace {

using Lines = std::vector<std::string>;

Lines Of(const CONXScriptLog& log) { return Lines(log.Lines().begin(), log.Lines().end()); }

// A list box as the window keeps it, following only the change records.
class CMirror {
public:
    void Append(CONXScriptLog* log, const char* text) {
        TSCRIPTLOGCHANGE change = log->Append(text);
        if (change.lastRemoved) {
            ASSERT_FALSE(m_lines.empty());
            m_lines.pop_back();
        }
        ASSERT_LE(change.dropped, m_lines.size());
        m_lines.erase(m_lines.begin(), m_lines.begin() + change.dropped);
        ASSERT_LE(change.added, log->Lines().size());
        for (size_t i = log->Lines().size() - change.added; i < log->Lines().size(); ++i)
            m_lines.push_back(log->Lines()[i]);
    }
    Lines m_lines;
};

// Outputs appended one after the other, the lines they leave, and whether the
// last one is complete.
TEST(ScriptLog, Appending) {
    const struct {
        std::vector<const char*> outputs;
        Lines lines;
        bool complete;
    } cases[] = {
        {{"abc\rX\n"}, {"Xbc"}, true},
        {{"count 100\rcount 7\n"}, {"count 700"}, true},  // overwriting, not clearing
        {{"aaaa\rbb\rc\n"}, {"cbaa"}, true},
        {{"ab"}, {"ab"}, false},
        {{"ab", "c\n"}, {"abc"}, true},  // continued by the next output
        {{"abc\n", "abc\r", "X", "Y\n"}, {"abc", "XYc"}, true},  // the column survives
        // a transfer's progress: each step begins with a carriage return
        {{"sending\n", "\rprogress 0%", "\rprogress 50%", "\rprogress 100%", "\ndone\n"},
         {"sending", "progress 100%", "done"}, true},
        {{""}, {}, true},
        {{"\n\n", "\r"}, {"", ""}, true},  // a lone return on a complete log adds nothing
    };
    for (const auto& c : cases) {
        CONXScriptLog log;
        for (const char* output : c.outputs) log.Append(output);
        EXPECT_EQ(Of(log), c.lines) << c.outputs.front();
        EXPECT_EQ(log.LastLineComplete(), c.complete) << c.outputs.front();
    }
    CONXScriptLog log;
    log.Append("abc\r");
    EXPECT_EQ(log.Column(), 0u);
    log.Clear();  // a fresh line
    EXPECT_TRUE(log.Lines().empty());
    log.Append("X\n");
    EXPECT_EQ(Of(log), Lines({"X"}));
}

TEST(ScriptLog, KeepsAtMostFiveThousandLines) {
    CONXScriptLog log;
    for (int i = 1; i <= 5000; ++i) log.Append(("line " + std::to_string(i) + "\n").c_str());
    ASSERT_EQ(log.Lines().size(), CONXScriptLog::kMaxLines);
    EXPECT_EQ(log.Lines().front(), "line 1");

    TSCRIPTLOGCHANGE change = log.Append("line 5001\n");
    EXPECT_EQ(change.dropped, 1u);
    ASSERT_EQ(log.Lines().size(), 5000u);
    EXPECT_EQ(log.Lines().front(), "line 2");
    EXPECT_EQ(log.Lines().back(), "line 5001");

    // An incomplete line counts as a line, and continuing it drops nothing.
    log.Append("partial");
    EXPECT_EQ(log.Lines().front(), "line 3");
    change = log.Append(" end\n");
    EXPECT_EQ(change.dropped, 0u);
    EXPECT_EQ(log.Lines().back(), "partial end");
    EXPECT_EQ(log.Lines().size(), 5000u);
}

TEST(ScriptLog, OneOutputLargerThanTheCapKeepsItsLastLines) {
    CONXScriptLog log;
    log.Append("old\n");
    std::string text;
    for (int i = 1; i <= 6000; ++i) text += std::to_string(i) + "\n";
    TSCRIPTLOGCHANGE change = log.Append(text.c_str());
    EXPECT_EQ(change.dropped, 1u);
    EXPECT_EQ(change.added, 5000u);
    ASSERT_EQ(log.Lines().size(), 5000u);
    EXPECT_EQ(log.Lines().front(), "1001");
    EXPECT_EQ(log.Lines().back(), "6000");
}

TEST(ScriptLog, ChangeRecordsKeepAMirrorEqual) {
    CONXScriptLog log;
    CMirror mirror;
    const char* pieces[] = {"a", "b\n", "\rxyz", "\r1", "\n", "", "one\ntwo\nthr", "ee\r",
                            "T\n\n", "\r\r", "tail"};
    for (int round = 0; round < 1000; ++round) {
        for (const char* piece : pieces) {
            mirror.Append(&log, piece);
            if (HasFatalFailure()) return;
        }
    }
    EXPECT_EQ(log.Lines().size(), CONXScriptLog::kMaxLines);
    EXPECT_EQ(mirror.m_lines, Of(log));

    // Across the cap in one output, with an incomplete line taken out first.
    std::string big;
    for (int i = 0; i < 5200; ++i) big += "x\n";
    mirror.Append(&log, big.c_str());
    EXPECT_EQ(mirror.m_lines, Of(log));
}

}  // namespace
