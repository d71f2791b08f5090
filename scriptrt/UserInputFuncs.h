// Built-ins that ask the operator through the run's CONXOperatorPrompt_0. They
// keep all the rules (checks, limits, clamping, OK and Cancel results); the
// prompt only asks. Without a prompt (runContext->m_pOperator null) every
// question is answered as Cancel would be, and messagebox shows nothing.
#pragma once

#include <cstdint>
#include <string>

#include "script/ScriptSysFunc.h"

// messagebox(caption, text)
class CONXMessageBoxDialog : public CONXScriptSysFunc {
public:
    explicit CONXMessageBoxDialog(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};

// userinputdword / userinputuint32 (type 1), userinputint32 (3),
// userinputuint64 (4), userinputint64 (5):
// (caption, prompt, default [, minimum, maximum [, confirmed]])
class CONXUserInputNumDialog : public CONXScriptSysFunc {
public:
    CONXUserInputNumDialog(const TSCRIPTSYSFUNCENV& env, const char* name, uint32_t dataType);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;

private:
    uint32_t m_dataType;
};

// userinputstring(caption, prompt, default [, confirmed])
class CONXUserInputStringDialog : public CONXScriptSysFunc {
public:
    explicit CONXUserInputStringDialog(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};

// userlistinput(caption, prompt, items, default [, confirmed]): items is one
// string with each item ended by a NUL byte; text after the last NUL is an
// item too. A default outside the list selects the first line; an empty list
// is answered as Cancel without asking.
class CONXUserListInputDialog : public CONXScriptSysFunc {
public:
    explicit CONXUserListInputDialog(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};

// --- helpers for the askers (the Windows dialog, the console) ---------------

enum EUSERINPUTCHECK : uint32_t {
    USERINPUT_CHECK_OK = 0,
    USERINPUT_CHECK_NOT_A_NUMBER = 1,  // ask again, showing the current value
    USERINPUT_CHECK_TOO_SMALL = 2,     // message: "Value must be >= ..."
    USERINPUT_CHECK_TOO_LARGE = 3,     // message: "Value must be <= ..."
};

// Reads a typed text as the C scanner does with the type's decimal format
// (leading blanks skipped, trailing text ignored) and checks it against the
// limits. *value gets the number when one was read; *message the text to show
// for TOO_SMALL and TOO_LARGE.
EUSERINPUTCHECK UserInputCheckNumber(const char* text, uint32_t type, uint64_t minimum,
                                     uint64_t maximum, uint64_t* value, std::string* message);

// A number in the type's decimal format ("%u", "%d", and their 64-bit forms).
std::string UserInputFormatNumber(uint32_t type, uint64_t value);
