// A shortcut for expressions of numbers only: literals, numeric variables,
// parentheses, conversions to numeric types and operators, without calls.
// Such an expression has no side effects. The first time it runs it is
// translated into a short postfix program (names resolved to their
// declarations, literals converted); later runs compute that with plain
// values instead of temporary variables. At anything else (a call, a string,
// a failing operation) it gives up and the ordinary evaluation runs from the
// same place, which then produces the same result or error it always did.
#include <memory>
#include <vector>

#include "script/ScriptErrors.h"
#include "script/ScriptExec.h"
#include "script/ScriptOperators.h"

namespace {

inline uint64_t Normalise(uint32_t type, uint64_t v) {
    switch (type) {
    case SCRIPT_TYPE_UINT32: return (uint32_t)v;
    case SCRIPT_TYPE_INT32: return (uint64_t)(int64_t)(int32_t)(uint32_t)v;
    default: return v;
    }
}

enum EFASTRESULT { FAST_OK, FAST_RETRY, FAST_NEVER };
enum : uint8_t { OP_CONST, OP_VAR, OP_CONVERT, OP_UNARY, OP_BINARY };

struct TFASTOP {
    uint8_t code;
    int8_t row;
    bool top;                    // the expression's outermost operator: takes the result's type
    uint32_t type;               // OP_CONST, OP_CONVERT
    uint64_t value;              // OP_CONST
    CONXScriptObject* object;    // OP_VAR: a declaration or a variable
};

const size_t kMaxDepth = 32;  // values waiting at one time; deeper ones take the long way

}  // namespace

struct TSCRIPTFASTPROGRAM {
    const void* scope;
    std::vector<TFASTOP> ops;
    TSCRIPTTOKEN* end;    // the token after the expression
    bool topIsOperator;   // the outermost step is an operator, which takes the result's type
};

namespace {

struct TCOMPILE {
    CONXScriptExecContext* context;
    CONXScriptFunc* scope;
    TSCRIPTTOKEN* p;  // next token to read
    TSCRIPTFASTPROGRAM* program;
    size_t depth;
    size_t maxDepth;
};

inline void Emit(TCOMPILE* c, uint8_t code, int8_t row, uint32_t type, uint64_t value,
                 CONXScriptObject* object, bool top = false) {
    c->program->ops.push_back({code, row, top, type, value, object});
}
inline void Pushed(TCOMPILE* c) {
    if (++c->depth > c->maxDepth) c->maxDepth = c->depth;
}

// Mirrors the ordinary evaluation's reading of the tokens.
EFASTRESULT Compile(TCOMPILE* c, bool top) {
    if (c->context->StackLow()) return FAST_RETRY;
    TSCRIPTTOKEN* t = c->p++;
    if (t->error) return FAST_NEVER;
    EFASTRESULT r;
    if (t->kind == SCRIPT_TOK_OP) {
        int32_t row = ScriptUnaryRow(t->op);
        if (row < 0) return FAST_NEVER;
        if ((r = Compile(c, false)) != FAST_OK) return r;
        Emit(c, OP_UNARY, (int8_t)row, 0, 0, nullptr, top);
        if (top) c->program->topIsOperator = true;
        return FAST_OK;
    }
    switch (t->kind) {
    case SCRIPT_TOK_PUNCT:
        if (t->punct != '(') return FAST_NEVER;
        if ((r = Compile(c, false)) != FAST_OK) return r;
        t = c->p++;
        if (t->error || t->kind != SCRIPT_TOK_PUNCT || t->punct != ')') return FAST_NEVER;
        break;
    case SCRIPT_TOK_DEC:
    case SCRIPT_TOK_HEX:
    case SCRIPT_TOK_BIN: {
        CONXScriptVariable* v;
        if (ScriptLiteral(c->context, t, &v)) return FAST_NEVER;
        Emit(c, OP_CONST, 0, v->Type(), v->Number(), nullptr);
        Pushed(c);
        break;
    }
    case SCRIPT_TOK_IDENT: {
        CONXScriptObject* o = ScriptResolveName(c->scope, t);
        if (o && o->KindTag() == SCRIPT_OBJ_VARIABLE) {
            if (!ScriptTypeIsNumeric(static_cast<CONXScriptVariable*>(o)->Resolved()->Type()))
                return FAST_NEVER;
            // The declaration when there is one: its variable changes with every body entry.
            CONXScriptObject* found = t->cacheScope == c->scope ? t->cacheObject : nullptr;
            Emit(c, OP_VAR, 0, 0, 0, found ? found : o);
            Pushed(c);
            break;
        }
        if (o || !ScriptTypeIsNumeric(t->typeCode)) return FAST_NEVER;
        // A conversion to a numeric type.
        TSCRIPTTOKEN* open = c->p++;
        if (open->error || open->kind != SCRIPT_TOK_PUNCT || open->punct != '(') return FAST_NEVER;
        if ((r = Compile(c, false)) != FAST_OK) return r;
        TSCRIPTTOKEN* close = c->p++;
        if (close->error || close->kind != SCRIPT_TOK_PUNCT || close->punct != ')') return FAST_NEVER;
        Emit(c, OP_CONVERT, 0, t->typeCode, 0, nullptr);
        break;
    }
    default:
        return FAST_NEVER;
    }
    TSCRIPTTOKEN* next = c->p;
    if (next->error) return FAST_NEVER;
    if (next->kind == SCRIPT_TOK_OP && (g_ScriptOperators[next->op].opClass & SCRIPT_OPCLASS_BINARY)) {
        c->p++;
        if ((r = Compile(c, false)) != FAST_OK) return r;
        Emit(c, OP_BINARY, (int8_t)ScriptBinaryRow(next->op), 0, 0, nullptr, top);
        c->depth--;
        if (top) c->program->topIsOperator = true;
    }
    return FAST_OK;
}

// Runs a program; false when the ordinary evaluation has to do it.
bool Execute(const TSCRIPTFASTPROGRAM* program, uint32_t resultType, uint32_t* type, uint64_t* value) {
    uint64_t types[kMaxDepth];
    uint64_t values[kMaxDepth];
    size_t sp = 0;
    const TFASTOP* op = program->ops.data();
    const TFASTOP* last = op + program->ops.size() - 1;
    for (; op <= last; op++) {
        switch (op->code) {
        case OP_CONST:
            types[sp] = op->type;
            values[sp++] = op->value;
            break;
        case OP_VAR: {
            CONXScriptObject* o = op->object;
            if (o->KindTag() == SCRIPT_OBJ_TEMPLATE) o = static_cast<CONXScriptVarTemplate*>(o)->m_pCurrent;
            if (!o) return false;
            CONXScriptVariable* v = static_cast<CONXScriptVariable*>(o)->Resolved();
            if (!ScriptTypeIsNumeric(v->Type())) return false;
            types[sp] = v->Type();
            values[sp++] = v->Number();
            break;
        }
        case OP_CONVERT:
            types[sp - 1] = op->type;
            values[sp - 1] = Normalise(op->type, values[sp - 1]);
            break;
        case OP_UNARY: {
            uint32_t restType = (uint32_t)types[sp - 1];
            uint32_t t = (op->top && resultType) ? resultType : restType;
            int index = (ScriptTypeIsSigned(restType) ? 1 : 0) | (ScriptTypeIsSigned(t) ? 2 : 0);
            uint64_t v;
            (void)g_ScriptUnaryRoutines[op->row][index](values[sp - 1], 0, &v);
            types[sp - 1] = t;
            values[sp - 1] = Normalise(t, v);
            break;
        }
        default: {  // OP_BINARY
            sp--;
            uint32_t lt = (uint32_t)types[sp - 1], rt = (uint32_t)types[sp];
            uint32_t t = op->top ? resultType : 0;
            if (!t) {
                if (op->row == SCRIPT_ROW_SHL || op->row == SCRIPT_ROW_SHR) {
                    t = lt;
                } else {
                    bool wide = ScriptTypeIs64(lt) || ScriptTypeIs64(rt);
                    bool isSigned = ScriptTypeIsSigned(lt) || ScriptTypeIsSigned(rt);
                    t = wide ? (isSigned ? SCRIPT_TYPE_INT64 : SCRIPT_TYPE_UINT64)
                             : (isSigned ? SCRIPT_TYPE_INT32 : SCRIPT_TYPE_UINT32);
                }
            }
            int index = (ScriptTypeIsSigned(lt) ? 1 : 0) | (ScriptTypeIsSigned(rt) ? 2 : 0) |
                        (ScriptTypeIsSigned(t) ? 4 : 0);
            uint64_t v;
            if (g_ScriptBinaryRoutines[op->row][index](values[sp - 1], values[sp], &v)) return false;
            types[sp - 1] = t;
            values[sp - 1] = Normalise(t, v);
            break;
        }
        }
    }
    *type = (uint32_t)types[0];
    *value = values[0];
    if (!program->topIsOperator && resultType) {
        *type = resultType;
        *value = Normalise(resultType, *value);
    }
    return true;
}

bool Run(CONXScriptExecContext* context, CONXScriptFunc* scope, TSCRIPTTOKEN* first,
         uint32_t resultType, uint32_t* type, uint64_t* value) {
    if (!g_ScriptFastPath || first->noFast || resultType == SCRIPT_TYPE_STRING) return false;
    TSCRIPTFASTPROGRAM* program = first->fastProgram;
    if (!program || program->scope != scope) {
        if (context->IndexOf(first) < 0) return false;
        std::unique_ptr<TSCRIPTFASTPROGRAM> made(new TSCRIPTFASTPROGRAM);
        made->scope = scope;
        made->topIsOperator = false;
        TCOMPILE c = {context, scope, first, made.get(), 0, 0};
        EFASTRESULT r = Compile(&c, true);
        if (r == FAST_NEVER || (r == FAST_OK && c.maxDepth > kMaxDepth)) first->noFast = true;
        if (r != FAST_OK || first->noFast) return false;
        made->end = c.p;
        program = made.get();
        context->fastPrograms.emplace_back(made.release());
        first->fastProgram = program;
    }
    if (!Execute(program, resultType, type, value)) return false;
    // Where the ordinary evaluation leaves the cursor: the token after the
    // expression looked at and put back.
    context->tokenStart = program->end->start;
    context->PutBack(program->end);
    return true;
}

}  // namespace

bool g_ScriptFastPath = true;

void CONXScriptExecContext::TFREEPROGRAM::operator()(TSCRIPTFASTPROGRAM* program) const {
    delete program;
}

bool ScriptFastEvaluate(CONXScriptExecContext* context, CONXScriptFunc* scope, TSCRIPTTOKEN* first,
                        CONXScriptVariable* result) {
    uint32_t resultType = result->Type();
    uint32_t type;
    uint64_t value;
    if (!Run(context, scope, first, resultType, &type, &value)) return false;
    if (resultType == SCRIPT_TYPE_NONE) result->SetTypedNumber(type, value);
    else (void)result->StoreNumber(value, 0);
    return true;
}

bool ScriptFastValue(CONXScriptExecContext* context, CONXScriptFunc* scope, TSCRIPTTOKEN* first,
                     uint32_t* type, uint64_t* value) {
    return Run(context, scope, first, SCRIPT_TYPE_NONE, type, value);
}
