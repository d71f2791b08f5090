// String built-ins: "print", "strlen", "substr", "instr", "ascii", "chr".
#pragma once

#include "script/ScriptSysFunc.h"

// Any number of arguments, each written by one call of the output function.
class CONXPrintFunc : public CONXScriptSysFunc {
public:
    explicit CONXPrintFunc(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};

class CONXStrlenFunc : public CONXScriptSysFunc {
public:
    explicit CONXStrlenFunc(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};

class CONXSubStrFunc : public CONXScriptSysFunc {
public:
    explicit CONXSubStrFunc(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};

class CONXInstrFunc : public CONXScriptSysFunc {
public:
    explicit CONXInstrFunc(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};

class CONXASCIIFunc : public CONXScriptSysFunc {
public:
    explicit CONXASCIIFunc(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};

class CONXChrFunc : public CONXScriptSysFunc {
public:
    explicit CONXChrFunc(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};
