// The Terminal's history of sent lines: what is recorded and how Up and Down
// walk it.
#include <gtest/gtest.h>

#include <string>

#include "terminal/TerminalHistory.h"

namespace {

// Walks the history by keys 'U' and 'D'; the texts shown, '-' for none.
std::string Walk(CONXTerminalHistory* history, const char* keys) {
    std::string shown;
    for (const char* k = keys; *k; ++k) {
        std::string text;
        bool moved = *k == 'U' ? history->Up(&text) : history->Down(&text);
        shown += moved ? text : "-";
    }
    return shown;
}

TEST(TerminalHistory, RepeatsAreStoredOnceUnlessTheAppendCRChoiceDiffers) {
    CONXTerminalHistory history;
    history.Record("ver", true);
    history.Record("ver", true);
    EXPECT_EQ(history.Count(), 1u);
    history.Record("ver", false);
    EXPECT_EQ(history.Count(), 2u);
    EXPECT_EQ(history.Entry(1).appendCR, 0u);
    // Only the last entry is compared: an older equal one does not count.
    history.Record("ver", true);
    EXPECT_EQ(history.Count(), 3u);
    // A longer text that starts with the last one is a different text.
    history.Record("vers", true);
    history.Record("ver", true);
    EXPECT_EQ(history.Count(), 5u);
    EXPECT_EQ(history.Index(), 5u);  // one past the last after every send
    // Texts are kept as typed, escapes and all.
    history.Record("\\(0)a\\r", true);
    EXPECT_EQ(history.Entry(5).text, "\\(0)a\\r");
}

TEST(TerminalHistory, UpAndDownWrapAroundAndStartAfterTheLastSend) {
    struct TCase {
        const char* keys;
        const char* shown;
    } cases[] = {
        {"U", "c"},         // right after a send: Up shows the last
        {"D", "a"},         // and Down the first
        {"UUU", "cba"},
        {"UUUU", "cbac"},   // from the first back to the last
        {"DDDD", "abca"},   // past the last to the first
        {"UDD", "cab"},
    };
    for (const TCase& c : cases) {
        CONXTerminalHistory history;
        for (const char* text : {"a", "b", "c"}) history.Record(text, true);
        EXPECT_EQ(Walk(&history, c.keys), c.shown) << c.keys;
    }
    // A send in between puts the position one past the end again.
    CONXTerminalHistory history;
    history.Record("a", true);
    history.Record("b", true);
    EXPECT_EQ(Walk(&history, "UU"), "ba");
    history.Record("a", true);  // differs from the last entry "b": stored
    EXPECT_EQ(Walk(&history, "U"), "a");
    EXPECT_EQ(history.Count(), 3u);
}

TEST(TerminalHistory, AnEmptyHistoryMovesNowhere) {
    CONXTerminalHistory history;
    EXPECT_EQ(Walk(&history, "UD"), "--");
    EXPECT_EQ(history.Index(), 0u);
}

}  // namespace
