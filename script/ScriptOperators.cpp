// Operator routines and the three value operations built on them.
#include "script/ScriptOperators.h"

#include "script/ScriptErrors.h"
#include "script/ScriptLexer.h"
#include "script/ScriptValue.h"

namespace {

// A negative count shifts the other way: deliberate.
uint64_t ShiftLeft(uint64_t l, uint64_t r, bool isSigned) {
    int64_t n = (int64_t)r;
    if (n == 0) return l;
    if (n > 0) return n < 64 ? l << n : 0;
    uint64_t m = 0 - r;  // -n without overflow
    if (isSigned) {
        if (m >= 64) return (int64_t)l < 0 ? ~0ull : 0;
        return (uint64_t)((int64_t)l >> m);
    }
    return m < 64 ? l >> m : 0;
}

uint64_t ShiftRight(uint64_t l, uint64_t r, bool isSigned) {
    int64_t n = (int64_t)r;
    if (n == 0) return l;
    if (n < 0) {
        uint64_t m = 0 - r;
        return m < 64 ? l << m : 0;
    }
    if (isSigned) {
        if (n >= 64) return (int64_t)l < 0 ? ~0ull : 0;
        return (uint64_t)((int64_t)l >> n);
    }
    return n < 64 ? l >> n : 0;
}

template <int Row, int Index>
uint32_t Binary(uint64_t l, uint64_t r, uint64_t* out) {
    // The signed variant when either operand is signed; for shifts, the left one.
    constexpr bool s = (Row == SCRIPT_ROW_SHL || Row == SCRIPT_ROW_SHR) ? (Index & 1) != 0
                                                                       : (Index & 3) != 0;
    const int64_t sl = (int64_t)l, sr = (int64_t)r;
    switch (Row) {
    case SCRIPT_ROW_ADD: *out = l + r; return 0;
    case SCRIPT_ROW_SUB: *out = l - r; return 0;
    case SCRIPT_ROW_MUL: *out = l * r; return 0;
    case SCRIPT_ROW_DIV:
        if (r == 0) return SCRIPT_ERR_DIVZERO;
        if (!s) *out = l / r;
        else if (sr == -1) *out = 0 - l;  // INT64_MIN / -1 wraps instead of trapping
        else *out = (uint64_t)(sl / sr);
        return 0;
    case SCRIPT_ROW_MOD:
        if (r == 0) return SCRIPT_ERR_DIVZERO;
        if (!s) *out = l % r;
        else if (sr == -1) *out = 0;
        else *out = (uint64_t)(sl % sr);
        return 0;
    case SCRIPT_ROW_AND: *out = l & r; return 0;
    case SCRIPT_ROW_OR: *out = l | r; return 0;
    case SCRIPT_ROW_XOR: *out = l ^ r; return 0;
    case SCRIPT_ROW_SHL: *out = ShiftLeft(l, r, s); return 0;
    case SCRIPT_ROW_SHR: *out = ShiftRight(l, r, s); return 0;
    case SCRIPT_ROW_EQ: *out = l == r; return 0;
    case SCRIPT_ROW_NE: *out = l != r; return 0;
    case SCRIPT_ROW_LT: *out = s ? sl < sr : l < r; return 0;
    case SCRIPT_ROW_LE: *out = s ? sl <= sr : l <= r; return 0;
    case SCRIPT_ROW_GT: *out = s ? sl > sr : l > r; return 0;
    case SCRIPT_ROW_GE: *out = s ? sl >= sr : l >= r; return 0;
    }
    return SCRIPT_ERR_SYNTAX;
}

template <int Row>
uint32_t Unary(uint64_t v, uint64_t, uint64_t* out) {
    switch (Row) {
    case SCRIPT_UROW_PLUS: *out = v; break;
    case SCRIPT_UROW_NEG: *out = 0 - v; break;
    case SCRIPT_UROW_INVERT: *out = ~v; break;
    default: *out = v == 0; break;
    }
    return 0;
}

}  // namespace

#define OND_ROW(r)                                                                   \
    {Binary<r, 0>, Binary<r, 1>, Binary<r, 2>, Binary<r, 3>, Binary<r, 4>, Binary<r, 5>, \
     Binary<r, 6>, Binary<r, 7>}
const TSCRIPTROUTINE g_ScriptBinaryRoutines[SCRIPT_BINARY_ROWS][8] = {
    OND_ROW(0), OND_ROW(1), OND_ROW(2),  OND_ROW(3),  OND_ROW(4),  OND_ROW(5),
    OND_ROW(6), OND_ROW(7), OND_ROW(8),  OND_ROW(9),  OND_ROW(10), OND_ROW(11),
    OND_ROW(12), OND_ROW(13), OND_ROW(14), OND_ROW(15),
};
#undef OND_ROW
#define OND_UROW(r) {Unary<r>, Unary<r>, Unary<r>, Unary<r>}
const TSCRIPTROUTINE g_ScriptUnaryRoutines[4][4] = {OND_UROW(0), OND_UROW(1), OND_UROW(2),
                                                    OND_UROW(3)};
#undef OND_UROW

int32_t ScriptBinaryRow(int32_t op) {
    switch (op) {
    case SCRIPT_OP_PLUS: case SCRIPT_OP_ADDASSIGN: return SCRIPT_ROW_ADD;
    case SCRIPT_OP_MINUS: case SCRIPT_OP_SUBASSIGN: return SCRIPT_ROW_SUB;
    case SCRIPT_OP_MUL: case SCRIPT_OP_MULASSIGN: return SCRIPT_ROW_MUL;
    case SCRIPT_OP_DIV: case SCRIPT_OP_DIVASSIGN: return SCRIPT_ROW_DIV;
    case SCRIPT_OP_MOD: case SCRIPT_OP_MODASSIGN: return SCRIPT_ROW_MOD;
    case SCRIPT_OP_AND: case SCRIPT_OP_ANDASSIGN: return SCRIPT_ROW_AND;
    case SCRIPT_OP_OR: case SCRIPT_OP_ORASSIGN: return SCRIPT_ROW_OR;
    case SCRIPT_OP_XOR: case SCRIPT_OP_XORASSIGN: return SCRIPT_ROW_XOR;
    case SCRIPT_OP_SHL: case SCRIPT_OP_SHLASSIGN: return SCRIPT_ROW_SHL;
    case SCRIPT_OP_SHR: case SCRIPT_OP_SHRASSIGN: return SCRIPT_ROW_SHR;
    case SCRIPT_OP_EQ: return SCRIPT_ROW_EQ;
    case SCRIPT_OP_NE: return SCRIPT_ROW_NE;
    case SCRIPT_OP_LT: return SCRIPT_ROW_LT;
    case SCRIPT_OP_LE: return SCRIPT_ROW_LE;
    case SCRIPT_OP_GT: return SCRIPT_ROW_GT;
    case SCRIPT_OP_GE: return SCRIPT_ROW_GE;
    default: return -1;
    }
}

int32_t ScriptUnaryRow(int32_t op) {
    switch (op) {
    case SCRIPT_OP_PLUS: return SCRIPT_UROW_PLUS;
    case SCRIPT_OP_MINUS: return SCRIPT_UROW_NEG;
    case SCRIPT_OP_INVERT: return SCRIPT_UROW_INVERT;
    case SCRIPT_OP_NOT: return SCRIPT_UROW_NOT;
    default: return -1;
    }
}

uint32_t CONXScriptVariable::ApplyAssignmentOther(int32_t op, CONXScriptVariable* source) {
    // Numbers on both sides, an operator with the assignment ("=" is handled inline).
    if (ScriptTypeIsNumeric(m_type) && ScriptTypeIsNumeric(source->m_type) && op != SCRIPT_OP_ASSIGN &&
        op >= 0 && (g_ScriptOperators[op].opClass & SCRIPT_OPCLASS_ASSIGN)) {
        int index = (ScriptTypeIsSigned(m_type) ? 5 : 0) | (ScriptTypeIsSigned(source->m_type) ? 2 : 0);
        uint64_t out;
        uint32_t err = g_ScriptBinaryRoutines[ScriptBinaryRow(op)][index](Number(), source->Number(), &out);
        if (err) return err;
        return StoreNumber(out, 0);
    }
    if (op < 0 || !(g_ScriptOperators[op].opClass & SCRIPT_OPCLASS_ASSIGN))
        return SCRIPT_ERR_SYNTAX;
    if (m_type == SCRIPT_TYPE_NONE) m_type = source->m_type;
    if (m_type == SCRIPT_TYPE_STRING && source->m_type == SCRIPT_TYPE_STRING) {
        if (op == SCRIPT_OP_ASSIGN) {
            if (source == this) return 0;
            return StoreText(source->m_text.data(), source->m_text.size());
        }
        if (op == SCRIPT_OP_ADDASSIGN) {
            if (source == this) {
                std::string copy = m_text;
                return AppendText(copy.data(), copy.size());
            }
            return AppendText(source->m_text.data(), source->m_text.size());
        }
        return SCRIPT_ERR_SYNTAX;
    }
    if (!ScriptTypeIsNumeric(m_type) || !ScriptTypeIsNumeric(source->m_type)) return SCRIPT_ERR_TYPE;
    uint64_t out;
    if (op == SCRIPT_OP_ASSIGN) {
        int index = (ScriptTypeIsSigned(source->m_type) ? 1 : 0) | (ScriptTypeIsSigned(m_type) ? 2 : 0);
        (void)g_ScriptUnaryRoutines[SCRIPT_UROW_PLUS][index](source->Number(), 0, &out);
    } else {
        int index = (ScriptTypeIsSigned(m_type) ? 5 : 0) | (ScriptTypeIsSigned(source->m_type) ? 2 : 0);
        uint32_t err = g_ScriptBinaryRoutines[ScriptBinaryRow(op)][index](Number(), source->Number(), &out);
        if (err) return err;  // "/=" and "%=" by zero leave the target as it was
    }
    return StoreNumber(out, 0);
}

uint32_t CONXScriptVariable::ApplyUnaryOp(int32_t op, CONXScriptVariable* operand) {
    int32_t row = ScriptUnaryRow(op);
    if (row < 0) return SCRIPT_ERR_SYNTAX;
    if (!ScriptTypeIsNumeric(operand->m_type)) return SCRIPT_ERR_TYPE;
    if (m_type == SCRIPT_TYPE_NONE) m_type = operand->m_type;
    int index = (ScriptTypeIsSigned(operand->m_type) ? 1 : 0) | (ScriptTypeIsSigned(m_type) ? 2 : 0);
    uint64_t out;
    (void)g_ScriptUnaryRoutines[row][index](operand->Number(), 0, &out);
    return StoreNumber(out, 0);
}

uint32_t CONXScriptVariable::ApplyBinaryOp(int32_t op, CONXScriptVariable* left,
                                           CONXScriptVariable* right) {
    int32_t row = (op >= 0 && (g_ScriptOperators[op].opClass & SCRIPT_OPCLASS_BINARY))
                      ? ScriptBinaryRow(op)
                      : -1;
    if (row < 0) return SCRIPT_ERR_SYNTAX;
    if (left->m_type == SCRIPT_TYPE_STRING) {
        if (row == SCRIPT_ROW_ADD) {
            if (m_type == SCRIPT_TYPE_NONE) m_type = SCRIPT_TYPE_STRING;
            if (m_type != SCRIPT_TYPE_STRING) return SCRIPT_ERR_TYPE;
            // A numeric right operand adds its (empty) text, not an error.
            std::string joined = left->m_text;
            joined += right->GetText();
            return StoreText(joined.data(), joined.size());
        }
        if (row == SCRIPT_ROW_EQ || row == SCRIPT_ROW_NE) {
            if (m_type == SCRIPT_TYPE_NONE) m_type = SCRIPT_TYPE_UINT32;
            if (!ScriptTypeIsNumeric(m_type)) return SCRIPT_ERR_TYPE;
            bool equal = left->m_text == right->GetText();
            // Always the 32-bit unsigned field, whatever the result's type: as it always was.
            m_value32u = (row == SCRIPT_ROW_EQ) == equal ? 1 : 0;
            return 0;
        }
        return SCRIPT_ERR_SYNTAX;
    }
    if (!ScriptTypeIsNumeric(left->m_type) || !ScriptTypeIsNumeric(right->m_type))
        return SCRIPT_ERR_TYPE;
    if (m_type == SCRIPT_TYPE_NONE)
        m_type = ScriptResultType(row == SCRIPT_ROW_SHL || row == SCRIPT_ROW_SHR, left->m_type, right->m_type);
    int index = (ScriptTypeIsSigned(left->m_type) ? 1 : 0) |
                (ScriptTypeIsSigned(right->m_type) ? 2 : 0) | (ScriptTypeIsSigned(m_type) ? 4 : 0);
    uint64_t out;
    uint32_t err = g_ScriptBinaryRoutines[row][index](left->Number(), right->Number(), &out);
    if (err) return err;
    return StoreNumber(out, 0);
}
