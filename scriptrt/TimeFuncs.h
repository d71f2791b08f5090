// The clock built-ins: "getsysdate" ("DD.MM.YYYY") and "getsystime" ("hh:mm:ss"),
// both from the computer's local time.
#pragma once

#include "script/ScriptSysFunc.h"

class CONXGetSysDateFunc : public CONXScriptSysFunc {
public:
    explicit CONXGetSysDateFunc(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};

class CONXGetSysTimeFunc : public CONXScriptSysFunc {
public:
    explicit CONXGetSysTimeFunc(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};
