// messagebox, userinputstring and userlistinput.
#include <string>
#include <vector>

#include "script/ScriptErrors.h"
#include "script/ScriptValue.h"
#include "scriptrt/OperatorPrompt.h"
#include "scriptrt/UserInputFuncs.h"

namespace {

CONXScriptVariable* Arg(const TSCRIPTARGS& arguments, size_t i) {
    return static_cast<CONXScriptVariable*>(arguments[i]);
}

bool IsString(const TSCRIPTARGS& arguments, size_t i) {
    return Arg(arguments, i)->GetType() == SCRIPT_TYPE_STRING;
}

CONXOperatorPrompt_0* Operator(CONXScriptRunContext* runContext) {
    return runContext ? runContext->m_pOperator : nullptr;
}

// Items end with a NUL byte each; text after the last NUL is one more item.
std::vector<std::string> SplitItems(const std::string& items) {
    std::vector<std::string> list;
    size_t start = 0;
    while (start < items.size()) {
        size_t end = items.find('\0', start);
        if (end == std::string::npos) end = items.size();
        list.push_back(items.substr(start, end - start));
        start = end + 1;
    }
    return list;
}

}  // namespace

CONXMessageBoxDialog::CONXMessageBoxDialog(const TSCRIPTSYSFUNCENV& env)
    : CONXScriptSysFunc("messagebox", env.output, env.outputContext) {}

bool CONXMessageBoxDialog::CheckArgumentCount(size_t count) { return count == 2; }

uint32_t CONXMessageBoxDialog::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                       const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    try {
        if (arguments.size() != 2) return SCRIPT_ERR_PARAMCOUNT;
        if (!AllArgumentsOfKind(arguments, SCRIPT_OBJ_VARIABLE)) return SCRIPT_ERR_TYPE;
        if (!IsString(arguments, 0) || !IsString(arguments, 1)) return SCRIPT_ERR_TYPE;
        if (CONXOperatorPrompt_0* op = Operator(runContext)) {
            // The first argument is the caption: the order is the script's, deliberately.
            std::string caption = Arg(arguments, 0)->GetText();
            std::string text = Arg(arguments, 1)->GetText();
            op->ShowMessage(caption.c_str(), text.c_str());
        }
        return 0;
    } catch (...) {
        return SCRIPT_ERR_OUTOFMEMORY;  // nothing leaves a built-in
    }
}

CONXUserInputStringDialog::CONXUserInputStringDialog(const TSCRIPTSYSFUNCENV& env)
    : CONXScriptSysFunc("userinputstring", env.output, env.outputContext) {}

bool CONXUserInputStringDialog::CheckArgumentCount(size_t count) { return count == 3 || count == 4; }

uint32_t CONXUserInputStringDialog::Execute(CONXScriptRunContext* runContext,
                                            CONXScriptFunc* symbols, const TSCRIPTARGS& arguments,
                                            CONXScriptVariable* result) {
    try {
        const size_t count = arguments.size();
        if (!CheckArgumentCount(count)) return SCRIPT_ERR_PARAMCOUNT;
        if (!AllArgumentsOfKind(arguments, SCRIPT_OBJ_VARIABLE)) return SCRIPT_ERR_TYPE;
        for (size_t i = 0; i < 3; ++i)
            if (!IsString(arguments, i)) return SCRIPT_ERR_TYPE;
        std::string caption = Arg(arguments, 0)->GetText();
        std::string prompt = Arg(arguments, 1)->GetText();
        std::string value = Arg(arguments, 2)->GetText();
        if (prompt.empty()) prompt = "Enter information";

        bool ok = false;
        if (CONXOperatorPrompt_0* op = Operator(runContext)) {
            std::string entered;
            ok = op->AskString(caption.c_str(), prompt.c_str(), value, &entered) == OPERATOR_ANSWER_OK;
            if (ok) value.swap(entered);
        }
        if (count == 4) {
            if (uint32_t err = Arg(arguments, 3)->SetNumber(ok ? 1 : 0, SCRIPT_TYPE_UINT32)) return err;
        }
        if (!result) return 0;
        return result->SetText(value);
    } catch (...) {
        return SCRIPT_ERR_OUTOFMEMORY;  // nothing leaves a built-in
    }
}

CONXUserListInputDialog::CONXUserListInputDialog(const TSCRIPTSYSFUNCENV& env)
    : CONXScriptSysFunc("userlistinput", env.output, env.outputContext) {}

bool CONXUserListInputDialog::CheckArgumentCount(size_t count) { return count == 4 || count == 5; }

uint32_t CONXUserListInputDialog::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                          const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    try {
        const size_t count = arguments.size();
        if (!CheckArgumentCount(count)) return SCRIPT_ERR_PARAMCOUNT;
        if (!AllArgumentsOfKind(arguments, SCRIPT_OBJ_VARIABLE)) return SCRIPT_ERR_TYPE;
        for (size_t i = 0; i < 3; ++i)
            if (!IsString(arguments, i)) return SCRIPT_ERR_TYPE;
        if (!ScriptTypeIsNumeric(Arg(arguments, 3)->GetType())) return SCRIPT_ERR_TYPE;

        std::vector<std::string> items = SplitItems(Arg(arguments, 2)->GetText());
        uint64_t selected = Arg(arguments, 3)->GetNumber();
        if (selected >= items.size()) selected = 0;  // the operator can still pick exactly one line
        std::string caption = Arg(arguments, 0)->GetText();
        std::string prompt = Arg(arguments, 1)->GetText();
        if (prompt.empty()) prompt = "Select an item";

        bool ok = false;
        uint32_t index = 0;
        CONXOperatorPrompt_0* op = Operator(runContext);
        if (op && !items.empty()) {
            ok = op->AskListItem(caption.c_str(), prompt.c_str(), items, (uint32_t)selected, &index) ==
                     OPERATOR_ANSWER_OK &&
                 index < items.size();
        }
        if (count == 5) {
            if (uint32_t err = Arg(arguments, 4)->SetNumber(ok ? 1 : 0, SCRIPT_TYPE_UINT32)) return err;
        }
        if (!result) return 0;
        return result->SetNumber(ok ? (uint64_t)index : (uint64_t)(int64_t)-1, SCRIPT_TYPE_INT32);
    } catch (...) {
        return SCRIPT_ERR_OUTOFMEMORY;  // nothing leaves a built-in
    }
}
