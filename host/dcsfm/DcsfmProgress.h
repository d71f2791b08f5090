// A copy's progress on the console, as the File Manager's progress window
// shows it: the window's status line ("1 file of 3 copied so far...") and
// name line ("Currently copying ..."). On a terminal the name line of each
// file stays on the screen and a bar below it is redrawn in place; otherwise
// the two lines are printed once per file, for logs and pipes.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <string>

#include "filemanager/FMCopyLoop.h"

class CDcsfmProgress : public CFMProgressSink_0 {
public:
    // abort: the flag an interrupt sets. columns: the terminal's width.
    CDcsfmProgress(const TFILEENTRYLIST& files, FILE* out, bool terminal, int columns,
                   const std::atomic<bool>* abort);

    void FileStarted(uint32_t percent, size_t index) override;
    void FileProgress(uint32_t stepsDone) override;
    bool AbortRequested() override;
    void CopyEnded() override;

private:
    void Write(const std::string& text);
    void DrawBar();
    void ClearBar();

    const TFILEENTRYLIST& m_files;
    FILE* m_out;
    bool m_terminal;
    int m_columns;
    const std::atomic<bool>* m_abort;
    size_t m_index = 0;
    uint32_t m_steps = 0;
    size_t m_barShown = 0;  // characters of the bar line on the screen
    std::string m_bar;      // the bar line last drawn
};

// The bar line for `done` files of `total` and the current file's steps
// (0 to 100): the status line, a bar of the whole copy and its percentage,
// at most columns - 1 characters wide.
std::string DcsfmBarLine(uint32_t done, uint32_t total, uint32_t steps, int columns);
