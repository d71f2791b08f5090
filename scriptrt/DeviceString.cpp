// transmitstring and receivestring.
#include <string>

#include "frame/OndDeviceComm.h"
#include "os/Platform.h"
#include "script/ScriptErrors.h"
#include "script/ScriptValue.h"
#include "scriptrt/DeviceFuncs.h"

namespace {

// Each read asks the channel for this much; the string grows geometrically,
// so draining a device that buffered megabytes stays linear.
constexpr uint32_t kReceiveChunk = 1024;
// After the first read the device gets this long to send the rest of its answer.
constexpr uint32_t kReceiveSettleMs = 20;

}  // namespace

CONXTransmitString::CONXTransmitString(const TSCRIPTSYSFUNCENV& env)
    : CONXScriptSysFunc("transmitstring", env.output, env.outputContext), m_pChannel(env.channel) {}

bool CONXTransmitString::CheckArgumentCount(size_t count) { return count == 1; }

uint32_t CONXTransmitString::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                     const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    try {
        if (arguments.size() != 1) return SCRIPT_ERR_PARAMCOUNT;
        if (arguments[0]->GetObjectKind() != SCRIPT_OBJ_VARIABLE) return SCRIPT_ERR_TYPE;
        CONXScriptVariable* s = static_cast<CONXScriptVariable*>(arguments[0])->Resolved();
        if (s->GetType() != SCRIPT_TYPE_STRING) return SCRIPT_ERR_TYPE;
        if (!m_pChannel) return 0;
        uint64_t written = 0;
        // The channel's answer is deliberately not looked at: a lost string is not a script error.
        (void)m_pChannel->Transmit(s->Text().data(), s->Text().size(), &written);
        return 0;
    } catch (...) {
        return SCRIPT_ERR_OUTOFMEMORY;  // nothing leaves a built-in
    }
}

CONXReceiveString::CONXReceiveString(const TSCRIPTSYSFUNCENV& env)
    : CONXScriptSysFunc("receivestring", env.output, env.outputContext), m_pChannel(env.channel) {}

bool CONXReceiveString::CheckArgumentCount(size_t count) { return count == 0; }

uint32_t CONXReceiveString::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                    const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    try {
        if (arguments.size() != 0) return SCRIPT_ERR_PARAMCOUNT;
        if (!result) return 0;  // a statement call leaves the device's bytes where they are

        // The run's string limit bounds what is worth collecting; a device that
        // never stops sending cannot eat all memory.
        uint64_t limit = UINT64_MAX;
        if (TSCRIPTSTRINGBUDGET* budget = ScriptStringBudget()) limit = budget->maxStringBytes;
        COsEvent* stop = runContext ? runContext->GetStopEvent() : nullptr;

        std::string collected;
        bool first = true;
        while (m_pChannel) {
            size_t have = collected.size();
            collected.resize(have + kReceiveChunk);  // amortised growth: linear in the bytes moved
            uint64_t received = 0;
            int32_t error = m_pChannel->Receive(&collected[have], kReceiveChunk, &received);
            if (error != 0 || received > kReceiveChunk) received = 0;  // an error keeps what came before
            collected.resize(have + (size_t)received);
            if (error != 0 || received == 0) break;
            if (collected.size() > limit) return SCRIPT_ERR_OUTOFMEMORY;
            if (stop && stop->IsSet()) return SCRIPT_ERR_ABORTED;
            if (first) {
                first = false;
                OsSleep(kReceiveSettleMs);
            }
        }
        return result->SetText(collected);
    } catch (...) {
        return SCRIPT_ERR_OUTOFMEMORY;  // nothing leaves a built-in
    }
}
