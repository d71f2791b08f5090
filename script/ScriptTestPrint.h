// "print" for the engine's own test drivers, fuzzer and benchmark runner,
// until the Script Processor's built-ins take over: one output call per
// argument, numbers by their type, strings with NUL bytes shown as "\0".
#pragma once

#include "script/ScriptSysFunc.h"

class CONXScriptTestPrint : public CONXScriptSysFunc {
public:
    CONXScriptTestPrint(TSCRIPTOUTPUTFUNC output, void* outputContext)
        : CONXScriptSysFunc("print", output, outputContext) {}
    bool CheckArgumentCount(size_t count) override { return true; }
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};

// A factory for CONXScriptRunContext::m_sysFuncFactories.
void ScriptTestPrintFactory(const TSCRIPTSYSFUNCENV& env, std::vector<CONXScriptSysFunc*>* functions);
