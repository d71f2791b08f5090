// Running scripts from the unit tests: the engine's test print, output collected.
#pragma once

#include <string>

#include "script/ScriptRun.h"
#include "script/ScriptTestPrint.h"

struct TSCRIPTTESTRUN {
    uint32_t code = 0;
    std::string output;
};

inline void ScriptTestCollect(void* context, const char* text) {
    static_cast<std::string*>(context)->append(text);
}

inline TSCRIPTTESTRUN ScriptTestRun(const std::string& text, CONXScriptRunContext* context = nullptr) {
    CONXScriptRunContext own;
    if (!context) context = &own;
    if (context->m_sysFuncFactories.empty()) context->m_sysFuncFactories.push_back(ScriptTestPrintFactory);
    TSCRIPTTESTRUN run;
    run.code = RunScript(context, nullptr, text.c_str(), "Z:\\tmp", nullptr, nullptr, nullptr,
                         ScriptTestCollect, &run.output, nullptr);
    return run;
}
