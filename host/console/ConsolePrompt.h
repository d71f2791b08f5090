// The operator for dcsrun: questions on the console (prompts on standard
// error, answers from standard input), or, in batch mode, nobody: every
// question is answered as Cancel would answer it, with one line on standard
// error saying so, so that an unattended run never waits for a keyboard.
//
// On the console: Enter alone keeps the value shown in brackets (as OK on the
// dialog's initial text), a lone "." cancels, and so does the end of input.
// A number outside the limits or no number at all is asked for again.
#pragma once

#include <cstdio>
#include <string>

#include "scriptrt/OperatorPrompt.h"

// One answer line of any length, without its line end; false at the end of
// input.
bool ReadConsoleLine(FILE* input, std::string* line);

class CConsolePrompt : public CONXOperatorPrompt_0 {
public:
    // Batch mode when batchRequested (dcsrun --batch) or when standard input
    // is not a terminal.
    explicit CConsolePrompt(bool batchRequested);
    // Given streams and mode, no terminal check (tests, other front ends).
    CConsolePrompt(bool batch, FILE* input, FILE* output);

    bool IsBatch() const { return m_batch; }

    void ShowMessage(const char* caption, const char* text) override;
    EOPERATORANSWER AskNumber(const TOPERATORNUMBERQUESTION& question, uint64_t* value) override;
    EOPERATORANSWER AskString(const char* caption, const char* prompt, const std::string& initial,
                              std::string* value) override;
    EOPERATORANSWER AskListItem(const char* caption, const char* prompt,
                                const std::vector<std::string>& items, uint32_t initialIndex,
                                uint32_t* index) override;

private:
    bool ReadLine(std::string* line) { return ReadConsoleLine(m_input, line); }
    void Write(const std::string& text);
    void BatchNote(const char* function, const char* prompt);

    bool m_batch;
    FILE* m_input;
    FILE* m_output;
};
