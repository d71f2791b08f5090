// Number formatting built-ins.
#include "scriptrt/NumberFuncs.h"

#include <string>

CONXNumToStrFunc::CONXNumToStrFunc(const TSCRIPTSYSFUNCENV& env, const char* name,
                                   const char* format32u, const char* format32s,
                                   const char* format64u, const char* format64s)
    : CONXScriptSysFunc(name, env.output, env.outputContext) {
    m_readsArgumentsOnly = true;
    const char* formats[4] = {format32u, format32s, format64u, format64s};
    for (int f = 0; f < 4; f++) {
        size_t i = 0;
        for (; formats[f] && formats[f][i] && i + 1 < sizeof m_formats[f]; i++)
            m_formats[f][i] = formats[f][i];
        m_formats[f][i] = '\0';
    }
}

bool CONXNumToStrFunc::CheckArgumentCount(size_t count) { return count == 1; }

uint32_t CONXNumToStrFunc::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    if (!CheckArgumentCount(arguments.size())) return SCRIPT_ERR_PARAMCOUNT;
    // The type is checked even when nobody takes the value.
    if (uint32_t err = ScriptCheckArguments(arguments, "n")) return err;
    if (!result) return 0;
    CONXScriptVariable* v = ScriptArgVariable(arguments, 0);
    int index = 0;
    switch (v->Type()) {
    case SCRIPT_TYPE_UINT32: index = 0; break;
    case SCRIPT_TYPE_INT32: index = 1; break;
    case SCRIPT_TYPE_UINT64: index = 2; break;
    default: index = 3; break;
    }
    return result->SetText(ScriptFormatNumber(m_formats[index], v->Number()));
}
