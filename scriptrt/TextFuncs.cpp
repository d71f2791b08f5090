// String built-ins.
#include "scriptrt/TextFuncs.h"

#include <string>

#include "scriptrt/NumberScan.h"
#include "scriptrt/SysFuncArgs.h"

namespace {
const char* const kPrintFormats[] = {nullptr, "%u", nullptr, "%d", "%I64u", "%I64d"};
}

// --- print ---

CONXPrintFunc::CONXPrintFunc(const TSCRIPTSYSFUNCENV& env)
    : CONXScriptSysFunc("print", env.output, env.outputContext) {
    m_readsArgumentsOnly = true;
}

bool CONXPrintFunc::CheckArgumentCount(size_t count) { return true; }

uint32_t CONXPrintFunc::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    if (!m_output) return 0;
    for (CONXScriptObject* a : arguments) {
        if (a->GetObjectKind() != SCRIPT_OBJ_VARIABLE) continue;  // skipped, not an error
        CONXScriptVariable* v = static_cast<CONXScriptVariable*>(a)->Resolved();
        uint32_t type = v->Type();
        if (type == SCRIPT_TYPE_STRING) {
            const std::string& text = v->Text();
            if (text.find('\0') == std::string::npos) {
                Output(text.c_str());
                continue;
            }
            // The output takes C strings: a NUL byte is shown as the two characters "\0".
            std::string shown;
            shown.reserve(text.size() + 8);
            for (char c : text) {
                if (c == '\0') shown += "\\0";
                else shown += c;
            }
            Output(shown.c_str());
        } else if (ScriptTypeIsNumeric(type)) {
            Output(ScriptFormatNumber(kPrintFormats[type], v->Number()).c_str());
        }
    }
    return 0;
}

// --- strlen(s) ---

CONXStrlenFunc::CONXStrlenFunc(const TSCRIPTSYSFUNCENV& env)
    : CONXScriptSysFunc("strlen", env.output, env.outputContext) {
    m_readsArgumentsOnly = true;
}

bool CONXStrlenFunc::CheckArgumentCount(size_t count) { return count == 1; }

uint32_t CONXStrlenFunc::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                 const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    if (!CheckArgumentCount(arguments.size())) return SCRIPT_ERR_PARAMCOUNT;
    if (uint32_t err = ScriptCheckArguments(arguments, "s")) return err;
    if (!result) return 0;
    return result->SetNumber(ScriptArgText(arguments, 0).size(), SCRIPT_TYPE_UINT32);
}

// --- substr(s, start [, length]) ---

CONXSubStrFunc::CONXSubStrFunc(const TSCRIPTSYSFUNCENV& env)
    : CONXScriptSysFunc("substr", env.output, env.outputContext) {
    m_readsArgumentsOnly = true;
}

bool CONXSubStrFunc::CheckArgumentCount(size_t count) { return count == 2 || count == 3; }

uint32_t CONXSubStrFunc::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                 const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    if (!CheckArgumentCount(arguments.size())) return SCRIPT_ERR_PARAMCOUNT;
    if (uint32_t err = ScriptCheckArguments(arguments, "snn")) return err;
    if (!result) return 0;
    const std::string& s = ScriptArgText(arguments, 0);
    uint64_t start = ScriptArgNumber(arguments, 1);
    uint64_t length = ScriptArgNumberOr(arguments, 2, ~0ull);
    if (start >= s.size()) return result->SetText(std::string());
    uint64_t rest = s.size() - start;
    return result->SetText(s.substr((size_t)start, (size_t)(length < rest ? length : rest)));
}

// --- instr(s, searched [, start]) ---

CONXInstrFunc::CONXInstrFunc(const TSCRIPTSYSFUNCENV& env)
    : CONXScriptSysFunc("instr", env.output, env.outputContext) {
    m_readsArgumentsOnly = true;
}

bool CONXInstrFunc::CheckArgumentCount(size_t count) { return count == 2 || count == 3; }

uint32_t CONXInstrFunc::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    if (!CheckArgumentCount(arguments.size())) return SCRIPT_ERR_PARAMCOUNT;
    if (uint32_t err = ScriptCheckArguments(arguments, "ssn")) return err;
    if (!result) return 0;
    const std::string& s = ScriptArgText(arguments, 0);
    const std::string& searched = ScriptArgText(arguments, 1);
    uint64_t start = ScriptArgNumberOr(arguments, 2, 0);
    uint64_t found = ~0ull;  // -1: not found
    if (start <= s.size()) {
        size_t at = s.find(searched, (size_t)start);
        if (at != std::string::npos) found = at;
    }
    return result->SetNumber(found, SCRIPT_TYPE_INT32);
}

// --- ascii(s) ---

CONXASCIIFunc::CONXASCIIFunc(const TSCRIPTSYSFUNCENV& env)
    : CONXScriptSysFunc("ascii", env.output, env.outputContext) {
    m_readsArgumentsOnly = true;
}

bool CONXASCIIFunc::CheckArgumentCount(size_t count) { return count == 1; }

uint32_t CONXASCIIFunc::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    if (!CheckArgumentCount(arguments.size())) return SCRIPT_ERR_PARAMCOUNT;
    if (uint32_t err = ScriptCheckArguments(arguments, "s")) return err;
    if (!result) return 0;
    const std::string& s = ScriptArgText(arguments, 0);
    return result->SetNumber(s.empty() ? 0 : (unsigned char)s[0], SCRIPT_TYPE_UINT32);
}

// --- chr(n) ---

CONXChrFunc::CONXChrFunc(const TSCRIPTSYSFUNCENV& env)
    : CONXScriptSysFunc("chr", env.output, env.outputContext) {
    m_readsArgumentsOnly = true;
}

bool CONXChrFunc::CheckArgumentCount(size_t count) { return count == 1; }

uint32_t CONXChrFunc::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                              const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    if (!CheckArgumentCount(arguments.size())) return SCRIPT_ERR_PARAMCOUNT;
    if (uint32_t err = ScriptCheckArguments(arguments, "n")) return err;
    if (!result) return 0;
    const char c = (char)(uint8_t)ScriptArgNumber(arguments, 0);
    return result->SetText(std::string(1, c));  // chr(0) is one NUL byte, not ""
}
