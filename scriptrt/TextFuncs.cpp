// String built-ins: "print", "strlen", "substr", "instr", "ascii", "chr".
#include <string>

#include "scriptrt/NumberScan.h"
#include "scriptrt/SysFuncs.h"

namespace ondbuiltin {

namespace {
const char* const kPrintFormats[] = {nullptr, "%u", nullptr, "%d", "%I64u", "%I64d"};
}

uint32_t Print(const TSCRIPTSYSCALL& call) {
    if (!call.env.output) return 0;
    for (CONXScriptObject* a : call.arguments) {
        if (a->GetObjectKind() != SCRIPT_OBJ_VARIABLE) continue;  // skipped, not an error
        CONXScriptVariable* v = static_cast<CONXScriptVariable*>(a)->Resolved();
        uint32_t type = v->Type();
        if (type == SCRIPT_TYPE_STRING) {
            const std::string& text = v->Text();
            if (text.find('\0') == std::string::npos) {
                call.Output(text.c_str());
                continue;
            }
            // The output takes C strings: a NUL byte is shown as the two characters "\0".
            std::string shown;
            shown.reserve(text.size() + 8);
            for (char c : text) {
                if (c == '\0') shown += "\\0";
                else shown += c;
            }
            call.Output(shown.c_str());
        } else if (ScriptTypeIsNumeric(type)) {
            call.Output(ScriptFormatNumber(kPrintFormats[type], v->Number()).c_str());
        }
    }
    return 0;
}

uint32_t Strlen(const TSCRIPTSYSCALL& call) {
    if (!call.result) return 0;
    return call.result->SetNumber(call.Text(0).size(), SCRIPT_TYPE_UINT32);
}

uint32_t SubStr(const TSCRIPTSYSCALL& call) {
    if (!call.result) return 0;
    const std::string& s = call.Text(0);
    uint64_t start = call.Number(1);
    uint64_t length = call.NumberOr(2, ~0ull);
    if (start >= s.size()) return call.result->SetText(std::string());
    uint64_t rest = s.size() - start;
    return call.result->SetText(s.substr((size_t)start, (size_t)(length < rest ? length : rest)));
}

uint32_t Instr(const TSCRIPTSYSCALL& call) {
    if (!call.result) return 0;
    const std::string& s = call.Text(0);
    uint64_t start = call.NumberOr(2, 0);
    uint64_t found = ~0ull;  // -1: not found
    if (start <= s.size()) {
        size_t at = s.find(call.Text(1), (size_t)start);
        if (at != std::string::npos) found = at;
    }
    return call.result->SetNumber(found, SCRIPT_TYPE_INT32);
}

uint32_t Ascii(const TSCRIPTSYSCALL& call) {
    if (!call.result) return 0;
    const std::string& s = call.Text(0);
    return call.result->SetNumber(s.empty() ? 0 : (unsigned char)s[0], SCRIPT_TYPE_UINT32);
}

uint32_t Chr(const TSCRIPTSYSCALL& call) {
    if (!call.result) return 0;
    const char c = (char)(uint8_t)call.Number(0);
    return call.result->SetText(std::string(1, c));  // chr(0) is one NUL byte, not ""
}

}  // namespace ondbuiltin
