// Expression evaluation, straight from the tokens. There is no precedence:
// every binary operator takes the whole rest of the expression as its right
// operand, and a leading unary operator applies to all that follows. This is
// the language's definition, not an oversight.
#include "script/ScriptErrors.h"
#include "script/ScriptExec.h"

namespace {

inline uint32_t OpClass(const TSCRIPTTOKEN* t) {
    return (t->kind == SCRIPT_TOK_OP && t->op >= 0) ? g_ScriptOperators[t->op].opClass : 0;
}
uint32_t ExpectPunct(CONXScriptCursor* cursor, char c) {
    const TSCRIPTTOKEN* t = cursor->Next();
    if (t->error) return t->error;
    return (t->kind == SCRIPT_TOK_PUNCT && t->punct == c) ? 0 : SCRIPT_ERR_UNEXPECTEDTOKEN;
}

// Whether the value of the call whose name is token will be used: only a call
// standing alone in a call statement gives its function no result variable.
bool CallValueUsed(CONXScriptExecContext* context, const TSCRIPTTOKEN* name) {
    int32_t i = context->IndexOf(name);
    if (i < 0) return true;
    int32_t close = context->TokenByIndex(i + 1)->match;
    if (close < 0) return true;
    const TSCRIPTTOKEN* after = context->TokenAt(context->TokenByIndex(close)->end);
    return !after || (OpClass(after) & SCRIPT_OPCLASS_BINARY) != 0;
}

}  // namespace

uint32_t CONXScriptFunc::EvaluateExpression(CONXScriptExecContext* context,
                                            CONXScriptVariable* result) {
    if (m_pDelegate) return m_pDelegate->EvaluateExpression(context, result);
    if (context->StackLow()) return SCRIPT_ERR_OUTOFMEMORY;
    TSCRIPTTOKEN* t = context->Next();
    if (t->error) return t->error;
    CONXScriptScope guard(context);
    uint32_t err;
    if (t->kind == SCRIPT_TOK_OP) {
        if (!(OpClass(t) & SCRIPT_OPCLASS_UNARY)) return SCRIPT_ERR_UNEXPECTEDTOKEN;
        int32_t op = t->op;
        CONXScriptVariable* rest = context->vars.Push();
        if ((err = EvaluateExpression(context, rest))) return err;
        CONXScriptVariable* target = result ? result->Resolved() : context->vars.Push();
        return target->ApplyUnaryOp(op, rest);
    }
    CONXScriptVariable* operand = context->vars.Push();
    switch (t->kind) {
    case SCRIPT_TOK_PUNCT:
        if (t->punct != '(') return SCRIPT_ERR_UNEXPECTEDTOKEN;
        if ((err = EvaluateExpression(context, operand))) return err;
        if ((err = ExpectPunct(context, ')'))) return err;
        break;
    case SCRIPT_TOK_STRING:
        operand->SetType(SCRIPT_TYPE_STRING);
        if ((err = operand->StoreText(t->text.data(), t->text.size()))) return err;
        break;
    case SCRIPT_TOK_DEC:
    case SCRIPT_TOK_HEX:
    case SCRIPT_TOK_BIN:
        if (!t->literalDone) {
            t->literalError = ConvertLiteral(t->text, t->kind, &t->literalType, &t->literalValue);
            t->literalDone = true;
        }
        if (t->literalError) return t->literalError;
        operand->SetTypedNumber(t->literalType, t->literalValue);
        break;
    case SCRIPT_TOK_IDENT: {
        CONXScriptObject* object = ScriptResolveName(this, t);
        if (!object) {
            uint32_t type = t->typeCode;
            if (!type) return SCRIPT_ERR_UNKNOWNIDENT;
            // A conversion: the inner value assigned to a variable of the named type.
            if ((err = ExpectPunct(context, '('))) return err;
            CONXScriptVariable* inner = context->vars.Push();
            if ((err = EvaluateExpression(context, inner))) return err;
            if ((err = ExpectPunct(context, ')'))) return err;
            operand->SetType(type);
            if ((err = operand->AssignFast(inner))) return err;
            break;
        }
        if (object->KindTag() == SCRIPT_OBJ_VARIABLE) {
            if ((err = operand->AssignFast(static_cast<CONXScriptVariable*>(object)->Resolved())))
                return err;
            break;
        }
        if (object->KindTag() == SCRIPT_OBJ_FUNCTION) {
            CONXScriptVariable* callResult =
                (result || CallValueUsed(context, t)) ? operand : nullptr;
            if ((err = ScriptCallFunction(context, this, static_cast<CONXScriptFunc*>(object),
                                          callResult)))
                return err;
            break;
        }
        return SCRIPT_ERR_UNKNOWNOBJECT;
    }
    default:
        return SCRIPT_ERR_UNEXPECTEDTOKEN;
    }
    uint64_t p = context->position;
    const TSCRIPTTOKEN* next = context->Next();
    if (next->error) return next->error;
    if (OpClass(next) & SCRIPT_OPCLASS_BINARY) {
        int32_t op = next->op;
        CONXScriptVariable* rest = context->vars.Push();
        if ((err = EvaluateExpression(context, rest))) return err;
        CONXScriptVariable* target = result ? result->Resolved() : context->vars.Push();
        return target->ApplyBinaryOp(op, operand, rest);
    }
    context->position = p;  // the token start stays where the look-ahead left it
    if (!result) return 0;
    CONXScriptVariable* target = result->Resolved();
    // A function that never set its value gives an untyped one: passed on as it is.
    if (operand->Type() == SCRIPT_TYPE_NONE && target->Type() == SCRIPT_TYPE_NONE) return 0;
    return target->AssignFast(operand);
}
