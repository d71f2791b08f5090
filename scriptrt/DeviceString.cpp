// "transmitstring" and "receivestring".
#include <string>

#include "frame/OndDeviceComm.h"
#include "os/Platform.h"
#include "scriptrt/SysFuncs.h"

namespace ondbuiltin {

namespace {

// Each read asks the channel for this much; the string grows geometrically,
// so draining a device that buffered megabytes stays linear.
constexpr uint32_t kReceiveChunk = 1024;
// After the first read the device gets this long to send the rest of its answer.
constexpr uint32_t kReceiveSettleMs = 20;

}  // namespace

uint32_t TransmitString(const TSCRIPTSYSCALL& call) {
    COndDeviceComm_0* channel = call.env.channel;
    if (!channel) return 0;
    const std::string& s = call.Text(0);
    uint64_t written = 0;
    // The channel's answer is deliberately not looked at: a lost string is not a script error.
    (void)channel->Transmit(s.data(), s.size(), &written);
    return 0;
}

uint32_t ReceiveString(const TSCRIPTSYSCALL& call) {
    if (!call.result) return 0;  // a statement call leaves the device's bytes where they are
    COndDeviceComm_0* channel = call.env.channel;
    // The run's string limit bounds what is worth collecting; a device that
    // never stops sending cannot eat all memory.
    uint64_t limit = UINT64_MAX;
    if (TSCRIPTSTRINGBUDGET* budget = ScriptStringBudget()) limit = budget->maxStringBytes;
    COsEvent* stop = call.run ? call.run->GetStopEvent() : nullptr;

    std::string collected;
    bool first = true;
    while (channel) {
        size_t have = collected.size();
        collected.resize(have + kReceiveChunk);  // amortised growth: linear in the bytes moved
        uint64_t received = 0;
        int32_t error = channel->Receive(&collected[have], kReceiveChunk, &received);
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
    return call.result->SetText(collected);
}

}  // namespace ondbuiltin
