// Asking the operator: what the user-input built-ins need from whoever sits in
// front of the run. The Windows dialogs, dcsrun's console and the tests each
// implement it.
//
// An implementation only asks and answers. The built-ins keep every rule on
// their side: argument checks, limits, clamping of the initial value, the
// wording for an empty prompt, the results for OK and Cancel. An answer of OK
// that breaks the promise of its operation counts as Cancel. An
// implementation must not throw.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

enum EOPERATORANSWER : uint32_t {
    OPERATOR_ANSWER_CANCEL = 0,
    OPERATOR_ANSWER_OK = 1,
};

// One number question. The numbers are 64-bit words read in the width and
// signedness of `type` (1 uint32, 3 int32, 4 uint64, 5 int64).
struct TOPERATORNUMBERQUESTION {
    const char* caption;
    const char* prompt;
    uint32_t type;
    uint64_t minimum;     // minimum <= maximum in the type's order
    uint64_t maximum;
    uint64_t initial;     // already within the limits
};

class CONXOperatorPrompt_0 {
public:
    virtual ~CONXOperatorPrompt_0() = default;

    // A message with one OK button; returns when the operator has seen it.
    virtual void ShowMessage(const char* caption, const char* text) = 0;

    // OK only with *value inside the limits (UserInputCheckNumber tells an
    // asker whether a typed text is acceptable and, if not, what to say).
    virtual EOPERATORANSWER AskNumber(const TOPERATORNUMBERQUESTION& question,
                                      uint64_t* value) = 0;

    // Any text is acceptable, also an empty one.
    virtual EOPERATORANSWER AskString(const char* caption, const char* prompt,
                                      const std::string& initial, std::string* value) = 0;

    // items is not empty and initialIndex indexes it; OK only with *index
    // indexing items.
    virtual EOPERATORANSWER AskListItem(const char* caption, const char* prompt,
                                        const std::vector<std::string>& items,
                                        uint32_t initialIndex, uint32_t* index) = 0;
};

// The module's own way of asking, made for one Script Processor, which owns
// it: the operator dialogs on Windows (scriptrt/win32), null where there are
// no windows (nobody is asked).
CONXOperatorPrompt_0* ScriptNewOwnOperatorPrompt();
