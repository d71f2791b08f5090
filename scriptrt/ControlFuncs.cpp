// "delay" and "exit".
#include "os/Platform.h"
#include "scriptrt/SysFuncs.h"

namespace ondbuiltin {

uint32_t Delay(const TSCRIPTSYSCALL& call) {
    CONXScriptRunContext* run = call.run;
    uint32_t ms = static_cast<uint32_t>(call.Number(0));  // 0xFFFFFFFF: no limit
    if (run && ms > run->m_limits.maxDelayMs) ms = run->m_limits.maxDelayMs;
    COsEvent* stop = run ? run->GetStopEvent() : nullptr;
    if (!stop) {
        if (ms != 0xFFFFFFFFu) OsSleep(ms);
        return ms == 0xFFFFFFFFu ? SCRIPT_ERR_ABORTED : 0;  // nobody could ever end it
    }
    return stop->Wait(ms) ? SCRIPT_ERR_ABORTED : 0;
}

uint32_t Exit(const TSCRIPTSYSCALL& call) { return SCRIPT_ERR_EXIT; }

}  // namespace ondbuiltin
