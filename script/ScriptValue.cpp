// Storing, reading and converting script values.
#include "script/ScriptValue.h"

#include <cstring>

#include "script/ScriptErrors.h"

namespace {

thread_local TSCRIPTSTRINGBUDGET* t_pBudget = nullptr;

// Accounts for a text growing or shrinking from oldSize to newSize.
uint32_t ReserveText(size_t oldSize, size_t newSize) {
    TSCRIPTSTRINGBUDGET* b = t_pBudget;
    if (!b) return 0;
    if (newSize > oldSize) {
        if (newSize > b->maxStringBytes) return SCRIPT_ERR_OUTOFMEMORY;
        if (b->liveBytes + (newSize - oldSize) > b->maxTotalBytes) return SCRIPT_ERR_OUTOFMEMORY;
        b->liveBytes += newSize - oldSize;
    } else {
        uint64_t less = oldSize - newSize;
        b->liveBytes = b->liveBytes > less ? b->liveBytes - less : 0;
    }
    return 0;
}

}  // namespace

TSCRIPTSTRINGBUDGET* ScriptStringBudget() { return t_pBudget; }

TSCRIPTSTRINGBUDGET* SetScriptStringBudget(TSCRIPTSTRINGBUDGET* budget) {
    TSCRIPTSTRINGBUDGET* old = t_pBudget;
    t_pBudget = budget;
    return old;
}

uint32_t CONXScriptVarTemplate::Parse(CONXScriptCursor* cursor) {
    std::string typeName;
    uint32_t err = ExpectTokenKind(cursor, &typeName, SCRIPT_TOK_IDENT);
    if (err) return err;
    uint32_t type = TypeCodeOfName(typeName.c_str());
    if (type == SCRIPT_TYPE_NONE) return SCRIPT_ERR_UNKNOWNTYPE;
    m_type = type;
    std::string name;
    err = ExpectTokenKind(cursor, &name, SCRIPT_TOK_IDENT);
    if (err) return err;
    m_name = name;  // not checked against keywords or other names, as always
    return 0;
}

CONXScriptVariable::~CONXScriptVariable() {
    if (!m_text.empty()) (void)ReserveText(m_text.size(), 0);
}

void CONXScriptVariable::ClearText() {
    if (!m_text.empty()) {
        (void)ReserveText(m_text.size(), 0);
        m_text.clear();
    }
}

uint32_t CONXScriptVariable::StoreText(const char* chars, size_t length) {
    uint32_t err = ReserveText(m_text.size(), length);
    if (err) return err;
    m_text.assign(chars, length);
    return 0;
}

uint32_t CONXScriptVariable::AppendText(const char* chars, size_t length) {
    uint32_t err = ReserveText(m_text.size(), m_text.size() + length);
    if (err) return err;
    m_text.append(chars, length);
    return 0;
}

uint32_t CONXScriptVariable::GetObjectKind() {
    if (m_pReference) return m_pReference->GetObjectKind();
    return SCRIPT_OBJ_VARIABLE;
}

void CONXScriptVariable::SetType(uint32_t type) {
    if (m_pReference) return m_pReference->SetType(type);
    m_type = type;
}

uint32_t CONXScriptVariable::GetType() {
    if (m_pReference) return m_pReference->GetType();
    return m_type;
}

void CONXScriptVariable::InitFast(CONXScriptVarTemplate* tmpl) {
    m_name = tmpl->Name();
    m_type = tmpl->m_type;
    m_value32u = 0;
    m_value32s = 0;
    m_value64u = 0;
    m_value64s = 0;
    ClearText();
}

void CONXScriptVariable::InitFromTemplate(CONXScriptVarTemplate* tmpl) {
    if (m_pReference) return m_pReference->InitFromTemplate(tmpl);
    InitFast(tmpl);
}

CONXScriptVariable* CONXScriptVariable::GetReference() {
    if (m_pReference) return m_pReference->GetReference();
    return m_pReference;
}

uint32_t CONXScriptVariable::SetFromLiteral(const std::string& text, uint32_t kind) {
    if (m_pReference) return m_pReference->SetFromLiteral(text, kind);
    uint32_t type = 0;
    uint64_t value = 0;
    uint32_t err = ConvertLiteral(text, kind, &type, &value);
    if (err) return err;
    if (type == SCRIPT_TYPE_STRING) {
        m_type = SCRIPT_TYPE_STRING;
        return StoreText(text.data(), text.size());
    }
    m_type = type;
    return StoreNumber(value, 0);
}

uint32_t CONXScriptVariable::AssignFast(CONXScriptVariable* source) {
    if (m_type == SCRIPT_TYPE_NONE) m_type = source->m_type;
    if (ScriptTypeIsNumeric(m_type)) {
        if (!ScriptTypeIsNumeric(source->m_type)) return SCRIPT_ERR_TYPE;
        return StoreNumber(source->Number(), 0);
    }
    if (m_type == SCRIPT_TYPE_STRING) {
        if (source->m_type != SCRIPT_TYPE_STRING) return SCRIPT_ERR_TYPE;
        if (source == this) return 0;
        return StoreText(source->m_text.data(), source->m_text.size());
    }
    return SCRIPT_ERR_TYPE;
}

uint32_t CONXScriptVariable::Assign(CONXScriptVariable* source) {
    if (m_pReference) return m_pReference->Assign(source);
    return AssignFast(source->Resolved());
}

uint32_t CONXScriptVariable::SetNumber(uint64_t value, uint32_t typeHint) {
    if (m_pReference) return m_pReference->SetNumber(value, typeHint);
    return StoreNumber(value, typeHint);
}

uint64_t CONXScriptVariable::GetNumber() {
    if (m_pReference) return m_pReference->GetNumber();
    return Number();
}

uint32_t CONXScriptVariable::SetTextChars(const char* chars, int32_t length) {
    if (m_pReference) return m_pReference->SetTextChars(chars, length);
    if (m_type == SCRIPT_TYPE_NONE) m_type = SCRIPT_TYPE_STRING;
    if (m_type != SCRIPT_TYPE_STRING) return SCRIPT_ERR_TYPE;
    return StoreText(chars, length < 0 ? strlen(chars) : (size_t)length);
}

uint32_t CONXScriptVariable::SetText(const std::string& text) {
    if (m_pReference) return m_pReference->SetText(text);
    if (m_type == SCRIPT_TYPE_NONE) m_type = SCRIPT_TYPE_STRING;
    if (m_type != SCRIPT_TYPE_STRING) return SCRIPT_ERR_TYPE;
    return StoreText(text.data(), text.size());
}

std::string CONXScriptVariable::GetText() {
    if (m_pReference) return m_pReference->GetText();
    if (m_type != SCRIPT_TYPE_STRING) ClearText();  // numbers never turn into text here
    return m_text;
}

uint32_t CONXScriptVariable::ApplyAssignment(const char* op, CONXScriptVariable* source) {
    if (m_pReference) return m_pReference->ApplyAssignment(op, source);
    return ApplyAssignmentOp(OperatorIndex(op), source->Resolved());
}

uint32_t CONXScriptVariable::ApplyUnaryOperator(const char* op, CONXScriptVariable* operand) {
    if (m_pReference) return m_pReference->ApplyUnaryOperator(op, operand);
    return ApplyUnaryOp(OperatorIndex(op), operand->Resolved());
}

uint32_t CONXScriptVariable::ApplyBinaryOperator(const char* op, CONXScriptVariable* left,
                                                 CONXScriptVariable* right) {
    if (m_pReference) return m_pReference->ApplyBinaryOperator(op, left, right);
    return ApplyBinaryOp(OperatorIndex(op), left->Resolved(), right->Resolved());
}
