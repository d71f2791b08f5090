// Fuzzes the script language: arbitrary text through lexing, parsing and
// running, with the engine's test print (no output function), a step budget
// so endless loops end, and small string limits.
#include <cstddef>
#include <cstdint>
#include <string>

#include "script/ScriptRun.h"
#include "script/ScriptTestPrint.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);  // ends at its first NUL
    CONXScriptRunContext context;
    context.m_limits.maxSteps = 20000;
    context.m_limits.maxStringBytes = 1 << 16;
    context.m_limits.maxTotalStringBytes = 1 << 20;
    context.m_sysFuncFactories.push_back(ScriptTestPrintFactory);
    (void)RunScript(&context, nullptr, text.c_str(), "Z:\\tmp", nullptr, nullptr, nullptr, nullptr,
                    nullptr, nullptr);
    return 0;
}
