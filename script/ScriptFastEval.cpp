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
#include "script/ScriptTokens.h"

namespace {

enum EFASTRESULT { FAST_OK, FAST_RETRY, FAST_NEVER };
enum : uint8_t { OP_CONST, OP_VAR, OP_CONVERT, OP_UNARY, OP_BINARY };

// Types are fixed when the program is made: a variable step keeps the type its
// variable had then (a run that finds another type takes the long way), so each
// operator's routine and result type are chosen once. Only the outermost
// operator depends on the result's type, when that is given.
struct TFASTOP {
    uint8_t code;
    int8_t row;
    bool top;                    // the expression's outermost operator: takes the result's type
    uint8_t ltype = 0, rtype = 0;  // OP_UNARY, OP_BINARY: operand types (the unary one in ltype)
    uint32_t type;               // the step's value type
    uint64_t value;              // OP_CONST
    CONXScriptObject* object;    // OP_VAR: a declaration or a variable
    TSCRIPTROUTINE routine = nullptr;  // OP_UNARY, OP_BINARY: for the types above
};

const size_t kMaxDepth = 32;  // values waiting at one time; deeper ones take the long way

}  // namespace

struct TSCRIPTFASTPROGRAM {
    const void* scope;
    std::vector<TFASTOP> ops;
    TSCRIPTTOKEN* end;    // the token after the expression
    uint32_t type;        // the value's type when the result is untyped
    bool topIsOperator;   // the outermost step is an operator, which takes the result's type
    bool pair;            // just "leaf operator leaf": run without the loop
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
    TFASTOP op = {};
    op.code = code;
    op.row = row;
    op.top = top;
    op.type = type;
    op.value = value;
    op.object = object;
    c->program->ops.push_back(op);
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
        if (!IsPunct(t, ')')) return FAST_NEVER;
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
            uint32_t type = static_cast<CONXScriptVariable*>(o)->Resolved()->Type();
            if (!ScriptTypeIsNumeric(type)) return FAST_NEVER;
            // The declaration when there is one: its variable changes with every body entry.
            CONXScriptObject* found = t->cacheScope == c->scope ? t->cacheObject : nullptr;
            Emit(c, OP_VAR, 0, type, 0, found ? found : o);
            Pushed(c);
            break;
        }
        if (o || !ScriptTypeIsNumeric(t->typeCode)) return FAST_NEVER;
        // A conversion to a numeric type.
        TSCRIPTTOKEN* open = c->p++;
        if (!IsPunct(open, '(')) return FAST_NEVER;
        if ((r = Compile(c, false)) != FAST_OK) return r;
        TSCRIPTTOKEN* close = c->p++;
        if (!IsPunct(close, ')')) return FAST_NEVER;
        Emit(c, OP_CONVERT, 0, t->typeCode, 0, nullptr);
        break;
    }
    default:
        return FAST_NEVER;
    }
    TSCRIPTTOKEN* next = c->p;
    if (next->error) return FAST_NEVER;
    if (IsBinary(next)) {
        c->p++;
        if ((r = Compile(c, false)) != FAST_OK) return r;
        Emit(c, OP_BINARY, (int8_t)ScriptBinaryRow(next->op), 0, 0, nullptr, top);
        c->depth--;
        if (top) c->program->topIsOperator = true;
    }
    return FAST_OK;
}

// Signedness per type code, looked up on the hot path.
const uint8_t kSigned[6] = {0, 0, 0, 1, 0, 1};

// Reads a constant or variable step; false when the variable does not have
// the step's type now.
inline bool Leaf(const TFASTOP* op, uint64_t* value) {
    if (op->code == OP_CONST) {
        *value = op->value;
        return true;
    }
    CONXScriptObject* o = op->object;
    if (o->KindTag() == SCRIPT_OBJ_TEMPLATE) o = static_cast<CONXScriptVarTemplate*>(o)->m_pCurrent;
    if (!o) return false;
    CONXScriptVariable* v = static_cast<CONXScriptVariable*>(o)->Resolved();
    if (v->Type() != op->type) return false;
    *value = v->Number();
    return true;
}

// The routine and result type of an operator step for a result of resultType.
inline TSCRIPTROUTINE Routine(const TFASTOP* op, uint32_t resultType, uint32_t* type) {
    if (!op->top || !resultType) {
        *type = op->type;
        return op->routine;
    }
    *type = resultType;
    if (op->code == OP_UNARY)
        return g_ScriptUnaryRoutines[op->row][kSigned[op->ltype] | (kSigned[resultType] << 1)];
    return g_ScriptBinaryRoutines[op->row]
                                 [kSigned[op->ltype] | (kSigned[op->rtype] << 1) | (kSigned[resultType] << 2)];
}

// Works out each step's types and routine, once, after a successful translation.
void FixTypes(TSCRIPTFASTPROGRAM* program) {
    uint32_t types[kMaxDepth] = {};
    size_t sp = 0;
    for (TFASTOP& op : program->ops) {
        switch (op.code) {
        case OP_CONST:
        case OP_VAR:
            types[sp++] = op.type;
            break;
        case OP_CONVERT:
            types[sp - 1] = op.type;
            break;
        case OP_UNARY:
            op.ltype = (uint8_t)types[sp - 1];
            op.type = op.ltype;
            op.routine = g_ScriptUnaryRoutines[op.row][kSigned[op.ltype] | (kSigned[op.type] << 1)];
            break;
        default: {  // OP_BINARY
            sp--;
            op.ltype = (uint8_t)types[sp - 1];
            op.rtype = (uint8_t)types[sp];
            op.type = ScriptResultType(op.row == SCRIPT_ROW_SHL || op.row == SCRIPT_ROW_SHR, op.ltype, op.rtype);
            op.routine = g_ScriptBinaryRoutines[op.row][kSigned[op.ltype] | (kSigned[op.rtype] << 1) |
                                                        (kSigned[op.type] << 2)];
            types[sp - 1] = op.type;
            break;
        }
        }
    }
    program->type = types[0];
}

// Runs a program of more than one operator; false when the ordinary
// evaluation has to do it. Kept apart so that the common pair stays small.
__attribute__((noinline)) bool ExecuteSteps(const TSCRIPTFASTPROGRAM* program, uint32_t resultType,
                                            uint32_t* type, uint64_t* value) {
    const TFASTOP* op = program->ops.data();
    uint32_t t;
    uint64_t v;
    uint64_t values[kMaxDepth];
    size_t sp = 0;
    const TFASTOP* end = op + program->ops.size();
    for (; op != end; op++) {
        switch (op->code) {
        case OP_CONST:
            values[sp++] = op->value;
            break;
        case OP_VAR:
            if (!Leaf(op, &values[sp])) return false;
            sp++;
            break;
        case OP_CONVERT:
            values[sp - 1] = ScriptNormalise(op->type, values[sp - 1]);
            break;
        case OP_UNARY:
            (void)Routine(op, resultType, &t)(values[sp - 1], 0, &v);
            values[sp - 1] = ScriptNormalise(t, v);
            break;
        default:  // OP_BINARY
            sp--;
            if (Routine(op, resultType, &t)(values[sp - 1], values[sp], &v)) return false;
            values[sp - 1] = ScriptNormalise(t, v);
            break;
        }
    }
    *value = values[0];
    if (!resultType) {
        *type = program->type;
    } else {
        *type = resultType;
        if (!program->topIsOperator) *value = ScriptNormalise(resultType, *value);
    }
    return true;
}

// Runs a program; false when the ordinary evaluation has to do it.
inline bool Execute(const TSCRIPTFASTPROGRAM* program, uint32_t resultType, uint32_t* type,
                    uint64_t* value) {
    if (!program->pair) return ExecuteSteps(program, resultType, type, value);
    // The same steps, for the most common shape: leaf operator leaf.
    const TFASTOP* op = program->ops.data();
    uint32_t t;
    uint64_t lv, rv, v;
    if (!Leaf(op, &lv) || !Leaf(op + 1, &rv)) return false;
    if (Routine(op + 2, resultType, &t)(lv, rv, &v)) return false;
    *type = t;
    *value = ScriptNormalise(t, v);
    return true;
}

// Translates the expression at first, once per scope; null when it is not one
// of numbers only (or cannot be taken now). Kept apart from the hot path.
__attribute__((noinline)) TSCRIPTFASTPROGRAM* Translate(CONXScriptExecContext* context,
                                                        CONXScriptFunc* scope, TSCRIPTTOKEN* first) {
    if (context->IndexOf(first) < 0) return nullptr;
    std::unique_ptr<TSCRIPTFASTPROGRAM> made(new TSCRIPTFASTPROGRAM);
    made->scope = scope;
    made->topIsOperator = false;
    made->pair = false;
    TCOMPILE c = {context, scope, first, made.get(), 0, 0};
    EFASTRESULT r = Compile(&c, true);
    if (r == FAST_NEVER || (r == FAST_OK && c.maxDepth > kMaxDepth)) first->noFast = true;
    if (r != FAST_OK || first->noFast) return nullptr;
    made->end = c.p;
    FixTypes(made.get());
    const std::vector<TFASTOP>& ops = made->ops;
    made->pair = ops.size() == 3 && ops[0].code <= OP_VAR && ops[1].code <= OP_VAR &&
                 ops[2].code == OP_BINARY && ops[2].top;
    TSCRIPTFASTPROGRAM* program = made.get();
    context->fastPrograms.emplace_back(made.release());
    first->fastProgram = program;
    return program;
}

// Runs a program for a result of the given type; on success the cursor is
// where the ordinary evaluation leaves it: the token after the expression
// looked at and put back.
inline bool RunProgram(CONXScriptExecContext* context, const TSCRIPTFASTPROGRAM* program,
                       uint32_t resultType, uint32_t* type, uint64_t* value) {
    if (resultType == SCRIPT_TYPE_STRING || !Execute(program, resultType, type, value)) return false;
    context->tokenStart = program->end->start;
    context->PutBack(program->end);
    return true;
}

inline void Store(CONXScriptVariable* result, uint32_t resultType, uint32_t type, uint64_t value) {
    if (resultType == SCRIPT_TYPE_NONE) result->SetTypedNumber(type, value);
    else (void)result->StoreNumber(value, 0);
}

bool Run(CONXScriptExecContext* context, CONXScriptFunc* scope, TSCRIPTTOKEN* first,
         uint32_t resultType, uint32_t* type, uint64_t* value) {
    if (!g_ScriptFastPath || first->noFast) return false;
    TSCRIPTFASTPROGRAM* program = first->fastProgram;
    if (!program || program->scope != scope) {
        program = Translate(context, scope, first);
        if (!program) return false;
    }
    return RunProgram(context, program, resultType, type, value);
}

}  // namespace

bool g_ScriptFastPath = true;

void CONXScriptExecContext::TFREEPROGRAM::operator()(TSCRIPTFASTPROGRAM* program) const {
    delete program;
}

bool ScriptFastEvaluateAt(CONXScriptExecContext* context, CONXScriptFunc* scope, TSCRIPTTOKEN* first,
                          CONXScriptVariable* result) {
    uint32_t resultType = result->Type();
    uint32_t type;
    uint64_t value;
    if (!Run(context, scope, first, resultType, &type, &value)) return false;
    Store(result, resultType, type, value);
    return true;
}

TSCRIPTFASTPROGRAM* ScriptFastProgram(CONXScriptExecContext* context, CONXScriptFunc* scope,
                                      TSCRIPTTOKEN* first) {
    if (!g_ScriptFastPath || first->noFast) return nullptr;
    TSCRIPTFASTPROGRAM* program = first->fastProgram;
    return program && program->scope == scope ? program : Translate(context, scope, first);
}

TSCRIPTTOKEN* ScriptFastProgramEnd(const TSCRIPTFASTPROGRAM* program) { return program->end; }

bool ScriptFastRunInto(CONXScriptExecContext* context, const TSCRIPTFASTPROGRAM* program,
                       CONXScriptVariable* result) {
    uint32_t resultType = result->Type();
    uint32_t type;
    uint64_t value;
    if (!RunProgram(context, program, resultType, &type, &value)) return false;
    Store(result, resultType, type, value);
    return true;
}

bool ScriptFastRunValue(CONXScriptExecContext* context, const TSCRIPTFASTPROGRAM* program,
                        uint32_t* type, uint64_t* value) {
    return RunProgram(context, program, SCRIPT_TYPE_NONE, type, value);
}

bool ScriptFastValueAt(CONXScriptExecContext* context, CONXScriptFunc* scope, TSCRIPTTOKEN* first,
                       uint32_t* type, uint64_t* value) {
    return Run(context, scope, first, SCRIPT_TYPE_NONE, type, value);
}
