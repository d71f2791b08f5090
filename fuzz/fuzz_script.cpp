// Fuzzes the script language: arbitrary text through lexing, parsing and
// running, with the engine's test print, a step budget so endless loops end,
// and small string limits. Each input runs twice, with and without the
// numbers-only shortcut; code and output must agree.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "script/ScriptExec.h"
#include "script/ScriptRun.h"
#include "script/ScriptTestPrint.h"

namespace {

void Collect(void* context, const char* text) {
    std::string* out = static_cast<std::string*>(context);
    if (out->size() < (1u << 16)) out->append(text);
}

uint32_t Run(const std::string& text, bool fast, std::string* out) {
    g_ScriptFastPath = fast;
    CONXScriptRunContext context;
    context.m_limits.maxSteps = 20000;
    context.m_limits.maxStringBytes = 1 << 16;
    context.m_limits.maxTotalStringBytes = 1 << 20;
    context.m_sysFuncFactories.push_back(ScriptTestPrintFactory);
    return RunScript(&context, nullptr, text.c_str(), "Z:\\tmp", nullptr, nullptr, nullptr, Collect,
                     out, nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);  // ends at its first NUL
    std::string fastOut, slowOut;
    uint32_t fastCode = Run(text, true, &fastOut);
    uint32_t slowCode = Run(text, false, &slowOut);
    // Out of stack depends on frame sizes, which the two paths do not share.
    if (fastCode == 1 || slowCode == 1) return 0;
    if (fastCode != slowCode || fastOut != slowOut) {
        fprintf(stderr, "fast and ordinary evaluation differ: %08X \"%s\" / %08X \"%s\"\n", fastCode,
                fastOut.c_str(), slowCode, slowOut.c_str());
        abort();
    }
    return 0;
}
