// The system function base.
#include "script/ScriptSysFunc.h"

#include "script/ScriptErrors.h"

CONXScriptSysFunc::CONXScriptSysFunc(const char* name, TSCRIPTOUTPUTFUNC output, void* outputContext)
    : m_output(output), m_outputContext(outputContext) {
    SetName(name);
    m_isBuiltIn = true;
}

bool CONXScriptSysFunc::CheckArgumentCount(size_t count) { return true; }

uint32_t CONXScriptSysFunc::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                    const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    return SCRIPT_ERR_SYSFUNC;
}

bool CONXScriptSysFunc::AllArgumentsOfKind(const TSCRIPTARGS& arguments, uint32_t kind) {
    for (CONXScriptObject* a : arguments)
        if (a->GetObjectKind() != kind) return false;
    return true;
}

void CONXScriptSysFunc::Output(const char* text) {
    if (m_output) m_output(m_outputContext, text);
}
