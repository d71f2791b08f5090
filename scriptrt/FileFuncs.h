// Local file built-ins: "writestringtofile", "readstringfromfile",
// "getfilesize", "getbasepath". Names are resolved against the running
// script's base directory; a file that cannot be opened shows in the result
// (0 or ""), never as an error.
#pragma once

#include "script/ScriptSysFunc.h"

// writestringtofile(file, text [, offset [, start [, count]]]): bytes written.
class CONXWriteStringToFileFunc : public CONXScriptSysFunc {
public:
    explicit CONXWriteStringToFileFunc(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};

// readstringfromfile(file [, offset [, length]]): the bytes read.
class CONXReadStringFromFileFunc : public CONXScriptSysFunc {
public:
    explicit CONXReadStringFromFileFunc(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};

// getfilesize(file): the size, 0 when the file cannot be opened.
class CONXGetFileSizeFunc : public CONXScriptSysFunc {
public:
    explicit CONXGetFileSizeFunc(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};

// getbasepath(): the running script's base directory.
class CONXGetBasePathFunc : public CONXScriptSysFunc {
public:
    explicit CONXGetBasePathFunc(const TSCRIPTSYSFUNCENV& env);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;
};
