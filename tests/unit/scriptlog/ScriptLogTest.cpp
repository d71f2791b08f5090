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

TEST(ScriptLog, CarriageReturnOverwritesFromTheStartOfTheLine) {
    CONXScriptLog log;
    log.Append("abc\rX\n");
    EXPECT_EQ(Of(log), Lines({"Xbc"}));
    EXPECT_TRUE(log.LastLineComplete());

    // A shorter rewrite leaves the old tail: overwriting, not clearing.
    log.Append("count 100\rcount 7\n");
    EXPECT_EQ(Of(log), Lines({"Xbc", "count 700"}));

    // Several returns in one line; the last text wins byte by byte.
    log.Append("aaaa\rbb\rc\n");
    EXPECT_EQ(log.Lines().back(), "cbaa");
}

TEST(ScriptLog, OutputWithoutLineFeedIsContinuedByTheNextOutput) {
    CONXScriptLog log;
    log.Append("ab");
    EXPECT_EQ(Of(log), Lines({"ab"}));
    EXPECT_FALSE(log.LastLineComplete());
    log.Append("c\n");
    EXPECT_EQ(Of(log), Lines({"abc"}));
    EXPECT_TRUE(log.LastLineComplete());

    // The column survives between outputs: a return in one output, the
    // overwriting text in the next ones.
    log.Append("abc\r");
    EXPECT_EQ(log.Lines().back(), "abc");
    EXPECT_EQ(log.Column(), 0u);
    log.Append("X");
    log.Append("Y\n");
    EXPECT_EQ(Of(log), Lines({"abc", "XYc"}));
}

TEST(ScriptLog, ProgressLinesRewriteThemselvesInPlace) {
    // A transfer's progress: each step begins with a carriage return.
    CONXScriptLog log;
    log.Append("sending file\n");
    for (int percent = 0; percent <= 100; percent += 25) {
        std::string step = "\rprogress " + std::to_string(percent) + "%";
        log.Append(step.c_str());
        EXPECT_EQ(log.Lines().size(), 2u);
    }
    log.Append("\ndone\n");
    EXPECT_EQ(Of(log), Lines({"sending file", "progress 100%", "done"}));
}

TEST(ScriptLog, EmptyLinesAndEmptyOutput) {
    CONXScriptLog log;
    log.Append("");
    EXPECT_TRUE(log.Lines().empty());
    log.Append("\n\n");
    EXPECT_EQ(Of(log), Lines({"", ""}));
    // A lone return on a complete log adds nothing.
    log.Append("\r");
    EXPECT_EQ(log.Lines().size(), 2u);
    EXPECT_TRUE(log.LastLineComplete());
}

TEST(ScriptLog, ClearStartsAFreshLine) {
    CONXScriptLog log;
    log.Append("abc\r");
    log.Clear();
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
