// Functions of numbers only, run without the engine's variables.
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
// always does, errors and positions included. Values and steps follow the
// ordinary rules exactly: the same operator routines, result types and
// conversions, one step per statement, call and loop round.
#include <cinttypes>
#include <cstdio>
#include <deque>
#include <memory>
#include <unordered_map>
#include <vector>

#include "os/Platform.h"
#include "script/ScriptErrors.h"
#include "script/ScriptExec.h"
#include "script/ScriptOperators.h"

namespace {

const size_t kMaxSlots = 48;  // variables of one function
const size_t kMaxArgs = 16;
const uint32_t kMaxDepth = 200;  // nesting of an expression while translating

enum : uint8_t { N_CONST, N_SLOT, N_PAREN, N_CONVERT, N_UNARY, N_BINARY, N_CALL };
enum : uint8_t { S_ASSIGN, S_SELF, S_IF, S_WHILE };

struct TNUMNODE {
    uint8_t kind = N_CONST;
    int8_t row = 0;
    uint32_t type = 0;   // N_CONST, N_SLOT: the value's type; N_CONVERT: the target type
    uint64_t value = 0;  // N_CONST
    uint32_t slot = 0;   // N_SLOT
    const TNUMNODE* a = nullptr;  // N_PAREN, N_CONVERT, N_UNARY: the operand; N_BINARY: the left one
    const TNUMNODE* b = nullptr;  // N_BINARY: the rest
    const TSCRIPTNUMFUNC* callee = nullptr;  // N_CALL
    std::vector<const TNUMNODE*> args;       // N_CALL
};

struct TNUMSTMT {
    uint8_t kind = S_ASSIGN;
    int32_t row = -1;  // a compound assignment's routine row
    uint32_t slot = 0, slotType = 0;
    const TNUMNODE* expr = nullptr;  // the value, or the condition
    // The last token the ordinary run reads of it: the ";" of an assignment,
    // the ")" of an if's condition, the "{" of a while; and a while's keyword.
    // The run keeps the token start where the ordinary one would have it, for
    // the position of a stop request.
    TSCRIPTTOKEN* last = nullptr;
    TSCRIPTTOKEN* keyword = nullptr;
    std::vector<const TNUMSTMT*> body, elseBody;
    std::vector<uint32_t> blockSlots;  // declarations of the block, zeroed at each entry
};

inline uint64_t Normalise(uint32_t type, uint64_t v) {
    switch (type) {
    case SCRIPT_TYPE_UINT32: return (uint32_t)v;
    case SCRIPT_TYPE_INT32: return (uint64_t)(int64_t)(int32_t)(uint32_t)v;
    default: return v;
    }
}
inline uint32_t Signed(uint32_t type) { return ScriptTypeIsSigned(type) ? 1 : 0; }
inline uint32_t Promote(uint32_t l, uint32_t r) {
    bool wide = ScriptTypeIs64(l) || ScriptTypeIs64(r);
    bool isSigned = ScriptTypeIsSigned(l) || ScriptTypeIsSigned(r);
    return wide ? (isSigned ? SCRIPT_TYPE_INT64 : SCRIPT_TYPE_UINT64)
                : (isSigned ? SCRIPT_TYPE_INT32 : SCRIPT_TYPE_UINT32);
}

}  // namespace

// A variable from outside that a loop of numbers only uses: its slot is
// loaded at the loop's entry and stored back at its end.
struct TNUMOUTER {
    CONXScriptObject* object;  // a declaration (its variable of the moment) or a variable
    uint32_t slot;
};

// A function of numbers only, or a while loop of numbers only (body: the loop
// alone, outer: the variables it uses from outside).
struct TSCRIPTNUMFUNC {
    CONXScriptFunc* func = nullptr;
    std::vector<TNUMOUTER> outer;
    mutable bool disabled = false;  // ended without a value once: runs the ordinary way from then on
    size_t paramCount = 0;
    uint32_t slotCount = 0;
    std::vector<uint32_t> slotTypes;
    std::vector<const TNUMSTMT*> body;
    std::deque<TNUMNODE> nodes;
    std::deque<TNUMSTMT> statements;
};

void CONXScriptExecContext::TFREENUMERIC::operator()(TSCRIPTNUMFUNC* f) const { delete f; }

namespace {

// ---- translating ----

struct TNUMMAKER {
    CONXScriptExecContext* context;
    TSCRIPTNUMFUNC* f;
    std::unordered_map<const CONXScriptObject*, uint32_t> slots;  // declaration -> slot
    std::vector<TSCRIPTNUMFUNC*>* made;  // every function of this attempt
    bool loop;  // a loop: names from outside become outer slots
};

// The slot of a declaration or variable, or -1. A function has slots for its
// own declarations only; a loop also for numeric ones from outside.
int32_t SlotOf(TNUMMAKER* m, CONXScriptObject* o) {
    auto found = m->slots.find(o);
    if (found != m->slots.end()) return (int32_t)found->second;
    if (!m->loop || !o) return -1;
    uint32_t type;
    if (o->KindTag() == SCRIPT_OBJ_TEMPLATE) type = static_cast<CONXScriptVarTemplate*>(o)->m_type;
    else if (o->KindTag() == SCRIPT_OBJ_VARIABLE) type = static_cast<CONXScriptVariable*>(o)->Resolved()->Type();
    else return -1;
    if (!ScriptTypeIsNumeric(type) || m->f->slotCount == kMaxSlots) return -1;
    uint32_t slot = m->f->slotCount++;
    m->slots[o] = slot;
    m->f->slotTypes.push_back(type);
    m->f->outer.push_back({o, slot});
    return (int32_t)slot;
}

inline bool IsPunct(const TSCRIPTTOKEN* t, char c) {
    return !t->error && t->kind == SCRIPT_TOK_PUNCT && t->punct == c;
}
inline bool IsBinary(const TSCRIPTTOKEN* t) {
    return !t->error && t->kind == SCRIPT_TOK_OP && t->op >= 0 &&
           (g_ScriptOperators[t->op].opClass & SCRIPT_OPCLASS_BINARY) != 0;
}

TSCRIPTNUMFUNC* Translate(CONXScriptExecContext* context, CONXScriptFunc* func,
                          std::vector<TSCRIPTNUMFUNC*>* made);

// Gives numeric declarations of a body their slots; false for anything else
// a body may declare (a string, a function).
bool AddSlots(TNUMMAKER* m, const TSCRIPTOBJLIST& objects, std::vector<uint32_t>* added) {
    for (CONXScriptObject* o : objects) {
        uint32_t tag = o->KindTag();
        if (tag == SCRIPT_OBJ_IF || tag == SCRIPT_OBJ_WHILE) continue;
        if (tag != SCRIPT_OBJ_TEMPLATE) return false;
        uint32_t type = static_cast<CONXScriptVarTemplate*>(o)->m_type;
        if (!ScriptTypeIsNumeric(type) || m->f->slotCount == kMaxSlots) return false;
        m->slots[o] = m->f->slotCount;
        m->f->slotTypes.push_back(type);
        if (added) added->push_back(m->f->slotCount);
        m->f->slotCount++;
    }
    return true;
}

// Mirrors how the ordinary evaluation reads an expression; sets *end to the
// token after it.
const TNUMNODE* Expression(TNUMMAKER* m, CONXScriptFunc* scope, TSCRIPTTOKEN* t, TSCRIPTTOKEN** end,
                           uint32_t depth) {
    if (depth > kMaxDepth || m->context->StackLow() || t->error) return nullptr;
    TNUMNODE* node = &m->f->nodes.emplace_back();
    if (t->kind == SCRIPT_TOK_OP) {
        int32_t row = ScriptUnaryRow(t->op);
        if (row < 0 || !(g_ScriptOperators[t->op].opClass & SCRIPT_OPCLASS_UNARY)) return nullptr;
        node->kind = N_UNARY;
        node->row = (int8_t)row;
        node->a = Expression(m, scope, t + 1, end, depth + 1);
        return node->a ? node : nullptr;
    }
    TSCRIPTTOKEN* next;
    if (IsPunct(t, '(')) {
        node->kind = N_PAREN;
        TSCRIPTTOKEN* close;
        if (!(node->a = Expression(m, scope, t + 1, &close, depth + 1)) || !IsPunct(close, ')'))
            return nullptr;
        next = close + 1;
    } else if (t->kind >= SCRIPT_TOK_DEC && t->kind <= SCRIPT_TOK_BIN) {
        CONXScriptVariable* literal;
        if (ScriptLiteral(m->context, t, &literal)) return nullptr;
        node->kind = N_CONST;
        node->type = literal->Type();
        node->value = literal->Number();
        next = t + 1;
    } else if (t->kind == SCRIPT_TOK_IDENT) {
        CONXScriptObject* o =
            t->cacheScope == scope ? t->cacheObject : ScriptLookUpName(scope, t);
        if (!o) {
            // A conversion to a numeric type.
            if (!ScriptTypeIsNumeric(t->typeCode) || !IsPunct(t + 1, '(')) return nullptr;
            node->kind = N_CONVERT;
            node->type = t->typeCode;
            TSCRIPTTOKEN* close;
            if (!(node->a = Expression(m, scope, t + 2, &close, depth + 1)) || !IsPunct(close, ')'))
                return nullptr;
            next = close + 1;
        } else if (o->KindTag() == SCRIPT_OBJ_TEMPLATE || o->KindTag() == SCRIPT_OBJ_VARIABLE) {
            int32_t slot = SlotOf(m, o);
            if (slot < 0) return nullptr;  // a function's: not its own
            node->kind = N_SLOT;
            node->slot = (uint32_t)slot;
            node->type = m->f->slotTypes[slot];
            next = t + 1;
        } else if (o->KindTag() == SCRIPT_OBJ_FUNCTION) {
            CONXScriptFunc* g = static_cast<CONXScriptFunc*>(o);
            TSCRIPTTOKEN* open = t + 1;
            if (g->m_isParameter || g->m_isBuiltIn || g->m_pDelegate || !IsPunct(open, '(') ||
                open->match < 0)
                return nullptr;
            // A loop is no function: its callees are translated each on its own.
            std::vector<TSCRIPTNUMFUNC*> own;
            TSCRIPTNUMFUNC* callee = Translate(m->context, g, m->loop ? &own : m->made);
            if (!callee) return nullptr;
            node->kind = N_CALL;
            node->callee = callee;
            TSCRIPTTOKEN* close = m->context->TokenByIndex(open->match);
            for (TSCRIPTTOKEN* a = open + 1; a != close;) {
                if (a->kind == SCRIPT_TOK_OP && a->op == SCRIPT_OP_AND) return nullptr;
                TSCRIPTTOKEN* argEnd;
                const TNUMNODE* arg = Expression(m, scope, a, &argEnd, depth + 1);
                if (!arg || node->args.size() == kMaxArgs) return nullptr;
                node->args.push_back(arg);
                if (argEnd == close) break;
                if (!IsPunct(argEnd, ',')) return nullptr;
                a = argEnd + 1;
            }
            if (node->args.size() != g->m_params.size()) return nullptr;
            next = close + 1;
        } else {
            return nullptr;
        }
    } else {
        return nullptr;
    }
    if (!IsBinary(next)) {
        if (next->error) return nullptr;
        *end = next;
        return node;
    }
    TNUMNODE* binary = &m->f->nodes.emplace_back();
    binary->kind = N_BINARY;
    binary->row = (int8_t)ScriptBinaryRow(next->op);
    binary->a = node;
    binary->b = Expression(m, scope, next + 1, end, depth + 1);
    return binary->b ? binary : nullptr;
}

// The "@N<offset>" object of an if or while.
CONXScriptFunc* Block(CONXScriptFunc* scope, uint64_t offset, uint32_t kind) {
    char name[32];
    snprintf(name, sizeof name, "@N%" PRIu64, offset);
    CONXScriptObject* o;
    if (scope->FindName(name, nullptr, &o) < 0 || !o || o->KindTag() != kind) return nullptr;
    return static_cast<CONXScriptFunc*>(o);
}

bool Statements(TNUMMAKER* m, CONXScriptFunc* scope, const TSCRIPTSTMTLIST& offsets,
                std::vector<const TNUMSTMT*>* out, uint32_t depth);

const TNUMSTMT* Statement(TNUMMAKER* m, CONXScriptFunc* scope, uint64_t offset, uint32_t depth) {
    TSCRIPTTOKEN* t = m->context->TokenAt(offset);
    if (!t || t->error || t->kind != SCRIPT_TOK_IDENT) return nullptr;
    TNUMSTMT* s = &m->f->statements.emplace_back();
    if (t->keyword == SCRIPT_KW_IF || t->keyword == SCRIPT_KW_WHILE) {
        bool isIf = t->keyword == SCRIPT_KW_IF;
        CONXScriptFunc* block = Block(scope, offset, isIf ? SCRIPT_OBJ_IF : SCRIPT_OBJ_WHILE);
        TSCRIPTTOKEN* open = t + 1;
        if (!block || !IsPunct(open, '(')) return nullptr;
        TSCRIPTTOKEN* close;
        if (!(s->expr = Expression(m, scope, open + 1, &close, 0)) || !IsPunct(close, ')')) return nullptr;
        if (!isIf && !IsPunct(close + 1, '{')) return nullptr;
        s->kind = isIf ? S_IF : S_WHILE;
        s->keyword = t;
        s->last = isIf ? close : close + 1;
        if (!AddSlots(m, block->m_locals, &s->blockSlots)) return nullptr;
        if (!Statements(m, block, block->m_statements, &s->body, depth + 1)) return nullptr;
        if (isIf && !Statements(m, block, static_cast<CONXScriptIfStatement*>(block)->m_elseStatements,
                                &s->elseBody, depth + 1))
            return nullptr;
        return s;
    }
    if (t->keyword != SCRIPT_KW_NONE) return nullptr;
    TSCRIPTTOKEN* op = t + 1;
    if (op->error || op->kind != SCRIPT_TOK_OP || op->op < 0 ||
        !(g_ScriptOperators[op->op].opClass & SCRIPT_OPCLASS_ASSIGN))
        return nullptr;
    s->row = op->op == SCRIPT_OP_ASSIGN ? -1 : ScriptBinaryRow(op->op);
    if (ScriptNamesEqual(t->text.c_str(), scope->Name().c_str())) {
        if (scope != m->f->func) return nullptr;
        s->kind = S_SELF;
    } else {
        CONXScriptObject* o = t->cacheScope == scope ? t->cacheObject : ScriptLookUpName(scope, t);
        int32_t slot = SlotOf(m, o);
        if (slot < 0) return nullptr;
        s->kind = S_ASSIGN;
        s->slot = (uint32_t)slot;
        s->slotType = m->f->slotTypes[slot];
    }
    TSCRIPTTOKEN* end;
    if (!(s->expr = Expression(m, scope, op + 1, &end, 0)) || !IsPunct(end, ';')) return nullptr;
    s->last = end;
    return s;
}

bool Statements(TNUMMAKER* m, CONXScriptFunc* scope, const TSCRIPTSTMTLIST& offsets,
                std::vector<const TNUMSTMT*>* out, uint32_t depth) {
    if (depth > kMaxDepth || m->context->StackLow()) return false;
    for (uint64_t offset : offsets) {
        const TNUMSTMT* s = Statement(m, scope, offset, depth);
        if (!s) return false;
        out->push_back(s);
    }
    return true;
}

// The translation of func, made on first use and kept for the run; null when
// it does not qualify. A function that refers back to one being translated
// gets that one's object, which is dropped with the whole attempt if any part
// of it fails.
TSCRIPTNUMFUNC* Translate(CONXScriptExecContext* context, CONXScriptFunc* func,
                          std::vector<TSCRIPTNUMFUNC*>* made) {
    if (func->m_numericOwner == context) return func->m_pNumeric;
    func->m_numericOwner = context;
    context->numericFunctions.emplace_back(new TSCRIPTNUMFUNC);
    TSCRIPTNUMFUNC* f = context->numericFunctions.back().get();
    f->func = func;
    func->m_pNumeric = f;
    made->push_back(f);
    TNUMMAKER maker{context, f, {}, made, false};
    f->paramCount = func->m_params.size();
    bool ok = f->paramCount <= kMaxArgs && AddSlots(&maker, func->m_params, nullptr) &&
              AddSlots(&maker, func->m_locals, nullptr) &&
              Statements(&maker, func, func->m_statements, &f->body, 0);
    if (ok) return f;
    for (TSCRIPTNUMFUNC* g : *made) g->func->m_pNumeric = nullptr;
    return nullptr;
}

// The translation of the while statement at offset in scope (its block given),
// or null when it is not a loop of numbers only.
TSCRIPTNUMFUNC* TranslateLoop(CONXScriptExecContext* context, CONXScriptFunc* scope, CONXScriptFunc* block,
                              uint64_t offset) {
    context->numericFunctions.emplace_back(new TSCRIPTNUMFUNC);
    TSCRIPTNUMFUNC* f = context->numericFunctions.back().get();
    f->func = block;
    TNUMMAKER maker{context, f, {}, nullptr, true};
    const TNUMSTMT* loop = Statement(&maker, scope, offset, 0);
    if (!loop || loop->kind != S_WHILE) return nullptr;
    f->body.push_back(loop);
    return f;
}

// ---- running ----

struct TNUMRESULT {
    uint32_t type;
    uint64_t value;
};

bool Call(CONXScriptExecContext* c, const TSCRIPTNUMFUNC* f, const uint64_t* args, TNUMRESULT* out);

bool Evaluate(CONXScriptExecContext* c, const TNUMNODE* n, const uint64_t* slots, uint32_t resultType,
              uint32_t* type, uint64_t* value);

// A call in an expression: the step, the arguments into the parameters' types, the call.
// Kept apart so that the frame of the common cases stays small.
__attribute__((noinline)) bool CallNode(CONXScriptExecContext* c, const TNUMNODE* n,
                                        const uint64_t* slots, uint32_t* type, uint64_t* value) {
    if (c->StackLow() || c->Step()) return false;
    uint64_t args[kMaxArgs];
    uint32_t t;
    for (size_t i = 0; i < n->args.size(); i++)
        if (!Evaluate(c, n->args[i], slots, n->callee->slotTypes[i], &t, &args[i])) return false;
    TNUMRESULT result;
    if (!Call(c, n->callee, args, &result)) return false;
    *type = result.type;
    *value = result.value;
    return true;
}

// An operand into a fresh temporary: constants and variables read at once.
inline bool Operand(CONXScriptExecContext* c, const TNUMNODE* n, const uint64_t* slots, uint32_t* type,
                    uint64_t* value) {
    if (n->kind == N_SLOT) {
        *type = n->type;
        *value = slots[n->slot];
        return true;
    }
    if (n->kind == N_CONST) {
        *type = n->type;
        *value = n->value;
        return true;
    }
    return Evaluate(c, n, slots, 0, type, value);
}

// An expression into a result of type resultType (0: untyped, a fresh temporary).
bool Evaluate(CONXScriptExecContext* c, const TNUMNODE* n, const uint64_t* slots, uint32_t resultType,
              uint32_t* type, uint64_t* value) {
    uint32_t t, rt;
    uint64_t v, rv, out;
    switch (n->kind) {
    case N_CONST:
        t = n->type;
        v = n->value;
        break;
    case N_SLOT:
        t = n->type;
        v = slots[n->slot];
        break;
    case N_PAREN:
        if (!Evaluate(c, n->a, slots, 0, &t, &v)) return false;
        break;
    case N_CONVERT:
        if (!Evaluate(c, n->a, slots, 0, &t, &v)) return false;
        t = n->type;
        v = Normalise(t, v);
        break;
    case N_CALL:
        if (!CallNode(c, n, slots, &t, &v)) return false;
        break;
    case N_UNARY: {
        // The rest of the expression goes into a fresh temporary first.
        if (!Operand(c, n->a, slots, &rt, &rv)) return false;
        t = resultType ? resultType : rt;
        (void)g_ScriptUnaryRoutines[n->row][Signed(rt) | (Signed(t) << 1)](rv, 0, &out);
        *type = t;
        *value = Normalise(t, out);
        return true;
    }
    default: {  // N_BINARY
        if (!Operand(c, n->a, slots, &t, &v) || !Operand(c, n->b, slots, &rt, &rv)) return false;
        uint32_t to = resultType;
        if (!to) to = (n->row == SCRIPT_ROW_SHL || n->row == SCRIPT_ROW_SHR) ? t : Promote(t, rt);
        if (g_ScriptBinaryRoutines[n->row][Signed(t) | (Signed(rt) << 1) | (Signed(to) << 2)](v, rv, &out))
            return false;
        *type = to;
        *value = Normalise(to, out);
        return true;
    }
    }
    // A value that is not an operator's goes into a typed result converted.
    if (resultType) {
        t = resultType;
        v = Normalise(t, v);
    }
    *type = t;
    *value = v;
    return true;
}

// "=" or a compound operator into a number of type target holding *current.
inline bool Assign(int32_t row, uint32_t target, uint64_t* current, uint32_t type, uint64_t value) {
    if (row < 0) {
        *current = Normalise(target, value);
        return true;
    }
    uint64_t out;
    if (g_ScriptBinaryRoutines[row][(Signed(target) ? 5 : 0) | (Signed(type) << 1)](*current, value, &out))
        return false;
    *current = Normalise(target, out);
    return true;
}

bool Run(CONXScriptExecContext* c, const std::vector<const TNUMSTMT*>& list, uint64_t* slots,
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
        uint32_t t;
        uint64_t v;
        if (!Operand(c, s->expr, slots, &t, &v)) return false;
        c->tokenStart = s->last->start;
        if (!v) return true;
        for (uint32_t slot : s->blockSlots) slots[slot] = 0;
        if (!Run(c, s->body, slots, result)) return false;
    }
}

bool Run(CONXScriptExecContext* c, const std::vector<const TNUMSTMT*>& list, uint64_t* slots,
         TNUMRESULT* result) {
    for (const TNUMSTMT* s : list) {
        if (c->Step()) return false;
        uint32_t t;
        uint64_t v;
        switch (s->kind) {
        case S_ASSIGN:
            if (!Operand(c, s->expr, slots, &t, &v) ||
                !Assign(s->row, s->slotType, &slots[s->slot], t, v))
                return false;
            c->tokenStart = s->last->start;
            break;
        case S_SELF:
            if (!Operand(c, s->expr, slots, &t, &v)) return false;
            if (!result->type) result->type = t;  // the value takes the first type it is given
            if (!Assign(s->row, result->type, &result->value, t, v)) return false;
            c->tokenStart = s->last->start;
            break;
        case S_IF:
            if (!Operand(c, s->expr, slots, &t, &v)) return false;
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

bool Call(CONXScriptExecContext* c, const TSCRIPTNUMFUNC* f, const uint64_t* args, TNUMRESULT* out) {
    if (f->disabled) {
        c->numericNoValue = true;
        return false;
    }
    if (c->StackLow()) return false;
    uint64_t slots[kMaxSlots];
    for (size_t i = 0; i < f->slotCount; i++) slots[i] = i < f->paramCount ? args[i] : 0;
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

bool ScriptRunNumericCall(CONXScriptExecContext* context, CONXScriptFunc* func,
                          CONXScriptObject* const* arguments, size_t count, CONXScriptVariable* result) {
    if (context->numericOff) return false;
    const TSCRIPTNUMFUNC* f = func->m_numericOwner == context ? func->m_pNumeric : nullptr;
    if (!f && func->m_numericOwner != context) {
        std::vector<TSCRIPTNUMFUNC*> made;
        f = Translate(context, func, &made);
    }
    if (!f || f->disabled || count != f->paramCount || result->Type() != SCRIPT_TYPE_NONE) return false;
    uint64_t args[kMaxArgs];
    for (size_t i = 0; i < count; i++) {
        CONXScriptVariable* v = static_cast<CONXScriptVariable*>(arguments[i])->Resolved();
        if (v->Type() != f->slotTypes[i]) return false;
        args[i] = v->Number();
    }
    uint64_t steps = context->steps;
    TNUMRESULT value;
    context->numericNoValue = false;
    context->numericStopped = false;
    if (!Call(context, f, args, &value)) {
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
        block->m_pNumeric = TranslateLoop(context, scope, block, offset);
    }
    const TSCRIPTNUMFUNC* f = block->m_pNumeric;
    if (!f) return false;
    // The variables from outside, as they are now: each of the type it had
    // when the loop was translated, and no two the same.
    uint64_t slots[kMaxSlots];
    CONXScriptVariable* bound[kMaxSlots];
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
