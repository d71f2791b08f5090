// receive_bench: how long "s = receivestring(); n = strlen(s);" takes to
// collect 10 MB that the simulated device already holds. Prints the time of
// each round and the best; not a test.
#include <cstdio>
#include <string>
#include <vector>

#include "host/sim/SimDevice.h"
#include "os/Platform.h"
#include "script/ScriptRun.h"
#include "script/ScriptValue.h"
#include "scriptrt/SysFuncTable.h"

namespace {

void Print(void*, const char* text) { fputs(text, stdout); }

}  // namespace

int main() {
    const size_t kBytes = 10u << 20;
    std::string payload(kBytes, '\0');
    for (size_t i = 0; i < kBytes; ++i) payload[i] = (char)(i * 2654435761u >> 13);

    const char* script = "var string s; s = receivestring(); n = strlen(s);";
    uint64_t best = UINT64_MAX;
    for (int round = 1; round <= 5; ++round) {
        CSimDevice device;
        device.PreloadReceive(payload);
        CONXScriptRunContext context;
        context.m_sysFuncFactories = {ScriptRuntimeFactory};
        CONXScriptVariable n;
        n.SetName("n");
        n.SetType(SCRIPT_TYPE_UINT32);
        std::vector<CONXScriptVariable*> externals = {&n};
        uint64_t start = OsTickCount();
        uint32_t code = RunScript(&context, script, {.channel = &device, .externals = &externals,
                                  .output = Print});
        uint64_t elapsed = OsTickCount() - start;
        if (code != 0 || n.GetNumber() != kBytes) {
            fprintf(stderr, "receive_bench: run failed (code %u, %llu bytes)\n", code,
                    (unsigned long long)n.GetNumber());
            return 1;
        }
        if (elapsed < best) best = elapsed;
        printf("round %d: %zu bytes in %llu ms (%llu Receive calls, 20 ms of it the settle wait)\n",
               round, kBytes, (unsigned long long)elapsed,
               (unsigned long long)device.CallCount("Receive"));
    }
    printf("best: %llu ms for %zu bytes\n", (unsigned long long)best, kBytes);
    return 0;
}
