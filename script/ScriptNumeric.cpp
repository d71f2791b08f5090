// Functions and while loops of numbers only, run without the engine's variables.
//
// A user function qualifies when its parameters and declarations (its own and
// those of its if and while blocks) are numbers, and its statements are
// assignments to them or to its own value, ifs and whiles, with expressions
// of numbers, its variables and calls of functions that qualify as well. Such
// a call can change nothing outside itself but the step count: it reads no
// other variable, writes no output and calls no built-in. So it is run
// natively, with its variables in a plain array, as a speculation: on
// anything out of the ordinary (an error, a step budget or stack running out,
// a stop request, a function that ends without a value) the step count is
// put back and the call runs again the ordinary way, which then does what it
// always does, errors and positions included. A while loop of the same kind
// runs on copies of the variables it names from outside, stored back when it
// ends. Values and steps follow the ordinary rules exactly: the same operator
// routines, result types and conversions, one step per statement, call and
// loop round. The types are known before the first run (every variable is
// declared, a function's value takes the type of its first assignment), so
// each node's routine and conversion are chosen once.
#include "script/ScriptErrors.h"
#include "script/ScriptNumeric.h"
#include "os/Platform.h"

namespace {

inline uint32_t Signed(uint32_t type) { return ScriptTypeIsSigned(type) ? 1 : 0; }

struct TNUMRESULT {
    uint32_t type;
    uint64_t value;
};

bool Call(CONXScriptExecContext* c, TSCRIPTNUMFUNC* f, uint64_t* slots, TNUMRESULT* out);

// The variables of a call of f, made on the stack of the frame that makes the
// call and no bigger than f needs: a level of a recursion costs the thread's
// stack little more than its few frames.
#define NUM_CALL_SLOTS(f) \
    static_cast<uint64_t*>(__builtin_alloca(((f)->slotCount ? (f)->slotCount : 1) * sizeof(uint64_t)))

// ---- computing nodes ----

bool EvalConst(CONXScriptExecContext*, const TNUMNODE* n, const uint64_t*, uint64_t* value) {
    *value = n->value;
    return true;
}
bool EvalSlot(CONXScriptExecContext*, const TNUMNODE* n, const uint64_t* slots, uint64_t* value) {
    *value = slots[n->slot];
    return true;
}
// A variable into a parameter of another type.
bool EvalSlotTo(CONXScriptExecContext*, const TNUMNODE* n, const uint64_t* slots, uint64_t* value) {
    *value = ScriptNormalise(n->to, slots[n->slot]);
    return true;
}
// A value that never comes: a call of a function without one.
bool EvalNoValue(CONXScriptExecContext* c, const TNUMNODE*, const uint64_t*, uint64_t*) {
    c->numericNoValue = true;
    return false;
}

// An operand: variables and constants read at once.
inline bool Operand(CONXScriptExecContext* c, const TNUMNODE* n, const uint64_t* slots, uint64_t* value) {
    if (n->eval == EvalSlot) {
        *value = slots[n->slot];
        return true;
    }
    if (n->eval == EvalConst) {
        *value = n->value;
        return true;
    }
    return n->eval(c, n, slots, value);
}

// A parenthesis, or a conversion to a type, into a result of another type.
bool EvalInner(CONXScriptExecContext* c, const TNUMNODE* n, const uint64_t* slots, uint64_t* value) {
    uint64_t v;
    if (c->StackLow() || !Operand(c, n->a, slots, &v)) return false;
    if (n->kind == N_CONVERT) v = ScriptNormalise(n->type, v);
    *value = ScriptNormalise(n->to, v);
    return true;
}

bool EvalUnary(CONXScriptExecContext* c, const TNUMNODE* n, const uint64_t* slots, uint64_t* value) {
    uint64_t v, out;
    if (c->StackLow() || !Operand(c, n->a, slots, &v)) return false;
    (void)n->routine(v, 0, &out);
    *value = ScriptNormalise(n->to, out);
    return true;
}

bool EvalBinary(CONXScriptExecContext* c, const TNUMNODE* n, const uint64_t* slots, uint64_t* value) {
    uint64_t l, r, out;
    // Every node that computes others looks at the stack first: expressions nest deep.
    if (c->StackLow() || !Operand(c, n->a, slots, &l) || !Operand(c, n->b, slots, &r)) return false;
    if (n->routine(l, r, &out)) return false;
    *value = ScriptNormalise(n->to, out);
    return true;
}

// A call: the step, the arguments into the parameters' types, the call.
bool EvalCall(CONXScriptExecContext* c, const TNUMNODE* n, const uint64_t* slots, uint64_t* value) {
    if (c->StackLow() || c->Step()) return false;
    uint64_t* callee = NUM_CALL_SLOTS(n->callee);
    for (size_t i = 0; i < n->args.size(); i++)
        if (!Operand(c, n->args[i], slots, &callee[i])) return false;
    TNUMRESULT result;
    if (!Call(c, n->callee, callee, &result)) return false;
    *value = ScriptNormalise(n->to, result.value);
    return true;
}

// ---- typing ----

// Functions whose value's type is known and whose statements still need typing.
typedef std::vector<TSCRIPTNUMFUNC*> TPENDING;

void Type(TNUMNODE* n, uint32_t resultType, TPENDING* pending);

// The type of a function's value: that of the first assignment to it at the
// top of its body, which always runs before any other. 0 while it is being
// worked out: a function whose first value needs its own never returns.
uint32_t ResultType(TSCRIPTNUMFUNC* f, TPENDING* pending) {
    if (f->typing == 0) {
        f->typing = 1;
        for (TNUMSTMT* s : f->body) {
            if (s->kind != S_SELF) continue;
            Type(s->expr, 0, pending);
            f->resultType = s->expr->to;
            break;
        }
        f->typing = 2;
        pending->push_back(f);
    }
    return f->resultType;
}

// Types node n for a result of resultType (0: a fresh temporary), as the
// ordinary evaluation would: an operator computes in the result's type when
// it has one, any other value is converted to it. Each node has one parent,
// so one result type; a node typed already keeps what it has.
void Type(TNUMNODE* n, uint32_t resultType, TPENDING* pending) {
    if (n->eval) return;
    TNUMNODE* a = n->a;
    TNUMNODE* b = n->b;
    uint32_t natural = 0;  // the type without a result type
    switch (n->kind) {
    case N_CONST:
    case N_SLOT:
        natural = n->type;
        break;
    case N_PAREN:
    case N_CONVERT:
        Type(a, 0, pending);
        natural = a->to ? (n->kind == N_CONVERT ? n->type : a->to) : 0;
        if (n->kind == N_PAREN && natural && (!resultType || resultType == natural)) {
            *n = *a;  // a parenthesis that changes nothing is its content
            return;
        }
        break;
    case N_CALL:
        for (size_t i = 0; i < n->args.size(); i++)
            Type(n->args[i], n->callee->slotTypes[i], pending);
        natural = ResultType(n->callee, pending);
        for (const TNUMNODE* arg : n->args) natural = arg->to ? natural : 0;
        break;
    case N_UNARY:
        Type(a, 0, pending);
        natural = a->to;
        break;
    default:  // N_BINARY
        Type(a, 0, pending);
        Type(b, 0, pending);
        if (a->to && b->to)
            natural = ScriptResultType(n->row == SCRIPT_ROW_SHL || n->row == SCRIPT_ROW_SHR, a->to, b->to);
        break;
    }
    if (!natural) {
        n->to = 0;
        n->eval = EvalNoValue;
        return;
    }
    n->to = resultType ? resultType : natural;
    switch (n->kind) {
    case N_CONST:
        n->value = ScriptNormalise(n->to, n->value);
        n->eval = EvalConst;
        break;
    case N_SLOT:
        n->eval = n->to == n->type ? EvalSlot : EvalSlotTo;
        break;
    case N_PAREN:
    case N_CONVERT:
        n->eval = EvalInner;
        break;
    case N_CALL:
        n->eval = EvalCall;
        break;
    case N_UNARY:
        n->routine = g_ScriptUnaryRoutines[n->row][Signed(a->to) | (Signed(n->to) << 1)];
        n->eval = EvalUnary;
        break;
    default:
        n->routine =
            g_ScriptBinaryRoutines[n->row][Signed(a->to) | (Signed(b->to) << 1) | (Signed(n->to) << 2)];
        n->eval = EvalBinary;
        break;
    }
}

// A compound assignment's routine, for a target of type target.
void TypeAssignment(TNUMSTMT* s, uint32_t target) {
    if (s->row >= 0 && s->expr->to)
        s->routine = g_ScriptBinaryRoutines[s->row][(Signed(target) ? 5 : 0) | (Signed(s->expr->to) << 1)];
}

void TypeStatements(const std::vector<TNUMSTMT*>& list, uint32_t resultType, TPENDING* pending) {
    for (TNUMSTMT* s : list) {
        Type(s->expr, 0, pending);
        if (s->kind == S_SELF) s->slotType = resultType;  // every assignment goes into that type
        if (s->kind == S_ASSIGN || s->kind == S_SELF) TypeAssignment(s, s->slotType);
        TypeStatements(s->body, resultType, pending);
        TypeStatements(s->elseBody, resultType, pending);
    }
}

// ---- running ----

// "=" or a compound operator into a number of type target holding *current.
inline bool Assign(const TNUMSTMT* s, uint32_t target, uint64_t* current, uint64_t value) {
    if (s->row < 0) {
        *current = ScriptNormalise(target, value);
        return true;
    }
    uint64_t out;
    if (s->routine(*current, value, &out)) return false;
    *current = ScriptNormalise(target, out);
    return true;
}

bool Run(CONXScriptExecContext* c, const std::vector<TNUMSTMT*>& list, uint64_t* slots,
         TNUMRESULT* result);

// The rounds of a while statement: each looks at the stop request and counts a step.
bool RunWhile(CONXScriptExecContext* c, const TNUMSTMT* s, uint64_t* slots, TNUMRESULT* result) {
    c->tokenStart = s->keyword->start;
    for (;;) {
        if (c->stopEvent && c->stopEvent->IsSet()) {
            c->numericStopped = true;
            return false;
        }
        if (c->Step()) return false;
        uint64_t v;
        if (!Operand(c, s->expr, slots, &v)) return false;
        c->tokenStart = s->last->start;
        if (!v) return true;
        for (uint32_t slot : s->blockSlots) slots[slot] = 0;
        if (!Run(c, s->body, slots, result)) return false;
    }
}

bool Run(CONXScriptExecContext* c, const std::vector<TNUMSTMT*>& list, uint64_t* slots,
         TNUMRESULT* result) {
    if (c->StackLow()) return false;  // blocks nest deep too
    for (const TNUMSTMT* s : list) {
        if (c->Step()) return false;
        uint64_t v;
        switch (s->kind) {
        case S_ASSIGN:
            if (!Operand(c, s->expr, slots, &v) || !Assign(s, s->slotType, &slots[s->slot], v)) return false;
            c->tokenStart = s->last->start;
            break;
        case S_SELF:
            if (!Operand(c, s->expr, slots, &v)) return false;
            result->type = s->slotType;
            if (!Assign(s, s->slotType, &result->value, v)) return false;
            c->tokenStart = s->last->start;
            break;
        case S_IF:
            if (!Operand(c, s->expr, slots, &v)) return false;
            c->tokenStart = s->last->start;
            for (uint32_t slot : s->blockSlots) slots[slot] = 0;
            if (!Run(c, v ? s->body : s->elseBody, slots, result)) return false;
            break;
        default:
            if (!RunWhile(c, s, slots, result)) return false;
            break;
        }
    }
    return true;
}

// slots: f's variables (NUM_CALL_SLOTS), its parameters set.
bool Call(CONXScriptExecContext* c, TSCRIPTNUMFUNC* f, uint64_t* slots, TNUMRESULT* out) {
    if (f->disabled) {
        c->numericNoValue = true;
        return false;
    }
    if (c->StackLow()) return false;
    for (size_t i = f->paramCount; i < f->slotCount; i++) slots[i] = 0;
    out->type = SCRIPT_TYPE_NONE;
    out->value = 0;
    bool ran = Run(c, f->body, slots, out);
    if (ran && out->type != SCRIPT_TYPE_NONE) return true;
    // A function that ends without a value is left to the ordinary path, and
    // so is every function whose native run came through it: trying them
    // again would meet the same end at every level of a recursion.
    if (ran) c->numericNoValue = true;
    if (c->numericNoValue) f->disabled = true;
    return false;
}

}  // namespace

void CONXScriptExecContext::TFREENUMERIC::operator()(TSCRIPTNUMFUNC* f) const { delete f; }

void ScriptNumType(TSCRIPTNUMFUNC* f) {
    // The values' types of every function reached first, then the statements.
    TPENDING pending;
    ResultType(f, &pending);
    while (!pending.empty()) {
        TSCRIPTNUMFUNC* g = pending.back();
        pending.pop_back();
        if (g->typing != 2) continue;
        g->typing = 3;
        TypeStatements(g->body, g->resultType, &pending);
    }
}

bool ScriptRunNumericCall(CONXScriptExecContext* context, CONXScriptFunc* func,
                          CONXScriptObject* const* arguments, size_t count, CONXScriptVariable* result) {
    if (context->numericOff) return false;
    TSCRIPTNUMFUNC* f = func->m_numericOwner == context ? func->m_pNumeric : nullptr;
    if (!f && func->m_numericOwner != context) {
        std::vector<TSCRIPTNUMFUNC*> made;
        f = ScriptNumTranslate(context, func, &made);
    }
    // Typed before its first run (a loop's attempt may have translated it only).
    if (f && f->typing != 3) ScriptNumType(f);
    if (!f || f->disabled || count != f->paramCount || result->Type() != SCRIPT_TYPE_NONE) return false;
    uint64_t* slots = NUM_CALL_SLOTS(f);
    for (size_t i = 0; i < count; i++) {
        CONXScriptVariable* v = static_cast<CONXScriptVariable*>(arguments[i])->Resolved();
        if (v->Type() != f->slotTypes[i]) return false;
        slots[i] = v->Number();
    }
    uint64_t steps = context->steps;
    TNUMRESULT value;
    context->numericNoValue = false;
    context->numericStopped = false;
    if (!Call(context, f, slots, &value)) {
        context->numericStepsUndone += context->steps - steps;
        context->steps = steps;
        if (!context->numericNoValue) context->numericOff = true;
        return false;
    }
    result->SetTypedNumber(value.type, value.value);
    return true;
}

bool ScriptRunNumericLoop(CONXScriptExecContext* context, CONXScriptFunc* scope, CONXScriptFunc* block,
                          uint64_t offset, uint32_t* code) {
    if (context->numericOff) return false;
    if (block->m_numericOwner != context) {
        block->m_numericOwner = context;
        block->m_pNumeric = ScriptNumTranslateLoop(context, scope, block, offset);
        if (block->m_pNumeric) ScriptNumType(block->m_pNumeric);
    }
    const TSCRIPTNUMFUNC* f = block->m_pNumeric;
    if (!f) return false;
    // The variables from outside, as they are now: each of the type it had
    // when the loop was translated, and no two the same.
    uint64_t slots[kScriptNumMaxSlots];
    CONXScriptVariable* bound[kScriptNumMaxSlots];
    size_t count = f->outer.size();
    for (size_t i = 0; i < count; i++) {
        CONXScriptObject* o = f->outer[i].object;
        if (o->KindTag() == SCRIPT_OBJ_TEMPLATE) o = static_cast<CONXScriptVarTemplate*>(o)->m_pCurrent;
        if (!o || o->KindTag() != SCRIPT_OBJ_VARIABLE) return false;
        CONXScriptVariable* v = static_cast<CONXScriptVariable*>(o)->Resolved();
        uint32_t slot = f->outer[i].slot;
        if (v->Type() != f->slotTypes[slot]) return false;
        for (size_t k = 0; k < i; k++)
            if (bound[k] == v) return false;
        bound[i] = v;
        slots[slot] = v->Number();
    }
    const TNUMSTMT* loop = f->body[0];
    uint64_t steps = context->steps;
    uint64_t tokenStart = context->tokenStart;
    context->numericNoValue = false;
    context->numericStopped = false;
    TNUMRESULT unused = {SCRIPT_TYPE_NONE, 0};
    bool done = RunWhile(context, loop, slots, &unused);
    if (!done && !context->numericStopped) {
        // Not a word of it happened: the ordinary run does it all again.
        context->numericStepsUndone += context->steps - steps;
        context->steps = steps;
        context->tokenStart = tokenStart;
        if (!context->numericNoValue) context->numericOff = true;
        return false;
    }
    // Done, or stopped at the start of a round: the variables stand as the
    // ordinary run would leave them there.
    for (size_t i = 0; i < count; i++) (void)bound[i]->StoreNumber(slots[f->outer[i].slot], 0);
    if (!done) {
        *code = SCRIPT_ERR_ABORTED;
        return true;
    }
    // The cursor after the last round's "{", as the ordinary run leaves it.
    context->PutBack(loop->last);
    context->Next();
    *code = 0;
    return true;
}
