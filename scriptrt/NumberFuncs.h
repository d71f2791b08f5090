// Conversions between numbers and text: the "strto..." and "hexstrto..."
// scans and the "...tostr" and "...tohexstr" formats.
#pragma once

#include <cstdint>
#include <type_traits>

#include "script/ScriptSysFunc.h"
#include "scriptrt/NumberScan.h"
#include "scriptrt/SysFuncArgs.h"

// Scans its one string argument with a scan format into a T and gives it
// with the result type code. T: uint32_t, int32_t, uint64_t or int64_t.
template <typename T>
class CONXStrToNumFunc : public CONXScriptSysFunc {
    static_assert(std::is_integral_v<T> && (sizeof(T) == 4 || sizeof(T) == 8));

public:
    CONXStrToNumFunc(const TSCRIPTSYSFUNCENV& env, const char* name, const char* format,
                     uint32_t resultType)
        : CONXScriptSysFunc(name, env.output, env.outputContext), m_resultType(resultType) {
        m_readsArgumentsOnly = true;
        size_t i = 0;
        for (; format && format[i] && i + 1 < sizeof m_format; i++) m_format[i] = format[i];
        m_format[i] = '\0';
    }
    bool CheckArgumentCount(size_t count) override { return count == 1; }
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override {
        if (!CheckArgumentCount(arguments.size())) return SCRIPT_ERR_PARAMCOUNT;
        if (uint32_t err = ScriptCheckArguments(arguments, "s")) return err;
        if (!result) return 0;
        uint64_t scanned;
        if (!ScriptScanNumber(ScriptArgText(arguments, 0).c_str(), m_format, &scanned))
            return SCRIPT_ERR_TYPE;
        const T value = static_cast<T>(scanned);
        // Widened by T's own signedness, as the variable would read it back.
        uint64_t wide = std::is_signed_v<T> ? static_cast<uint64_t>(static_cast<int64_t>(value))
                                            : static_cast<uint64_t>(value);
        return result->SetNumber(wide, m_resultType);
    }

private:
    char m_format[12];
    uint32_t m_resultType;
};

// Formats its one numeric argument with the format for the argument's type:
// the first for type 1, then 3, 4, 5.
class CONXNumToStrFunc : public CONXScriptSysFunc {
public:
    CONXNumToStrFunc(const TSCRIPTSYSFUNCENV& env, const char* name, const char* format32u,
                     const char* format32s, const char* format64u, const char* format64s);
    bool CheckArgumentCount(size_t count) override;
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;

private:
    char m_formats[4][10];
};
