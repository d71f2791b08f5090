// Built-ins that steer the run: "delay" and "exit".
#pragma once

#include "script/ScriptSysFunc.h"

// delay(milliseconds): waits, watching the run's stop event; a stop request
// ends the wait at once with 13 "Processing aborted".
class CONXDelayFunc : public CONXScriptSysFunc {
public:
    explicit CONXDelayFunc(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};

// exit(): ends the run, and the runs of all calling scripts, without a diagnostic.
class CONXExitFunc : public CONXScriptSysFunc {
public:
    explicit CONXExitFunc(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};
