// The system function base and the table-driven built-in.
#include "script/ScriptSysFunc.h"

#include "script/ScriptErrors.h"
#include "util/OutOfMemory.h"

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

void CONXScriptSysFunc::Output(const char* text) {
    if (m_output) m_output(m_outputContext, text);
}

uint32_t ScriptCheckArguments(const TSCRIPTARGS& arguments, const char* signature) {
    // Every failure is the same 10, so one pass over the arguments tells.
    bool letters = true;
    for (size_t i = 0; i < arguments.size(); i++) {
        // A variable's kind tag is its kind: a reference leads only to another variable.
        if (arguments[i]->KindTag() != SCRIPT_OBJ_VARIABLE) return SCRIPT_ERR_TYPE;
        letters = letters && signature[i];
        if (!letters) continue;
        uint32_t type = static_cast<CONXScriptVariable*>(arguments[i])->Resolved()->Type();
        if (signature[i] == 's' && type != SCRIPT_TYPE_STRING) return SCRIPT_ERR_TYPE;
        if (signature[i] == 'n' && !ScriptTypeIsNumeric(type)) return SCRIPT_ERR_TYPE;
    }
    return 0;
}

CONXScriptTableFunc::CONXScriptTableFunc(const TSCRIPTSYSFUNCDEF& def, const TSCRIPTSYSFUNCENV& env)
    : CONXScriptSysFunc(def.name, env.output, env.outputContext), m_def(def), m_env(env) {
    m_readsArgumentsOnly = def.readsOnly;
}

bool CONXScriptTableFunc::CheckArgumentCount(size_t count) {
    return ScriptArgCountAccepted(m_def.counts, count);
}

uint32_t CONXScriptTableFunc::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                      const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    if (!CheckArgumentCount(arguments.size())) return SCRIPT_ERR_PARAMCOUNT;
    if (m_def.signature) {
        if (uint32_t err = ScriptCheckArguments(arguments, m_def.signature)) return err;
    }
    const TSCRIPTSYSCALL call = {m_def, m_env, runContext, arguments, result};
    // Nothing leaves a built-in: a failed allocation is the run's out-of-memory error.
    return ondutil::CatchAll(SCRIPT_ERR_OUTOFMEMORY, SCRIPT_ERR_OUTOFMEMORY,
                             [&] { return m_def.function(call); });
}
