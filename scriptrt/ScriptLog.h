// CONXScriptLog: the lines of the Script Processor window's log, assembled
// from script output. The window mirrors them in its list box; keeping the
// rules here lets them be tested without a window.
//
// Rules: a line feed ends the line; a carriage return puts the write column
// back to the start of the line, so that what follows overwrites it byte by
// byte (a transfer's progress line rewrites itself in place); text without a
// line feed stays an incomplete last line that the next output continues,
// at the column where the last one stopped. The log keeps at most kMaxLines
// lines, dropping the oldest.
#pragma once

#include <cstddef>
#include <deque>
#include <string>

// What one Append did, so that a mirror can follow: take out its last line
// (lastRemoved), drop `dropped` lines from its front, then add the last
// `added` lines of Lines().
struct TSCRIPTLOGCHANGE {
    bool lastRemoved = false;
    size_t dropped = 0;
    size_t added = 0;
};

class CONXScriptLog {
public:
    static constexpr size_t kMaxLines = 5000;

    void Clear();
    TSCRIPTLOGCHANGE Append(const char* text);

    const std::deque<std::string>& Lines() const { return m_lines; }
    bool LastLineComplete() const { return m_lastComplete; }
    size_t Column() const { return m_column; }

private:
    std::deque<std::string> m_lines;
    bool m_lastComplete = true;
    size_t m_column = 0;
};
