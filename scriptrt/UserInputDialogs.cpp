// "messagebox", "userinputstring" and "userlistinput".
#include <string>
#include <vector>

#include "scriptrt/OperatorPrompt.h"
#include "scriptrt/SysFuncs.h"

namespace ondbuiltin {

namespace {

CONXOperatorPrompt_0* Operator(const TSCRIPTSYSCALL& call) {
    return call.run ? call.run->m_pOperator : nullptr;
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

// The optional last argument: 1 when the operator chose OK, 0 otherwise.
uint32_t Confirm(const TSCRIPTSYSCALL& call, size_t index, bool ok) {
    if (index >= call.Count()) return 0;
    return call.Variable(index)->SetNumber(ok ? 1 : 0, SCRIPT_TYPE_UINT32);
}

}  // namespace

uint32_t ShowMessage(const TSCRIPTSYSCALL& call) {
    // The first argument is the caption: the order is the script's, deliberately.
    if (CONXOperatorPrompt_0* op = Operator(call)) op->ShowMessage(call.Text(0).c_str(), call.Text(1).c_str());
    return 0;
}

uint32_t AskString(const TSCRIPTSYSCALL& call) {
    std::string prompt = call.Text(1);
    std::string value = call.Text(2);
    if (prompt.empty()) prompt = "Enter information";
    bool ok = false;
    if (CONXOperatorPrompt_0* op = Operator(call)) {
        std::string entered;
        ok = op->AskString(call.Text(0).c_str(), prompt.c_str(), value, &entered) == OPERATOR_ANSWER_OK;
        if (ok) value.swap(entered);
    }
    if (uint32_t err = Confirm(call, 3, ok)) return err;
    if (!call.result) return 0;
    return call.result->SetText(value);
}

uint32_t AskListItem(const TSCRIPTSYSCALL& call) {
    std::vector<std::string> items = SplitItems(call.Text(2));
    uint64_t selected = call.Number(3);
    if (selected >= items.size()) selected = 0;  // the operator can still pick exactly one line
    std::string prompt = call.Text(1);
    if (prompt.empty()) prompt = "Select an item";
    bool ok = false;
    uint32_t index = 0;
    CONXOperatorPrompt_0* op = Operator(call);
    if (op && !items.empty()) {
        ok = op->AskListItem(call.Text(0).c_str(), prompt.c_str(), items, (uint32_t)selected, &index) ==
                 OPERATOR_ANSWER_OK &&
             index < items.size();
    }
    if (uint32_t err = Confirm(call, 4, ok)) return err;
    if (!call.result) return 0;
    return call.result->SetNumber(ok ? (uint64_t)index : (uint64_t)(int64_t)-1, SCRIPT_TYPE_INT32);
}

}  // namespace ondbuiltin
