// "getsysdate" and "getsystime".
#include <cstdio>

#include "os/Platform.h"
#include "scriptrt/SysFuncs.h"

namespace ondbuiltin {

namespace {

// The local date ("dd.mm.yyyy") or time ("hh:mm:ss") as the call's value.
uint32_t AnswerClock(const TSCRIPTSYSCALL& call, bool date) {
    if (!call.result) return 0;
    TOSLOCALTIME now;
    OsLocalTime(&now);
    char text[40];
    if (date)
        snprintf(text, sizeof text, "%.02u.%.02u.%.04u", (unsigned)now.day, (unsigned)now.month,
                 (unsigned)now.year);
    else
        snprintf(text, sizeof text, "%.02u:%.02u:%02u", (unsigned)now.hour, (unsigned)now.minute,
                 (unsigned)now.second);
    return call.result->SetText(text);
}

}  // namespace

uint32_t GetSysDate(const TSCRIPTSYSCALL& call) { return AnswerClock(call, true); }
uint32_t GetSysTime(const TSCRIPTSYSCALL& call) { return AnswerClock(call, false); }

}  // namespace ondbuiltin
