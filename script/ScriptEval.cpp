// Expression evaluation, straight from the tokens. There is no precedence:
// every binary operator takes the whole rest of the expression as its right
// operand, and a leading unary operator applies to all that follows. This is
// the language's definition, not an oversight.
#include "script/ScriptErrors.h"
#include "script/ScriptExec.h"
#include "script/ScriptTokens.h"

namespace {

// Whether the value of the call whose name is token will be used: only a call
// standing alone in a call statement gives its function no result variable.
bool CallValueUsed(CONXScriptExecContext* context, const TSCRIPTTOKEN* name) {
    int32_t i = context->IndexOf(name);
    if (i < 0) return true;
    int32_t close = context->TokenByIndex(i + 1)->match;
    if (close < 0) return true;
    const TSCRIPTTOKEN* after = context->TokenAt(context->TokenByIndex(close)->end);
    return !after || IsBinary(after);
}

// Whether a binary operator follows the call whose name is token; true when
// that cannot be told from the prepared tokens.
bool BinaryAfterCall(CONXScriptExecContext* context, const TSCRIPTTOKEN* name) {
    int32_t i = context->IndexOf(name);
    if (i < 0) return true;
    int32_t close = context->TokenByIndex(i + 1)->match;
    if (close < 0) return true;
    const TSCRIPTTOKEN* after = context->TokenAt(context->TokenByIndex(close)->end);
    return !after || after->error || IsBinary(after);
}

// Whether what follows the binary operator op, up to the end of its
// expression, may call a function (a name followed by "("). Only a call can
// change a variable while an expression is evaluated, so without one a left
// operand can be read in place instead of being copied first.
bool RestMayCall(CONXScriptExecContext* context, TSCRIPTTOKEN* op) {
    if (op->restCall) return op->restCall == 2;
    int32_t i = context->IndexOf(op);
    if (i < 0) return true;
    // One pass answers for every operator of the chain at this level: each
    // may call if a call follows it. A very long scan just assumes a call.
    const int32_t kMaxScan = 4096;
    TSCRIPTTOKEN* chain[64];
    int32_t chained = 0;
    chain[chained++] = op;
    bool call = false;
    int32_t depth = 0;
    for (int32_t k = i + 1;; k++) {
        TSCRIPTTOKEN* t = context->TokenByIndex(k);
        if (k - i > kMaxScan) {
            call = true;
            break;
        }
        if (t->error || t->kind == SCRIPT_TOK_END) break;
        if (t->kind == SCRIPT_TOK_PUNCT) {
            if (t->punct == '(') depth++;
            else if (t->punct == ')' && --depth < 0) break;
            else if (depth == 0 && (t->punct == ';' || t->punct == ',' || t->punct == '{')) break;
        } else if (t->kind == SCRIPT_TOK_IDENT) {
            TSCRIPTTOKEN* n = context->TokenByIndex(k + 1);
            if (IsPunct(n, '(')) call = true;
        } else if (depth == 0 && !call && chained < 64 && IsBinary(t)) {
            chain[chained++] = t;
        }
        if (call) break;
    }
    // Operators met before the first call have a call after them, if any; those
    // after it were never reached, so only the ones seen are settled.
    for (int32_t c = 0; c < chained; c++) chain[c]->restCall = call ? 2 : 1;
    return call;
}

}  // namespace

uint32_t ScriptConvertLiteral(CONXScriptExecContext* context, TSCRIPTTOKEN* t) {
    std::unique_ptr<CONXScriptVariable> v(new CONXScriptVariable);
    t->literalError = v->SetFromLiteral(t->text, t->kind);
    context->literals.push_back(std::move(v));
    t->literalValue = context->literals.back().get();
    t->literalDone = true;
    return t->literalError;
}

uint32_t CONXScriptFunc::EvaluateExpression(CONXScriptExecContext* context,
                                            CONXScriptVariable* result) {
    if (m_pDelegate) return m_pDelegate->EvaluateExpression(context, result);
    return Eval(context, result ? result->Resolved() : nullptr);
}

uint32_t CONXScriptFunc::EvalRef(CONXScriptExecContext* context, CONXScriptVariable** value) {
    TSCRIPTTOKEN* t = context->Upcoming();
    if (!t) t = context->TokenAt(context->position);
    if (t && !t->error) {
        int32_t i = context->IndexOf(t);
        TSCRIPTTOKEN* after = t->kind == SCRIPT_TOK_END ? nullptr : context->TokenByIndex(i + 1);
        if (after && !after->error && !IsBinary(after)) {
            CONXScriptVariable* v = nullptr;
            if (IsLiteral(t)) {
                context->Next();
                uint32_t err = ScriptLiteral(context, t, &v);
                if (err) return err;
            } else if (t->kind == SCRIPT_TOK_IDENT) {
                CONXScriptObject* o = ScriptResolveName(this, t);
                if (o && o->KindTag() == SCRIPT_OBJ_VARIABLE) {
                    context->Next();
                    v = static_cast<CONXScriptVariable*>(o)->Resolved();
                }
            }
            if (v) {
                // As if the operand had been copied and the next token looked at.
                context->tokenStart = after->start;
                context->PutBack(after);
                *value = v;
                return 0;
            }
        }
    }
    CONXScriptVariable* temp = context->vars.Push();
    *value = temp;
    return Eval(context, temp);
}

uint32_t CONXScriptFunc::Eval(CONXScriptExecContext* context, CONXScriptVariable* result) {
    if (context->StackLow()) return SCRIPT_ERR_OUTOFMEMORY;
    if (result) {
        TSCRIPTTOKEN* first = context->Upcoming();
        if (first && ScriptFastEvaluate(context, this, first, result)) return 0;
    }
    TSCRIPTTOKEN* t = context->Next();
    if (t->error) return t->error;
    CONXScriptVarStack::TMARK mark = context->vars.Mark();
    uint32_t err;
    if (t->kind == SCRIPT_TOK_OP) {
        if (!(OpClass(t) & SCRIPT_OPCLASS_UNARY)) return SCRIPT_ERR_UNEXPECTEDTOKEN;
        int32_t op = t->op;
        CONXScriptVariable* rest;
        if ((err = EvalRef(context, &rest))) return err;
        CONXScriptVariable* target = result ? result : context->vars.Push();
        if ((err = target->ApplyUnaryOp(op, rest))) return err;
        context->vars.PopTo(mark);
        return 0;
    }
    CONXScriptVariable* operand;
    bool inPlace = false;  // a named variable, read where it is
    switch (t->kind) {
    case SCRIPT_TOK_PUNCT:
        if (t->punct != '(') return SCRIPT_ERR_UNEXPECTEDTOKEN;
        operand = context->vars.Push();
        if ((err = Eval(context, operand))) return err;
        if ((err = ExpectPunct(context, ')'))) return err;
        break;
    case SCRIPT_TOK_STRING:
    case SCRIPT_TOK_DEC:
    case SCRIPT_TOK_HEX:
    case SCRIPT_TOK_BIN:
        if ((err = ScriptLiteral(context, t, &operand))) return err;
        break;
    case SCRIPT_TOK_IDENT: {
        CONXScriptObject* object = ScriptResolveName(this, t);
        if (!object) {
            uint32_t type = t->typeCode;
            if (!type) return SCRIPT_ERR_UNKNOWNIDENT;
            // A conversion: the inner value assigned to a variable of the named type.
            if ((err = ExpectPunct(context, '('))) return err;
            CONXScriptVariable* inner;
            if ((err = EvalRef(context, &inner))) return err;
            if ((err = ExpectPunct(context, ')'))) return err;
            operand = context->vars.Push();
            operand->SetType(type);
            if ((err = operand->AssignFast(inner))) return err;
            break;
        }
        if (object->KindTag() == SCRIPT_OBJ_VARIABLE) {
            operand = static_cast<CONXScriptVariable*>(object)->Resolved();
            inPlace = true;
            break;
        }
        if (object->KindTag() == SCRIPT_OBJ_FUNCTION) {
            if (result && result->Type() == SCRIPT_TYPE_NONE && !BinaryAfterCall(context, t)) {
                // The call is the whole expression and the result is fresh: the
                // callee's value can go there at once, as the copy would take it.
                if ((err = ScriptCallFunction(context, this, static_cast<CONXScriptFunc*>(object),
                                              result)))
                    return err;
                TSCRIPTTOKEN* next = context->Next();
                if (next->error) return next->error;
                context->PutBack(next);
                context->vars.PopTo(mark);
                return 0;
            }
            operand = context->vars.Push();
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
    TSCRIPTTOKEN* next = context->Next();
    if (next->error) return next->error;
    if (IsBinary(next)) {
        int32_t op = next->op;
        if (inPlace && RestMayCall(context, next)) {
            // The operand's value as it is now, before the rest can change it.
            CONXScriptVariable* copy = context->vars.Push();
            if ((err = copy->AssignFast(operand))) return err;
            operand = copy;
        }
        CONXScriptVariable* rest;
        if ((err = EvalRef(context, &rest))) return err;
        CONXScriptVariable* target = result ? result : context->vars.Push();
        if ((err = target->ApplyBinaryOp(op, operand, rest))) return err;
        context->vars.PopTo(mark);
        return 0;
    }
    context->PutBack(next);  // the token start stays where the look-ahead left it
    if (result) {
        // A function that never set its value gives an untyped one: passed on as it is.
        if (operand->Type() != SCRIPT_TYPE_NONE || result->Type() != SCRIPT_TYPE_NONE)
            if ((err = result->AssignFast(operand))) return err;
    }
    context->vars.PopTo(mark);
    return 0;
}
