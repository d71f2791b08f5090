// Running another script file from a script: "executesubscript" (its main
// body) and "executesubscriptfunc" (one of its functions). The sub-script runs
// nested on the same thread, with its own built-ins and variables, its own
// base directory (its file's folder) and the caller's stop event, channel,
// output, limits and operator.
#pragma once

#include "script/ScriptSysFunc.h"

// executesubscript(file): the value of the sub-script's main function.
class CONXExecuteSubScript : public CONXScriptSysFunc {
public:
    explicit CONXExecuteSubScript(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;

private:
    COndDeviceComm_0* m_pChannel;
};

// executesubscriptfunc(file, function, arguments...): the function's value.
class CONXExecuteSubScriptFunc : public CONXScriptSysFunc {
public:
    explicit CONXExecuteSubScriptFunc(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;

private:
    COndDeviceComm_0* m_pChannel;
};
