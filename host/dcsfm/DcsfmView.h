// The File Manager window's place for dcsfm: the device actions of the core
// (filemanager/FMDevice.h) show their messages, ask their questions and run
// their copy through this view, so that the console says and does what the
// window would.
#pragma once

#include <atomic>
#include <cstdio>
#include <string>
#include <vector>

#include "filemanager/FMDevice.h"

// What an interrupt sets, and whether a copy runs to take it as its Abort.
struct TDCSFMSTOP {
    std::atomic<bool> requested{false};
    std::atomic<bool> copying{false};
};

struct TDCSFMVIEWSETUP {
    COndDeviceComm_0* channel = nullptr;
    bool continueOnError = true;  // the window's default
    // Answers given on the command line: --yes answers Yes (No for format
    // with --used-only); without it the questions are asked on the console.
    bool yes = false;
    bool usedOnly = false;
    FILE* answers = stdin;    // where the answers are read
    FILE* messages = stderr;  // errors and questions
    FILE* progress = stdout;
    bool terminal = false;    // progress as a bar redrawn in place
    int columns = 80;
    TDCSFMSTOP* stop = nullptr;
};

class CDcsfmView : public CFMDeviceView_0 {
public:
    explicit CDcsfmView(const TDCSFMVIEWSETUP& setup) : m_setup(setup) {}

    void ShowError(const char* text) override;
    EFMANSWER AskDelete(const char* text) override;
    EFMANSWER AskFormat(const char* text) override;
    void PrepareDeviceList() override {}
    void SetSummary(const char* text) override { m_summary = text; }
    void SetDeviceEntries(const std::vector<TDEVDIRENTRY>& entries) override { m_entries = entries; }
    void CopyFiles(const TFILEENTRYLIST& files) override;

    // An error was shown (the window would have shown a box).
    bool Failed() const { return m_failed; }
    // A question was answered No or Cancel, or a copy was aborted.
    bool Stopped() const { return m_stopped; }
    const std::string& Summary() const { return m_summary; }
    const std::vector<TDEVDIRENTRY>& Entries() const { return m_entries; }

private:
    // One answer line, trimmed and in lower case; "" at the end of input.
    std::string ReadAnswer();

    TDCSFMVIEWSETUP m_setup;
    bool m_failed = false;
    bool m_stopped = false;
    std::string m_summary;
    std::vector<TDEVDIRENTRY> m_entries;
};
