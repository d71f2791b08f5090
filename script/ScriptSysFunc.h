// Base of every built-in system function. A built-in is a script function
// object, so the engine finds and calls built-ins and user functions alike.
#pragma once

#include <cstdint>

#include "script/ScriptFunc.h"
#include "script/ScriptRun.h"

class CONXScriptSysFunc : public CONXScriptFunc {
public:
    CONXScriptSysFunc(const char* name, TSCRIPTOUTPUTFUNC output, void* outputContext);
    ~CONXScriptSysFunc() override = default;

    // Each built-in has its own count rule; this base accepts any count.
    bool CheckArgumentCount(size_t count) override;
    // Each built-in does its own work; this base has none to do.
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;

    // True when every argument is of the given object kind (also for none).
    static bool AllArgumentsOfKind(const TSCRIPTARGS& arguments, uint32_t kind);

protected:
    // Writes text through the output function, if there is one.
    void Output(const char* text);

    TSCRIPTOUTPUTFUNC m_output;
    void* m_outputContext;
};
