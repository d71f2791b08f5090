// "getsysdate" and "getsystime".
#include "scriptrt/TimeFuncs.h"

#include <cstdio>

#include "os/Platform.h"
#include "script/ScriptErrors.h"

namespace {

// The local date ("dd.mm.yyyy") or time ("hh:mm:ss") as the call's value.
uint32_t AnswerClock(const TSCRIPTARGS& arguments, CONXScriptVariable* result, bool date) {
    if (arguments.size() != 0) return SCRIPT_ERR_PARAMCOUNT;
    if (!result) return 0;
    TOSLOCALTIME now;
    OsLocalTime(&now);
    char text[40];
    if (date)
        snprintf(text, sizeof text, "%.02u.%.02u.%.04u", (unsigned)now.day, (unsigned)now.month,
                 (unsigned)now.year);
    else
        snprintf(text, sizeof text, "%.02u:%.02u:%02u", (unsigned)now.hour, (unsigned)now.minute,
                 (unsigned)now.second);
    return result->SetText(text);
}

}  // namespace

CONXGetSysDateFunc::CONXGetSysDateFunc(const TSCRIPTSYSFUNCENV& env)
    : CONXScriptSysFunc("getsysdate", env.output, env.outputContext) {}

bool CONXGetSysDateFunc::CheckArgumentCount(size_t count) { return count == 0; }

uint32_t CONXGetSysDateFunc::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                     const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    return AnswerClock(arguments, result, true);
}

CONXGetSysTimeFunc::CONXGetSysTimeFunc(const TSCRIPTSYSFUNCENV& env)
    : CONXScriptSysFunc("getsystime", env.output, env.outputContext) {}

bool CONXGetSysTimeFunc::CheckArgumentCount(size_t count) { return count == 0; }

uint32_t CONXGetSysTimeFunc::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                     const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    return AnswerClock(arguments, result, false);
}
