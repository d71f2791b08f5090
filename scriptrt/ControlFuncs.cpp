// "delay" and "exit".
#include "scriptrt/ControlFuncs.h"

#include "os/Platform.h"
#include "scriptrt/SysFuncArgs.h"

CONXDelayFunc::CONXDelayFunc(const TSCRIPTSYSFUNCENV& env)
    : CONXScriptSysFunc("delay", env.output, env.outputContext) {}

bool CONXDelayFunc::CheckArgumentCount(size_t count) { return count == 1; }

uint32_t CONXDelayFunc::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    if (!CheckArgumentCount(arguments.size())) return SCRIPT_ERR_PARAMCOUNT;
    if (uint32_t err = ScriptCheckArguments(arguments, "n")) return err;
    uint32_t ms = static_cast<uint32_t>(ScriptArgNumber(arguments, 0));  // 0xFFFFFFFF: no limit
    if (runContext && ms > runContext->m_limits.maxDelayMs) ms = runContext->m_limits.maxDelayMs;
    COsEvent* stop = runContext ? runContext->GetStopEvent() : nullptr;
    if (!stop) {
        if (ms != 0xFFFFFFFFu) OsSleep(ms);
        return ms == 0xFFFFFFFFu ? SCRIPT_ERR_ABORTED : 0;  // nobody could ever end it
    }
    return stop->Wait(ms) ? SCRIPT_ERR_ABORTED : 0;
}

CONXExitFunc::CONXExitFunc(const TSCRIPTSYSFUNCENV& env)
    : CONXScriptSysFunc("exit", env.output, env.outputContext) {}

bool CONXExitFunc::CheckArgumentCount(size_t count) { return count == 0; }

uint32_t CONXExitFunc::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                               const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    if (!CheckArgumentCount(arguments.size())) return SCRIPT_ERR_PARAMCOUNT;
    return SCRIPT_ERR_EXIT;
}
