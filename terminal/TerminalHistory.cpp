#include "terminal/TerminalHistory.h"

void CONXTerminalHistory::Record(const std::string& text, bool appendCR) {
    uint32_t flag = appendCR ? 1 : 0;
    if (m_entries.empty() || m_entries.back().text != text || m_entries.back().appendCR != flag)
        m_entries.push_back(TerminalHistoryEntry{text, flag});
    m_index = m_entries.size();
}

bool CONXTerminalHistory::Up(std::string* text) {
    if (m_entries.empty()) return false;
    m_index = m_index == 0 ? m_entries.size() - 1 : m_index - 1;
    *text = m_entries[m_index].text;
    return true;
}

bool CONXTerminalHistory::Down(std::string* text) {
    if (m_entries.empty()) return false;
    ++m_index;
    if (m_index >= m_entries.size()) m_index = 0;
    *text = m_entries[m_index].text;
    return true;
}
