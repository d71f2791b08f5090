// The functions behind the Script Processor's built-ins, by topic. The table
// in SysFuncTable.cpp names them, with the count rule and the signature that
// are checked before any of them runs.
#pragma once

#include "script/ScriptErrors.h"
#include "script/ScriptSysFunc.h"

namespace ondbuiltin {

// --- text (TextFuncs.cpp) ---
uint32_t Print(const TSCRIPTSYSCALL& call);   // each argument by one call of the output
uint32_t Strlen(const TSCRIPTSYSCALL& call);
uint32_t SubStr(const TSCRIPTSYSCALL& call);  // (s, start [, length])
uint32_t Instr(const TSCRIPTSYSCALL& call);   // (s, searched [, start]): -1 when not found
uint32_t Ascii(const TSCRIPTSYSCALL& call);
uint32_t Chr(const TSCRIPTSYSCALL& call);

// --- numbers (NumberFuncs.cpp) ---
uint32_t StrToNum(const TSCRIPTSYSCALL& call);     // scans with def.format, gives def.type
uint32_t NumToStr(const TSCRIPTSYSCALL& call);     // decimal, by the argument's type
uint32_t NumToHexStr(const TSCRIPTSYSCALL& call);  // upper-case hexadecimal, likewise

// --- control (ControlFuncs.cpp) ---
// delay(milliseconds): waits, watching the run's stop event; a stop request
// ends the wait at once with 13 "Processing aborted".
uint32_t Delay(const TSCRIPTSYSCALL& call);
// exit(): ends the run, and the runs of all calling scripts, without a diagnostic.
uint32_t Exit(const TSCRIPTSYSCALL& call);

// --- sub-scripts (SubScriptFuncs.cpp) ---
// Another script file runs nested on the same thread, with its own built-ins
// and variables, its own base directory (its file's folder) and the caller's
// stop event, channel, output, limits and operator.
uint32_t ExecuteSubScript(const TSCRIPTSYSCALL& call);      // (file): its main body's value
uint32_t ExecuteSubScriptFunc(const TSCRIPTSYSCALL& call);  // (file, function, arguments...)

// --- local files (FileFuncs.cpp) ---
// Names are resolved against the running script's base directory; a file
// that cannot be opened shows in the result (0 or ""), never as an error.
uint32_t WriteStringToFile(const TSCRIPTSYSCALL& call);  // (file, text [, offset [, start [, count]]])
uint32_t ReadStringFromFile(const TSCRIPTSYSCALL& call); // (file [, offset [, length]])
uint32_t GetFileSize(const TSCRIPTSYSCALL& call);
uint32_t GetBasePath(const TSCRIPTSYSCALL& call);

// --- clock (TimeFuncs.cpp): the computer's local time ---
uint32_t GetSysDate(const TSCRIPTSYSCALL& call);  // "DD.MM.YYYY"
uint32_t GetSysTime(const TSCRIPTSYSCALL& call);  // "hh:mm:ss"

// --- device I/O (DeviceString.cpp, DeviceTransfer.cpp) ---
// They use the run's channel and never lock it: the Script Processor holds it
// for the whole run.
uint32_t TransmitString(const TSCRIPTSYSCALL& call);  // the channel's answer is not looked at
// Everything the device has to give, until it has nothing more. A device that
// keeps sending is cut off by a stop request (13) or by the run's string limit (1).
uint32_t ReceiveString(const TSCRIPTSYSCALL& call);
uint32_t TransmitFile(const TSCRIPTSYSCALL& call);            // (file, id, type, mode [, ignoreFailure])
uint32_t TransmitFileFromString(const TSCRIPTSYSCALL& call);  // (data, id, type, mode [, ignoreFailure])
uint32_t ExecuteJobFile(const TSCRIPTSYSCALL& call);  // (jobFile [, continueAfterError [, ignoreFailure]])

// --- operator questions (UserInputDialogs.cpp, UserInputNumber.cpp) ---
// Asked through the run's CONXOperatorPrompt_0, which only asks: the checks,
// limits, clamping and the OK and Cancel results are kept here. Without a
// prompt every question is answered as Cancel would be, and messagebox shows
// nothing.
uint32_t ShowMessage(const TSCRIPTSYSCALL& call);  // messagebox(caption, text)
// (caption, prompt, default [, minimum, maximum [, confirmed]]) in def.type
uint32_t AskNumber(const TSCRIPTSYSCALL& call);
uint32_t AskString(const TSCRIPTSYSCALL& call);    // (caption, prompt, default [, confirmed])
// userlistinput(caption, prompt, items, default [, confirmed]): items is one
// string with each item ended by a NUL byte; text after the last NUL is an
// item too. A default outside the list selects the first line; an empty list
// is answered as Cancel without asking.
uint32_t AskListItem(const TSCRIPTSYSCALL& call);

}  // namespace ondbuiltin
