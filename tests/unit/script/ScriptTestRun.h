// Running scripts from the unit tests: every built-in, output collected.
#pragma once

#include <string>

#include "script/ScriptRun.h"
#include "script/ScriptSysFunc.h"
#include "scriptrt/SysFuncTable.h"

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
    if (context->m_sysFuncFactories.empty()) context->m_sysFuncFactories.push_back(ScriptRuntimeFactory);
    TSCRIPTTESTRUN run;
    run.code = RunScript(context, text.c_str(), {.scriptDirectory = "Z:\\tmp",
                         .output = ScriptTestCollect, .outputContext = &run.output});
    return run;
}
