// The Terminal's answer list, assembled from the bytes the device sends.
//
// Line rules (TerminalSplit): a carriage return ends the line, but a run of
// carriage returns ends only one line; a line feed ends the line unless it
// follows a carriage return, so CR LF is one line end and LF LF gives an
// empty line; every other byte belongs to the line as it is.
//
// The list (CONXTerminalLines) takes the bytes a chunk at a time, as the
// window's poll reads them: a line still unfinished at the end of a chunk is
// shown as it stands and taken back when the next chunk continues it. The
// list keeps at most kMaxLines lines: before a line is added, the oldest go
// while more than kMaxLines - 1 are held. A line that reaches kMaxLineBytes
// without a line end is shown as complete and the text goes on in a new line
// (a line end right at the cut ends nothing more): a device that never sends
// a line end cannot grow one line without bound.
//
// The window mirrors the list in its list box: TakeChange says what changed
// since the last call, so the list box follows once per poll instead of once
// per line.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

// Splits bytes into line pieces: text(data, size) for each run of line bytes,
// end() at each line end. *lastWasCR carries the state from call to call.
// The line ends are found with memchr (the next CR and the next LF are each
// looked for once and remembered), which keeps long runs of text cheap.
template <class TText, class TEnd>
void TerminalSplit(const char* data, size_t size, bool* lastWasCR, TText&& text, TEnd&& end) {
    const char* p = data;
    const char* const stop = data + size;
    const char* nextCR = nullptr;  // null: not looked for yet
    const char* nextLF = nullptr;
    bool afterCR = *lastWasCR;
    while (p < stop) {
        if (!nextCR || nextCR < p) {
            nextCR = static_cast<const char*>(std::memchr(p, '\r', stop - p));
            if (!nextCR) nextCR = stop;
        }
        if (!nextLF || nextLF < p) {
            nextLF = static_cast<const char*>(std::memchr(p, '\n', stop - p));
            if (!nextLF) nextLF = stop;
        }
        const char* at = nextCR < nextLF ? nextCR : nextLF;
        if (at > p) {
            text(p, static_cast<size_t>(at - p));
            afterCR = false;
        }
        if (at == stop) break;
        if (!afterCR) end();
        afterCR = *at == '\r';
        p = at + 1;
    }
    *lastWasCR = afterCR;
}

// Where received bytes go: the window's list, dcsterm's printer, a test.
class CONXTerminalReceiver_0 {
public:
    virtual void Received(const char* data, size_t size) = 0;
};

// What changed in the list since the last TakeChange, in the order a mirror
// applies it: remove removedFromEnd lines from its end, then droppedFromFront
// lines from its front, then append the last `added` lines of the list.
struct TTERMINALLISTCHANGE {
    size_t removedFromEnd = 0;
    size_t droppedFromFront = 0;
    size_t added = 0;
};

class CONXTerminalLines : public CONXTerminalReceiver_0 {
public:
    static constexpr size_t kMaxLines = 5001;
    static constexpr size_t kMaxLineBytes = 4096;

    CONXTerminalLines();

    // One chunk as the poll received it (the window passes up to 1023 bytes).
    void Received(const char* data, size_t size) override;
    // Empties the list. The line flags stay: text that continues an unfinished
    // line then starts a new list line.
    void Clear();

    size_t Count() const { return m_count; }
    const std::string& Line(size_t index) const;  // 0 = the oldest
    bool LineComplete() const { return m_lineComplete; }
    bool LastWasCR() const { return m_lastWasCR; }

    TTERMINALLISTCHANGE TakeChange();

private:
    void Show();          // m_current as the new last line; m_current empties
    void TakeBackLast();  // the last line into m_current
    void DropFirst();
    void Append(const char* data, size_t size);
    void EndLine();
    std::string& Slot(size_t index) { return m_ring[(m_head + index) % kMaxLines]; }

    // A ring of kMaxLines strings: a line's storage is reused once the list
    // is full, so a chatty device costs no allocation per line.
    std::vector<std::string> m_ring;
    size_t m_head = 0;
    size_t m_count = 0;
    std::string m_current;
    bool m_lineComplete = true;
    bool m_lastWasCR = false;
    bool m_cutAtLimit = false;  // the last line shown was cut at kMaxLineBytes
    TTERMINALLISTCHANGE m_change;
};
