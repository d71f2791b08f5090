#include "terminal/TerminalLines.h"

CONXTerminalLines::CONXTerminalLines() : m_ring(kMaxLines) {}

const std::string& CONXTerminalLines::Line(size_t index) const {
    return m_ring[(m_head + index) % kMaxLines];
}

void CONXTerminalLines::Received(const char* data, size_t size) {
    // An unfinished last line is continued; after Clear there is none to
    // take back, and the text starts a new line.
    m_current.clear();
    if (!m_lineComplete && m_count > 0) TakeBackLast();
    TerminalSplit(
        data, size, &m_lastWasCR, [this](const char* text, size_t n) { Append(text, n); },
        [this] { EndLine(); });
    if (!m_current.empty()) {
        Show();
        m_lineComplete = false;
    } else {
        m_lineComplete = true;
    }
}

void CONXTerminalLines::EndLine() {
    // The line end of a line that was cut at the length limit: it is shown.
    if (m_cutAtLimit && m_current.empty()) {
        m_cutAtLimit = false;
        return;
    }
    Show();
}

void CONXTerminalLines::Append(const char* data, size_t size) {
    m_cutAtLimit = false;
    while (size > 0) {
        size_t room = kMaxLineBytes - m_current.size();
        size_t n = size < room ? size : room;
        m_current.append(data, n);
        data += n;
        size -= n;
        if (m_current.size() == kMaxLineBytes) {
            Show();
            m_cutAtLimit = true;
        }
    }
}

void CONXTerminalLines::Show() {
    while (m_count > kMaxLines - 1) DropFirst();
    // The slot's old storage becomes the next current line.
    Slot(m_count).swap(m_current);
    ++m_count;
    ++m_change.added;
    m_current.clear();
}

void CONXTerminalLines::TakeBackLast() {
    m_current.swap(Slot(m_count - 1));
    --m_count;
    if (m_change.added > 0) --m_change.added;  // the mirror never saw it
    else ++m_change.removedFromEnd;
}

void CONXTerminalLines::DropFirst() {
    // The first line is the mirror's unless every line is new to it.
    if (m_count > m_change.added) ++m_change.droppedFromFront;
    else --m_change.added;
    m_head = (m_head + 1) % kMaxLines;
    --m_count;
}

void CONXTerminalLines::Clear() {
    m_head = 0;
    m_count = 0;
    m_change = TTERMINALLISTCHANGE();
}

TTERMINALLISTCHANGE CONXTerminalLines::TakeChange() {
    TTERMINALLISTCHANGE change = m_change;
    m_change = TTERMINALLISTCHANGE();
    return change;
}
