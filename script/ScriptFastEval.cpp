// A shortcut for expressions of numbers only: literals, numeric variables,
// parentheses, conversions to numeric types and operators, without calls.
// Such an expression has no side effects, so it is computed straight from
// the tokens with plain values instead of temporary variables; at anything
// else (a call, a string, a failing operation, low stack) it gives up and
// the ordinary evaluation runs from the same place, which then produces the
// same result or error it always did.
#include "script/ScriptErrors.h"
#include "script/ScriptExec.h"
#include "script/ScriptOperators.h"

namespace {

struct TNUM {
    uint64_t type;
    uint64_t value;  // as GetNumber would give it
};
// Field by field: a whole-record copy right after two narrow stores stalls.
inline void Set(TNUM* n, uint64_t type, uint64_t value) {
    n->type = type;
    n->value = value;
}

inline uint64_t Normalise(uint32_t type, uint64_t v) {
    switch (type) {
    case SCRIPT_TYPE_UINT32: return (uint32_t)v;
    case SCRIPT_TYPE_INT32: return (uint64_t)(int64_t)(int32_t)(uint32_t)v;
    default: return v;
    }
}

enum EFASTRESULT { FAST_OK, FAST_RETRY, FAST_NEVER };

struct TFAST {
    CONXScriptExecContext* context;
    CONXScriptFunc* scope;
    TSCRIPTTOKEN* p;  // next token to read
};

EFASTRESULT Fast(TFAST* f, uint32_t resultType, TNUM* out) {
    if (f->context->StackLow()) return FAST_RETRY;
    TSCRIPTTOKEN* t = f->p++;
    if (t->error) return FAST_NEVER;
    EFASTRESULT r;
    if (t->kind == SCRIPT_TOK_OP) {
        int32_t row = ScriptUnaryRow(t->op);
        if (row < 0) return FAST_NEVER;
        TNUM rest;
        if ((r = Fast(f, 0, &rest)) != FAST_OK) return r;
        uint32_t type = resultType ? resultType : (uint32_t)rest.type;
        int index = (ScriptTypeIsSigned(rest.type) ? 1 : 0) | (ScriptTypeIsSigned(type) ? 2 : 0);
        uint64_t v;
        (void)g_ScriptUnaryRoutines[row][index](rest.value, 0, &v);
        Set(out, type, Normalise(type, v));
        return FAST_OK;
    }
    TNUM operand;
    switch (t->kind) {
    case SCRIPT_TOK_PUNCT:
        if (t->punct != '(') return FAST_NEVER;
        if ((r = Fast(f, 0, &operand)) != FAST_OK) return r;
        t = f->p++;
        if (t->error || t->kind != SCRIPT_TOK_PUNCT || t->punct != ')') return FAST_NEVER;
        break;
    case SCRIPT_TOK_DEC:
    case SCRIPT_TOK_HEX:
    case SCRIPT_TOK_BIN: {
        CONXScriptVariable* v;
        if (ScriptLiteral(f->context, t, &v)) return FAST_NEVER;
        Set(&operand, v->Type(), v->Number());
        break;
    }
    case SCRIPT_TOK_IDENT: {
        CONXScriptObject* o = ScriptResolveName(f->scope, t);
        if (o && o->KindTag() == SCRIPT_OBJ_VARIABLE) {
            CONXScriptVariable* v = static_cast<CONXScriptVariable*>(o)->Resolved();
            if (!ScriptTypeIsNumeric(v->Type())) return FAST_NEVER;
            Set(&operand, v->Type(), v->Number());
            break;
        }
        if (o || !ScriptTypeIsNumeric(t->typeCode)) return FAST_NEVER;
        // A conversion to a numeric type.
        TSCRIPTTOKEN* open = f->p++;
        if (open->error || open->kind != SCRIPT_TOK_PUNCT || open->punct != '(') return FAST_NEVER;
        TNUM inner;
        if ((r = Fast(f, 0, &inner)) != FAST_OK) return r;
        TSCRIPTTOKEN* close = f->p++;
        if (close->error || close->kind != SCRIPT_TOK_PUNCT || close->punct != ')') return FAST_NEVER;
        Set(&operand, t->typeCode, Normalise(t->typeCode, inner.value));
        break;
    }
    default:
        return FAST_NEVER;
    }
    TSCRIPTTOKEN* next = f->p;
    if (next->error) return FAST_NEVER;
    if (next->kind == SCRIPT_TOK_OP && (g_ScriptOperators[next->op].opClass & SCRIPT_OPCLASS_BINARY)) {
        f->p++;
        int32_t row = ScriptBinaryRow(next->op);
        TNUM rest;
        if ((r = Fast(f, 0, &rest)) != FAST_OK) return r;
        uint32_t type = resultType;
        if (!type) {
            if (row == SCRIPT_ROW_SHL || row == SCRIPT_ROW_SHR) {
                type = (uint32_t)operand.type;
            } else {
                bool wide = ScriptTypeIs64(operand.type) || ScriptTypeIs64(rest.type);
                bool isSigned = ScriptTypeIsSigned(operand.type) || ScriptTypeIsSigned(rest.type);
                type = wide ? (isSigned ? SCRIPT_TYPE_INT64 : SCRIPT_TYPE_UINT64)
                            : (isSigned ? SCRIPT_TYPE_INT32 : SCRIPT_TYPE_UINT32);
            }
        }
        int index = (ScriptTypeIsSigned(operand.type) ? 1 : 0) | (ScriptTypeIsSigned(rest.type) ? 2 : 0) |
                    (ScriptTypeIsSigned(type) ? 4 : 0);
        uint64_t v;
        if (g_ScriptBinaryRoutines[row][index](operand.value, rest.value, &v)) return FAST_RETRY;
        Set(out, type, Normalise(type, v));
        return FAST_OK;
    }
    if (resultType) Set(out, resultType, Normalise(resultType, operand.value));
    else Set(out, operand.type, operand.value);
    return FAST_OK;
}

}  // namespace

namespace {

bool Run(CONXScriptExecContext* context, CONXScriptFunc* scope, TSCRIPTTOKEN* first,
         uint32_t resultType, TNUM* value) {
    if (first->noFast || resultType == SCRIPT_TYPE_STRING || context->IndexOf(first) < 0) return false;
    TFAST f = {context, scope, first};
    EFASTRESULT r = Fast(&f, resultType, value);
    if (r != FAST_OK) {
        if (r == FAST_NEVER) first->noFast = true;
        return false;
    }
    // Where the ordinary evaluation leaves the cursor: the token after the
    // expression looked at and put back.
    context->tokenStart = f.p->start;
    context->PutBack(f.p);
    return true;
}

}  // namespace

bool ScriptFastEvaluate(CONXScriptExecContext* context, CONXScriptFunc* scope, TSCRIPTTOKEN* first,
                        CONXScriptVariable* result) {
    uint32_t resultType = result->Type();
    TNUM value;
    if (!Run(context, scope, first, resultType, &value)) return false;
    if (resultType == SCRIPT_TYPE_NONE) result->SetTypedNumber((uint32_t)value.type, value.value);
    else (void)result->StoreNumber(value.value, 0);
    return true;
}

bool ScriptFastValue(CONXScriptExecContext* context, CONXScriptFunc* scope, TSCRIPTTOKEN* first,
                     uint32_t* type, uint64_t* value) {
    TNUM v;
    if (!Run(context, scope, first, SCRIPT_TYPE_NONE, &v)) return false;
    *type = (uint32_t)v.type;
    *value = v.value;
    return true;
}
