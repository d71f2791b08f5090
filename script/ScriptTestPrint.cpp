// The test drivers' "print".
#include "script/ScriptTestPrint.h"

#include <cinttypes>
#include <cstdio>
#include <memory>
#include <string>

#include "script/ScriptValue.h"

uint32_t CONXScriptTestPrint::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                      const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    for (CONXScriptObject* a : arguments) {
        if (!m_output || a->GetObjectKind() != SCRIPT_OBJ_VARIABLE) continue;
        CONXScriptVariable* v = static_cast<CONXScriptVariable*>(a);
        char buffer[32];
        switch (v->GetType()) {
        case SCRIPT_TYPE_UINT32: snprintf(buffer, sizeof buffer, "%u", (unsigned)v->GetNumber()); break;
        case SCRIPT_TYPE_INT32: snprintf(buffer, sizeof buffer, "%d", (int)v->GetNumber()); break;
        case SCRIPT_TYPE_UINT64: snprintf(buffer, sizeof buffer, "%" PRIu64, v->GetNumber()); break;
        case SCRIPT_TYPE_INT64:
            snprintf(buffer, sizeof buffer, "%" PRId64, (int64_t)v->GetNumber());
            break;
        case SCRIPT_TYPE_STRING: {
            std::string text = v->GetText();
            std::string shown;
            shown.reserve(text.size());
            for (char c : text) {
                if (c == '\0') shown += "\\0";
                else shown += c;
            }
            Output(shown.c_str());
            continue;
        }
        default:
            continue;
        }
        Output(buffer);
    }
    return 0;
}

void ScriptTestPrintFactory(const TSCRIPTSYSFUNCENV& env, std::vector<CONXScriptSysFunc*>* functions) {
    std::unique_ptr<CONXScriptTestPrint> print(new CONXScriptTestPrint(env.output, env.outputContext));
    functions->push_back(print.get());
    print.release();
}
