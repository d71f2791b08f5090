// Translation of functions and while loops of numbers only: mirrors how the
// ordinary evaluation reads their statements and expressions, and gives up
// (null) at anything else. A function gets slots for its parameters and its
// declarations (its blocks' included); a loop also for the numeric
// variables it names from outside.
#include <cinttypes>
#include <cstdio>
#include <unordered_map>
#include <vector>

#include "script/ScriptNumeric.h"
#include "script/ScriptTokens.h"

namespace {

const uint32_t kMaxDepth = 200;  // nesting of an expression or block while translating

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
    if (!ScriptTypeIsNumeric(type) || m->f->slotCount == kScriptNumMaxSlots) return -1;
    uint32_t slot = m->f->slotCount++;
    m->slots[o] = slot;
    m->f->slotTypes.push_back(type);
    m->f->outer.push_back({o, slot});
    return (int32_t)slot;
}

// Gives numeric declarations of a body their slots; false for anything else
// a body may declare (a string, a function).
bool AddSlots(TNUMMAKER* m, const TSCRIPTOBJLIST& objects, std::vector<uint32_t>* added) {
    for (CONXScriptObject* o : objects) {
        uint32_t tag = o->KindTag();
        if (tag == SCRIPT_OBJ_IF || tag == SCRIPT_OBJ_WHILE) continue;
        if (tag != SCRIPT_OBJ_TEMPLATE) return false;
        uint32_t type = static_cast<CONXScriptVarTemplate*>(o)->m_type;
        if (!ScriptTypeIsNumeric(type) || m->f->slotCount == kScriptNumMaxSlots) return false;
        m->slots[o] = m->f->slotCount;
        m->f->slotTypes.push_back(type);
        if (added) added->push_back(m->f->slotCount);
        m->f->slotCount++;
    }
    return true;
}

// Mirrors how the ordinary evaluation reads an expression; sets *end to the
// token after it.
TNUMNODE* Expression(TNUMMAKER* m, CONXScriptFunc* scope, TSCRIPTTOKEN* t, TSCRIPTTOKEN** end,
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
            TSCRIPTNUMFUNC* callee = ScriptNumTranslate(m->context, g, m->loop ? &own : m->made);
            if (!callee) return nullptr;
            node->kind = N_CALL;
            node->callee = callee;
            TSCRIPTTOKEN* close = m->context->TokenByIndex(open->match);
            for (TSCRIPTTOKEN* a = open + 1; a != close;) {
                if (a->kind == SCRIPT_TOK_OP && a->op == SCRIPT_OP_AND) return nullptr;
                TSCRIPTTOKEN* argEnd;
                TNUMNODE* arg = Expression(m, scope, a, &argEnd, depth + 1);
                if (!arg || node->args.size() == kScriptNumMaxArgs) return nullptr;
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
                std::vector<TNUMSTMT*>* out, uint32_t depth);

TNUMSTMT* Statement(TNUMMAKER* m, CONXScriptFunc* scope, uint64_t offset, uint32_t depth) {
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
                std::vector<TNUMSTMT*>* out, uint32_t depth) {
    if (depth > kMaxDepth || m->context->StackLow()) return false;
    for (uint64_t offset : offsets) {
        TNUMSTMT* s = Statement(m, scope, offset, depth);
        if (!s) return false;
        out->push_back(s);
    }
    return true;
}

}  // namespace

// A function that refers back to one being translated gets that one's object,
// which is dropped with the whole attempt if any part of it fails.
TSCRIPTNUMFUNC* ScriptNumTranslate(CONXScriptExecContext* context, CONXScriptFunc* func,
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
    bool ok = f->paramCount <= kScriptNumMaxArgs && AddSlots(&maker, func->m_params, nullptr) &&
              AddSlots(&maker, func->m_locals, nullptr) &&
              Statements(&maker, func, func->m_statements, &f->body, 0);
    if (ok) return f;
    for (TSCRIPTNUMFUNC* g : *made) g->func->m_pNumeric = nullptr;
    return nullptr;
}

TSCRIPTNUMFUNC* ScriptNumTranslateLoop(CONXScriptExecContext* context, CONXScriptFunc* scope,
                                       CONXScriptFunc* block, uint64_t offset) {
    context->numericFunctions.emplace_back(new TSCRIPTNUMFUNC);
    TSCRIPTNUMFUNC* f = context->numericFunctions.back().get();
    f->func = block;
    TNUMMAKER maker{context, f, {}, nullptr, true};
    TNUMSTMT* loop = Statement(&maker, scope, offset, 0);
    if (!loop || loop->kind != S_WHILE) return nullptr;
    f->body.push_back(loop);
    return f;
}

