// The operator in an unattended run: nobody. Every question is answered as
// Cancel would answer it, and a note on standard error says so, so that a run
// on a production line or in CI never waits for a keyboard.
#pragma once

#include "scriptrt/OperatorPrompt.h"

class CDcsBatchPrompt : public CONXOperatorPrompt_0 {
public:
    void ShowMessage(const char* caption, const char* text) override;
    EOPERATORANSWER AskNumber(const TOPERATORNUMBERQUESTION& question, uint64_t* value) override;
    EOPERATORANSWER AskString(const char* caption, const char* prompt, const std::string& initial,
                              std::string* value) override;
    EOPERATORANSWER AskListItem(const char* caption, const char* prompt,
                                const std::vector<std::string>& items, uint32_t initialIndex,
                                uint32_t* index) override;
};
