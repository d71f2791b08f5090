#include "scriptrt/ScriptLog.h"

#include <vector>

void CONXScriptLog::Clear() {
    m_lines.clear();
    m_lastComplete = true;
    m_column = 0;
}

TSCRIPTLOGCHANGE CONXScriptLog::Append(const char* text) {
    TSCRIPTLOGCHANGE change;
    std::string line;
    if (!m_lastComplete && !m_lines.empty()) {
        // The incomplete last line is taken out and continued.
        line.swap(m_lines.back());
        m_lines.pop_back();
        change.lastRemoved = true;
    } else {
        m_column = 0;
    }
    if (m_column > line.size()) m_column = line.size();

    std::vector<std::string> added;
    for (const char* p = text ? text : ""; *p; ++p) {
        char c = *p;
        if (c == '\n') {
            added.push_back(std::move(line));
            line.clear();
            m_column = 0;
        } else if (c == '\r') {
            m_column = 0;
        } else {
            if (m_column == line.size()) line += c;
            else line[m_column] = c;
            ++m_column;
        }
    }
    m_lastComplete = line.empty();
    if (!line.empty()) added.push_back(std::move(line));

    // The cap holds after every output: the oldest lines go first.
    size_t kept = m_lines.size();
    size_t total = kept + added.size();
    size_t excess = total > kMaxLines ? total - kMaxLines : 0;
    change.dropped = excess < kept ? excess : kept;
    size_t skipNew = excess - change.dropped;
    m_lines.erase(m_lines.begin(), m_lines.begin() + static_cast<std::ptrdiff_t>(change.dropped));
    for (size_t i = skipNew; i < added.size(); ++i) m_lines.push_back(std::move(added[i]));
    change.added = added.size() - skipNew;
    return change;
}
