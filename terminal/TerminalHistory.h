// The lines sent from the Terminal, for the Up and Down keys of its input line.
//
// A line is recorded when it is sent, before its escapes are decoded, with
// the Append CR choice it was sent with; sending the same text with the same
// choice again adds nothing. After each send the position is one past the
// last entry, so Down shows the first entry and Up the last; both wrap.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

struct TerminalHistoryEntry {
    std::string text;    // as typed
    uint32_t appendCR;   // the Append CR flag when it was sent
};

class CONXTerminalHistory {
public:
    // A send: appends (text, appendCR) unless the last entry is the same,
    // then puts the position one past the last entry.
    void Record(const std::string& text, bool appendCR);
    // One entry back / forward, wrapping; *text gets its text. false (nothing
    // moves) when the history is empty.
    bool Up(std::string* text);
    bool Down(std::string* text);

    size_t Count() const { return m_entries.size(); }
    size_t Index() const { return m_index; }
    const TerminalHistoryEntry& Entry(size_t index) const { return m_entries[index]; }

private:
    std::vector<TerminalHistoryEntry> m_entries;
    size_t m_index = 0;
};
