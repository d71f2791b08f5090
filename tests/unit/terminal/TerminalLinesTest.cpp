// The Terminal's answer list: line ends, lines continued across chunks, the
// line cap, Clear, the length limit, and the change records the window's
// list box follows.
#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

#include "terminal/TerminalLines.h"

namespace {

using Lines = std::vector<std::string>;

Lines Of(const CONXTerminalLines& list) {
    Lines lines;
    for (size_t i = 0; i < list.Count(); ++i) lines.push_back(list.Line(i));
    return lines;
}

// A list box as the window keeps it, following only the change records.
class CMirror {
public:
    void Follow(CONXTerminalLines* list) {
        TTERMINALLISTCHANGE change = list->TakeChange();
        ASSERT_LE(change.removedFromEnd + change.droppedFromFront, m_lines.size());
        m_lines.erase(m_lines.end() - static_cast<std::ptrdiff_t>(change.removedFromEnd), m_lines.end());
        m_lines.erase(m_lines.begin(), m_lines.begin() + static_cast<std::ptrdiff_t>(change.droppedFromFront));
        ASSERT_LE(change.added, list->Count());
        for (size_t i = list->Count() - change.added; i < list->Count(); ++i)
            m_lines.push_back(list->Line(i));
    }
    Lines Get() const { return Lines(m_lines.begin(), m_lines.end()); }

private:
    std::deque<std::string> m_lines;
};

// Each string is one chunk, as one Receive hands it over.
Lines Receive(const std::vector<std::string>& chunks, CONXTerminalLines* list = nullptr) {
    CONXTerminalLines own;
    if (!list) list = &own;
    for (const std::string& chunk : chunks) list->Received(chunk.data(), chunk.size());
    return Of(*list);
}

struct TLineCase {
    const char* name;
    std::vector<std::string> chunks;
    Lines lines;
    bool lineComplete;
};

TEST(TerminalLines, LineEndsAndChunks) {
    const TLineCase cases[] = {
        {"a line split across two ticks", {"abc", "def\r\n"}, {"abcdef"}, true},
        {"CR CR LF ends one line, LF LF gives an empty one",
         {std::string("a\r\r\nb\n\n")}, {"a", "b", ""}, true},
        {"CR LF split between chunks is one line end", {"a\r", "\nb\r", "\n"}, {"a", "b"}, true},
        {"LF then CR: two line ends", {"a\n\rb\n"}, {"a", "", "b"}, true},
        {"a run of CRs ends one line, also across chunks", {"a\r\r", "\r\r", "b\r"}, {"a", "b"}, true},
        {"LF alone ends a line", {"x\ny\n"}, {"x", "y"}, true},
        {"an unfinished line is shown as it stands", {"ab", "c"}, {"abc"}, false},
        {"an unfinished line, then its end alone", {"ab", "\r"}, {"ab"}, true},
        {"CR before an unfinished line", {"\rab"}, {"", "ab"}, false},
        {"other control bytes are kept", {std::string("\x1b[1m\tx\0y\n", 9)},
         {std::string("\x1b[1m\tx\0y", 8)}, true},
    };
    for (const TLineCase& c : cases) {
        CONXTerminalLines list;
        EXPECT_EQ(Receive(c.chunks, &list), c.lines) << c.name;
        EXPECT_EQ(list.LineComplete(), c.lineComplete) << c.name;
        // Byte by byte gives the same lines.
        std::string all;
        for (const std::string& chunk : c.chunks) all += chunk;
        std::vector<std::string> bytes;
        for (char b : all) bytes.push_back(std::string(1, b));
        EXPECT_EQ(Receive(bytes), c.lines) << c.name << " (byte by byte)";
    }
}

TEST(TerminalLines, ClearEmptiesTheListButKeepsTheLineFlags) {
    CONXTerminalLines list;
    list.Received("one\r\ntwo", 8);
    list.Clear();
    EXPECT_EQ(list.Count(), 0u);
    EXPECT_FALSE(list.LineComplete());
    // The unfinished "two" went with the list: its continuation is a new line.
    list.Received("-end\r\nnext", 10);
    EXPECT_EQ(Of(list), Lines({"-end", "next"}));

    // A CR received before Clear still swallows the LF after it.
    list.Received("\r", 1);
    list.Clear();
    EXPECT_TRUE(list.LastWasCR());
    list.Received("\nz\n", 3);
    EXPECT_EQ(Of(list), Lines({"z"}));
}

TEST(TerminalLines, TheListHoldsAtMost5001Lines) {
    CONXTerminalLines list;
    std::string text;
    for (int i = 1; i <= 5003; ++i) text += "line " + std::to_string(i) + "\r\n";
    for (size_t at = 0; at < text.size(); at += 1023)
        list.Received(text.data() + at, std::min<size_t>(1023, text.size() - at));
    ASSERT_EQ(list.Count(), 5001u);
    EXPECT_EQ(list.Line(0), "line 3");
    EXPECT_EQ(list.Line(5000), "line 5003");

    // An unfinished line counts as a line: the oldest goes for it.
    list.Received("part", 4);
    ASSERT_EQ(list.Count(), 5001u);
    EXPECT_EQ(list.Line(0), "line 4");
    EXPECT_EQ(list.Line(5000), "part");
    list.Received("ial\n", 4);
    ASSERT_EQ(list.Count(), 5001u);
    EXPECT_EQ(list.Line(0), "line 4");
    EXPECT_EQ(list.Line(5000), "partial");
}

TEST(TerminalLines, ALineWithoutEndIsCutAtTheLengthLimit) {
    const size_t limit = CONXTerminalLines::kMaxLineBytes;
    // Exactly the limit, then its line end: one line, no empty one after it.
    std::string exact(limit, 'x');
    EXPECT_EQ(Receive({exact, "\r\n", "y\n"}), Lines({exact, "y"}));
    EXPECT_EQ(Receive({exact + "\n\n"}), Lines({exact, ""}));
    // One byte more: the byte starts the next line.
    EXPECT_EQ(Receive({exact + "z\r\n"}), Lines({exact, "z"}));
    // An endless line in chunks becomes full-length lines.
    CONXTerminalLines list;
    std::string chunk(1000, 'q');
    for (int i = 0; i < 10; ++i) list.Received(chunk.data(), chunk.size());
    ASSERT_EQ(list.Count(), 3u);
    EXPECT_EQ(list.Line(0).size(), limit);
    EXPECT_EQ(list.Line(1).size(), limit);
    EXPECT_EQ(list.Line(2).size(), 10000 - 2 * limit);
    EXPECT_FALSE(list.LineComplete());
}

TEST(TerminalLines, AMirrorFollowingTheChangesHoldsTheSameLines) {
    CONXTerminalLines list;
    CMirror mirror;
    // Unfinished lines taken back, lines dropped at the cap, several chunks
    // between two looks, and Clear.
    const std::vector<std::vector<std::string>> ticks = {
        {"ab"}, {"c\r\nd"}, {"e", "f"}, {"\n"}, {"\r\n\r\n", "x"},
    };
    for (const auto& tick : ticks) {
        for (const std::string& chunk : tick) list.Received(chunk.data(), chunk.size());
        mirror.Follow(&list);
        ASSERT_EQ(mirror.Get(), Of(list));
    }
    std::string many;
    for (int i = 0; i < 6000; ++i) many += std::to_string(i) + (i % 7 ? "\n" : "");
    for (size_t at = 0; at < many.size(); at += 1023) {
        list.Received(many.data() + at, std::min<size_t>(1023, many.size() - at));
        if (at % 3 == 0) mirror.Follow(&list);
    }
    mirror.Follow(&list);
    ASSERT_EQ(mirror.Get(), Of(list));
    list.Received("tail", 4);
    list.Clear();
    CMirror fresh;  // the window empties its list box along with Clear
    list.Received("1\n2", 3);
    fresh.Follow(&list);
    EXPECT_EQ(fresh.Get(), Lines({"1", "2"}));
}

TEST(TerminalSplit, CallsTextAndEndInOrder) {
    std::string events;
    bool lastWasCR = false;
    auto text = [&](const char* p, size_t n) { events += "[" + std::string(p, n) + "]"; };
    auto end = [&] { events += "|"; };
    TerminalSplit("ab\r\ncd\r", 7, &lastWasCR, text, end);
    EXPECT_EQ(events, "[ab]|[cd]|");
    EXPECT_TRUE(lastWasCR);
    TerminalSplit("\n\n", 2, &lastWasCR, text, end);
    EXPECT_EQ(events, "[ab]|[cd]||");
    EXPECT_FALSE(lastWasCR);
}

}  // namespace
