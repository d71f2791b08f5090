// Script values: declaration templates and variables, with the rules by which
// values are stored, read, converted and combined.
#pragma once

#include <cstdint>
#include <string>

#include "script/ScriptObject.h"

// Data type codes.
enum : uint32_t {
    SCRIPT_TYPE_NONE = 0,
    SCRIPT_TYPE_UINT32 = 1,
    SCRIPT_TYPE_STRING = 2,
    SCRIPT_TYPE_INT32 = 3,
    SCRIPT_TYPE_UINT64 = 4,
    SCRIPT_TYPE_INT64 = 5,
};

constexpr bool ScriptTypeIsNumeric(uint32_t t) { return t == 1 || t == 3 || t == 4 || t == 5; }
constexpr bool ScriptTypeIsSigned(uint32_t t) { return t == 3 || t == 5; }
constexpr bool ScriptTypeIs64(uint32_t t) { return t == 4 || t == 5; }

// The type of a binary operator's value in a fresh temporary: a shift keeps
// its left operand's type; any other operator takes the wider of the two
// widths, signed when either operand is.
constexpr uint32_t ScriptResultType(bool shift, uint32_t left, uint32_t right) {
    if (shift) return left;
    bool wide = ScriptTypeIs64(left) || ScriptTypeIs64(right);
    bool isSigned = ScriptTypeIsSigned(left) || ScriptTypeIsSigned(right);
    return wide ? (isSigned ? 5 : 4) : (isSigned ? 3 : 1);
}

// A 64-bit value as a number of the given type holds it (and Number() gives
// it back): cut to 32 bits, sign-extended for the signed 32-bit type.
constexpr uint64_t ScriptNormalise(uint32_t type, uint64_t v) {
    return type == 1 ? (uint32_t)v : type == 3 ? (uint64_t)(int64_t)(int32_t)(uint32_t)v : v;
}

// Bytes held by the strings of one run; a run installs it for its thread.
struct TSCRIPTSTRINGBUDGET {
    uint64_t maxStringBytes;
    uint64_t maxTotalBytes;
    uint64_t liveBytes;
};
TSCRIPTSTRINGBUDGET* ScriptStringBudget();
TSCRIPTSTRINGBUDGET* SetScriptStringBudget(TSCRIPTSTRINGBUDGET* budget);  // returns the old one

class CONXScriptVariable;

class CONXScriptVarTemplate : public CONXScriptObject {
public:
    uint32_t GetObjectKind() override { return SCRIPT_OBJ_TEMPLATE; }
    // Reads "type-name identifier" of a declaration.
    [[nodiscard]] uint32_t Parse(CONXScriptCursor* cursor) override;

    CONXScriptVarTemplate() { m_kindTag = SCRIPT_OBJ_TEMPLATE; }
    uint32_t m_type = SCRIPT_TYPE_UINT32;
    // The variable this declaration stands for in the innermost running body
    // (or the argument bound to this parameter); null when none is running.
    CONXScriptObject* m_pCurrent = nullptr;
};

class CONXScriptVariable : public CONXScriptObject {
public:
    explicit CONXScriptVariable(CONXScriptVariable* reference = nullptr) : m_pReference(reference) {
        m_kindTag = SCRIPT_OBJ_VARIABLE;
    }
    ~CONXScriptVariable() override;

    uint32_t GetObjectKind() override;
    virtual void SetType(uint32_t type);
    virtual uint32_t GetType();
    virtual void InitFromTemplate(CONXScriptVarTemplate* tmpl);
    virtual CONXScriptVariable* GetReference();
    [[nodiscard]] virtual uint32_t SetFromLiteral(const std::string& text, uint32_t kind);
    [[nodiscard]] virtual uint32_t Assign(CONXScriptVariable* source);
    [[nodiscard]] virtual uint32_t ApplyAssignment(const char* op, CONXScriptVariable* source);
    [[nodiscard]] virtual uint32_t ApplyUnaryOperator(const char* op, CONXScriptVariable* operand);
    [[nodiscard]] virtual uint32_t ApplyBinaryOperator(const char* op, CONXScriptVariable* left,
                                                       CONXScriptVariable* right);
    [[nodiscard]] virtual uint32_t SetNumber(uint64_t value, uint32_t typeHint);
    virtual uint64_t GetNumber();
    [[nodiscard]] virtual uint32_t SetTextChars(const char* chars, int32_t length);
    [[nodiscard]] virtual uint32_t SetText(const std::string& text);
    virtual std::string GetText();

    // --- engine fast paths: act on this variable itself (call on Resolved()) ---
    CONXScriptVariable* Resolved() {
        CONXScriptVariable* v = this;
        while (v->m_pReference) v = v->m_pReference;
        return v;
    }
    uint32_t Type() const { return m_type; }
    uint64_t Number() const {
        switch (m_type) {
        case SCRIPT_TYPE_UINT32: return m_value32u;
        case SCRIPT_TYPE_INT32: return (uint64_t)(int64_t)m_value32s;
        case SCRIPT_TYPE_UINT64: return m_value64u;
        case SCRIPT_TYPE_INT64: return (uint64_t)m_value64s;
        default: return 0;
        }
    }
    // SetNumber on this variable (no reference).
    uint32_t StoreNumber(uint64_t value, uint32_t typeHint) {
        if (m_type == SCRIPT_TYPE_NONE && ScriptTypeIsNumeric(typeHint)) m_type = typeHint;
        switch (m_type) {
        case SCRIPT_TYPE_UINT32: m_value32u = (uint32_t)value; return 0;
        case SCRIPT_TYPE_INT32: m_value32s = (int32_t)(uint32_t)value; return 0;
        case SCRIPT_TYPE_UINT64: m_value64u = value; return 0;
        case SCRIPT_TYPE_INT64: m_value64s = (int64_t)value; return 0;
        default: return 10;
        }
    }
    // A fresh value of a numeric type (literals, temporaries).
    void SetTypedNumber(uint32_t type, uint64_t value) {
        m_type = type;
        (void)StoreNumber(value, 0);
    }
    const std::string& Text() const { return m_text; }
    uint32_t StoreText(const char* chars, size_t length);  // replaces, with the budget check
    uint32_t AppendText(const char* chars, size_t length);
    void InitFast(CONXScriptVarTemplate* tmpl);
    // A body's own variable: as InitFast without the name, which nothing reads
    // (the engine finds body variables through their declarations).
    void InitFrame(CONXScriptVarTemplate* tmpl) {
        m_type = tmpl->m_type;
        m_value32u = 0;
        m_value32s = 0;
        m_value64u = 0;
        m_value64s = 0;
    }
    uint32_t AssignFast(CONXScriptVariable* source);  // Assign, both already resolved
    uint32_t ApplyAssignmentOp(int32_t op, CONXScriptVariable* source) {
        // A number into a number or an untyped variable (which takes the number's
        // type), inline: "+" of one operand is the value.
        if (op == SCRIPT_OP_ASSIGN && ScriptTypeIsNumeric(source->m_type)) {
            if (m_type == SCRIPT_TYPE_NONE) m_type = source->m_type;
            if (ScriptTypeIsNumeric(m_type)) return StoreNumber(source->Number(), 0);
        }
        return ApplyAssignmentOther(op, source);
    }
    uint32_t ApplyAssignmentOther(int32_t op, CONXScriptVariable* source);
    uint32_t ApplyUnaryOp(int32_t op, CONXScriptVariable* operand);
    uint32_t ApplyBinaryOp(int32_t op, CONXScriptVariable* left, CONXScriptVariable* right);
    void ClearText();
    // Back to a fresh temporary (the engine reuses its variables).
    void Reset() {
        ClearText();
        m_pReference = nullptr;
        m_type = SCRIPT_TYPE_NONE;
        if (!m_name.empty()) m_name.clear();
    }
    void SetReferenceFast(CONXScriptVariable* reference) { m_pReference = reference; }

private:
    uint32_t m_type = SCRIPT_TYPE_NONE;
    uint32_t m_value32u = 0;
    int32_t m_value32s = 0;
    uint64_t m_value64u = 0;
    int64_t m_value64s = 0;
    std::string m_text;
    CONXScriptVariable* m_pReference;
};
