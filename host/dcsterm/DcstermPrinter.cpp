#include "host/dcsterm/DcstermPrinter.h"

#include "os/Platform.h"
#include "util/EscapedString.h"

std::string DcstermNow(bool withDate) {
    TOSLOCALTIME t;
    OsLocalTime(&t);
    char text[64];
    if (withDate)
        std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u.%03u", t.year, t.month, t.day,
                      t.hour, t.minute, t.second, t.milliseconds);
    else
        std::snprintf(text, sizeof text, "%02u:%02u:%02u.%03u", t.hour, t.minute, t.second,
                      t.milliseconds);
    return text;
}

CDcstermPrinter::CDcstermPrinter(const TDCSTERMPRINT& settings, FILE* log)
    : m_settings(settings), m_log(log) {}

std::string CDcstermPrinter::Take() {
    std::string taken;
    taken.swap(m_screen);
    return taken;
}

void CDcstermPrinter::Received(const char* data, size_t size) {
    if (m_settings.hex) HexBytes(data, size);
    TerminalSplit(
        data, size, &m_lastWasCR, [this](const char* text, size_t n) { Text(text, n); },
        [this] { EndLine(); });
}

// Line bytes, cut into lines of at most the Terminal's length limit.
void CDcstermPrinter::Text(const char* data, size_t size) {
    m_cutAtLimit = false;
    while (size > 0) {
        size_t room = CONXTerminalLines::kMaxLineBytes - m_lineBytes;
        size_t n = size < room ? size : room;
        if (!m_settings.hex) {
            if (m_settings.holdUnfinished) {
                if (m_held.empty() && m_settings.timestamps) m_heldTime = DcstermNow(false);
                m_held.append(data, n);
            } else {
                if (m_atLineStart && m_settings.timestamps) m_screen += DcstermNow(false) + " ";
                m_screen.append(data, n);
                m_atLineStart = false;
            }
        }
        LogText(data, n);
        m_lineBytes += n;
        data += n;
        size -= n;
        if (m_lineBytes == CONXTerminalLines::kMaxLineBytes) {
            EndLine();
            m_cutAtLimit = true;
        }
    }
}

void CDcstermPrinter::EndLine() {
    // The line end of a line already cut at the length limit ends nothing more.
    if (m_cutAtLimit && m_lineBytes == 0) {
        m_cutAtLimit = false;
        return;
    }
    if (!m_settings.hex) {
        if (m_settings.holdUnfinished) {
            ShowHeld();
            if (m_lineBytes == 0) {  // an empty line
                if (m_settings.timestamps) m_screen += DcstermNow(false) + " ";
                m_screen += '\n';
            }
        } else {
            if (m_atLineStart && m_settings.timestamps) m_screen += DcstermNow(false) + " ";
            m_screen += '\n';
            m_atLineStart = true;
        }
    }
    if (m_log && !m_logOpen) LogText("", 0);  // an empty line is a record too
    LogEndRecord();
    m_lineBytes = 0;
}

// The held part of a line, as a line of its own.
void CDcstermPrinter::ShowHeld() {
    if (m_held.empty()) return;
    if (m_settings.timestamps) m_screen += m_heldTime + " ";
    m_screen += m_held;
    m_screen += '\n';
    m_held.clear();
}

void CDcstermPrinter::Quiet() {
    ShowHeld();
    if (m_settings.hex) HexRow();
}

void CDcstermPrinter::Finish() {
    ShowHeld();
    if (m_settings.hex) HexRow();
    LogEndRecord();
}

void CDcstermPrinter::HexBytes(const char* data, size_t size) {
    for (size_t i = 0; i < size; ++i) {
        if (m_row.empty() && m_settings.timestamps) m_rowTime = DcstermNow(false);
        m_row += data[i];
        if (m_row.size() == 16) HexRow();
    }
}

// "00000010  41 42 0d 0a ...  |AB..|"
void CDcstermPrinter::HexRow() {
    if (m_row.empty()) return;
    if (m_settings.timestamps) m_screen += m_rowTime + " ";
    char text[16];
    std::snprintf(text, sizeof text, "%08llx ", static_cast<unsigned long long>(m_offset));
    m_screen += text;
    for (size_t i = 0; i < 16; ++i) {
        if (i == 8) m_screen += ' ';
        if (i < m_row.size()) {
            std::snprintf(text, sizeof text, " %02x", static_cast<unsigned char>(m_row[i]));
            m_screen += text;
        } else {
            m_screen += "   ";
        }
    }
    m_screen += "  |";
    for (char c : m_row) m_screen += c >= 32 && c <= 126 ? c : '.';
    m_screen += "|\n";
    m_offset += m_row.size();
    m_row.clear();
}

void CDcstermPrinter::LogText(const char* data, size_t size) {
    if (!m_log) return;
    if (!m_logOpen) {
        std::fprintf(m_log, "%s < ", DcstermNow(true).c_str());
        m_logOpen = true;
    }
    std::string text = ondutil::EscapeForDisplay(data, size);
    std::fwrite(text.data(), 1, text.size(), m_log);
}

void CDcstermPrinter::LogEndRecord() {
    if (!m_log || !m_logOpen) return;
    std::fputc('\n', m_log);
    std::fflush(m_log);
    m_logOpen = false;
}

void CDcstermPrinter::Sent(const std::string& bytes) {
    if (!m_log) return;
    // A received line still open goes on in a record of its own afterwards.
    LogEndRecord();
    std::string text = ondutil::EscapeForDisplay(bytes.data(), bytes.size());
    std::fprintf(m_log, "%s > %s\n", DcstermNow(true).c_str(), text.c_str());
    std::fflush(m_log);
}
