// What dcsterm shows of the bytes the device sends, and its log.
//
// Text mode: lines by the Terminal's rules (terminal/TerminalLines.h), each
// ended with "\n", a line without end cut at the Terminal's length limit;
// with timestamps each line begins with the local time of its first byte.
// On an interactive console (holdUnfinished) a line is shown once it ends or
// once the device has been quiet for a poll, so that the input line can be
// drawn below it; its continuation then begins a new line. Otherwise text is
// shown as it comes.
// Hex mode: the bytes as a dump of 16 per line with their offset; a short
// line when the device goes quiet.
// The log (optional): every received line and every sent line as one record
// "YYYY-MM-DD HH:MM:SS.mmm < text" / "... > text", escaped so that a record
// is one line, flushed record by record.
//
// The screen text is collected in Take(); the caller decides when to write it
// (around its input line).
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "terminal/TerminalLines.h"

struct TDCSTERMPRINT {
    bool timestamps = false;
    bool hex = false;
    bool holdUnfinished = false;
};

class CDcstermPrinter : public CONXTerminalReceiver_0 {
public:
    CDcstermPrinter(const TDCSTERMPRINT& settings, FILE* log);

    void Received(const char* data, size_t size) override;
    // A poll found nothing waiting.
    void Quiet();
    // Bytes that went to the device (the log only).
    void Sent(const std::string& bytes);
    // The end: what is held back is shown, the log's open record ends.
    void Finish();

    // The screen text so far, handed over and forgotten.
    std::string Take();

private:
    void Text(const char* data, size_t size);
    void EndLine();
    void ShowHeld();
    void HexBytes(const char* data, size_t size);
    void HexRow();
    void LogText(const char* data, size_t size);
    void LogEndRecord();

    TDCSTERMPRINT m_settings;
    FILE* m_log;
    std::string m_screen;
    bool m_lastWasCR = false;
    size_t m_lineBytes = 0;       // of the current line, for the length limit
    bool m_cutAtLimit = false;
    bool m_atLineStart = true;    // on the screen (not holding)
    std::string m_held;           // an unfinished line held back, with its time
    std::string m_heldTime;
    bool m_logOpen = false;       // a received record is open in the log
    std::string m_row;            // hex: the bytes of the row being filled
    std::string m_rowTime;
    uint64_t m_offset = 0;        // hex: of the row's first byte
};

// "HH:MM:SS.mmm" (time of day) or "YYYY-MM-DD HH:MM:SS.mmm" (withDate).
std::string DcstermNow(bool withDate);
