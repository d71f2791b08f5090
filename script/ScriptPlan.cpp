// Plans for simple statements of the form "name op= expression;" whose
// expression is built of variables, literals, calls, binary operators and
// numbers-only parts. The first run of such a statement reads its tokens once
// into a small tree; later runs walk the tree instead of re-reading the
// tokens. Each step does what the reading evaluation does at that point, in
// the same order, and leaves the cursor and the token start where it would,
// so step counts and error positions come out the same. Where a step cannot
// be taken as planned (a name not bound now, a numbers-only part meeting
// another type), the reading evaluation takes that expression over from its
// first token; nothing of that expression has happened yet at that point.
#include <deque>
#include <memory>

#include "script/ScriptErrors.h"
#include "script/ScriptExec.h"
#include "script/ScriptOperators.h"
#include "script/ScriptTokens.h"

namespace {

enum : uint8_t { PLAN_FAST, PLAN_VAR, PLAN_LITERAL, PLAN_CALL, PLAN_BINARY };

const size_t kMaxPlanArgs = 16;
const uint32_t kMaxPlanDepth = 64;

struct TPLANNODE {
    uint8_t kind = PLAN_FAST;
    bool hasCall = false;      // the expression calls a function
    bool copyLeft = false;     // BINARY: a call in the rest could change the left variable
    bool argsInPlace = false;  // CALL: lone arguments read where they are (a reading built-in)
    int32_t op = -1;           // BINARY: operator index
    TSCRIPTTOKEN* first = nullptr;    // where reading the expression starts
    TSCRIPTTOKEN* end = nullptr;      // the token after it
    TSCRIPTTOKEN* opToken = nullptr;  // BINARY
    const TPLANNODE* left = nullptr;  // BINARY: a VAR, LITERAL or CALL
    const TPLANNODE* rest = nullptr;  // BINARY
    CONXScriptVariable* literal = nullptr;   // LITERAL
    const TSCRIPTFASTPROGRAM* program = nullptr;  // FAST
    CONXScriptFunc* callee = nullptr;        // CALL
    TSCRIPTTOKEN* close = nullptr;           // CALL: its ")"
    size_t argCount = 0;
    const TPLANNODE* args[kMaxPlanArgs] = {};
    CONXScriptVarTemplate* params[kMaxPlanArgs] = {};  // the declaration typing an argument, or null
};

}  // namespace

// An assignment statement, or the "( condition )" of an if or while.
struct TSCRIPTPLAN {
    bool self = false;  // assigns the running function's own value
    int32_t op = -1;
    int32_t row = -1;   // a compound operator's routine row
    TSCRIPTTOKEN* opToken = nullptr;
    const TPLANNODE* value = nullptr;
    std::deque<TPLANNODE> nodes;
    const TSCRIPTFASTPROGRAM* condition = nullptr;  // a numbers-only condition
};

void CONXScriptExecContext::TFREEPLAN::operator()(TSCRIPTPLAN* plan) const { delete plan; }

namespace {

// ---- making a plan: mirrors how the reading evaluation walks the tokens ----

struct TPLANMAKER {
    CONXScriptExecContext* context;
    CONXScriptFunc* scope;
    TSCRIPTPLAN* plan;
};

// A statement's expression ends at ";", an argument at "," or ")".
bool EndsRight(const TSCRIPTTOKEN* t, bool argument) {
    if (t->error) return false;
    return argument ? (IsPunct(t, ',') || IsPunct(t, ')')) : IsPunct(t, ';');
}

// What a name is declared as in the scope (a declaration, a variable, a function).
CONXScriptObject* Declared(CONXScriptFunc* scope, TSCRIPTTOKEN* t) {
    return t->cacheScope == scope ? t->cacheObject : ScriptLookUpName(scope, t);
}
inline bool IsVariableName(const CONXScriptObject* o) {
    return o && (o->KindTag() == SCRIPT_OBJ_TEMPLATE || o->KindTag() == SCRIPT_OBJ_VARIABLE);
}

TPLANNODE* MakeExpression(TPLANMAKER* m, TSCRIPTTOKEN* first, bool argument, uint32_t depth);

TPLANNODE* MakeLeaf(TPLANMAKER* m, TSCRIPTTOKEN* t) {
    CONXScriptVariable* literal = nullptr;
    if (IsLiteral(t) && ScriptLiteral(m->context, t, &literal)) return nullptr;
    TPLANNODE* node = &m->plan->nodes.emplace_back();
    node->kind = literal ? PLAN_LITERAL : PLAN_VAR;
    node->literal = literal;
    node->first = t;
    node->end = t + 1;
    return node;
}

TPLANNODE* MakeCall(TPLANMAKER* m, TSCRIPTTOKEN* name, CONXScriptFunc* callee, uint32_t depth) {
    if (callee->GetDelegate() || callee->m_isParameter) return nullptr;
    TSCRIPTTOKEN* open = name + 1;
    if (open->error || !IsPunct(open, '(') || open->match < 0) return nullptr;
    TSCRIPTTOKEN* close = m->context->TokenByIndex(open->match);
    TPLANNODE* node = &m->plan->nodes.emplace_back();
    node->kind = PLAN_CALL;
    node->hasCall = true;
    node->callee = callee;
    node->first = name;
    node->close = close;
    node->end = close + 1;
    bool argCalls = false;
    for (TSCRIPTTOKEN* t = open + 1; t != close;) {
        if (node->argCount == kMaxPlanArgs) return nullptr;
        // "&name" arguments stay with the reading path.
        if (t->error || (t->kind == SCRIPT_TOK_OP && t->op == SCRIPT_OP_AND)) return nullptr;
        CONXScriptObject* param = callee->GetParameter(node->argCount);
        uint32_t tag = param ? param->KindTag() : SCRIPT_OBJ_PLAIN;
        if (tag == SCRIPT_OBJ_FUNCTION) return nullptr;
        TPLANNODE* arg = MakeExpression(m, t, true, depth + 1);
        if (!arg) return nullptr;
        argCalls = argCalls || arg->hasCall;
        node->params[node->argCount] =
            tag == SCRIPT_OBJ_TEMPLATE ? static_cast<CONXScriptVarTemplate*>(param) : nullptr;
        node->args[node->argCount++] = arg;
        if (arg->end == close) break;
        if (!IsPunct(arg->end, ',')) return nullptr;
        t = arg->end + 1;
    }
    // A wrong count is an error the reading path reports after the arguments.
    if (!callee->CheckArgumentCount(node->argCount)) return nullptr;
    node->argsInPlace = callee->m_readsArgumentsOnly && !argCalls;
    return node;
}

TPLANNODE* MakeExpression(TPLANMAKER* m, TSCRIPTTOKEN* first, bool argument, uint32_t depth) {
    if (depth > kMaxPlanDepth || m->context->StackLow()) return nullptr;
    if (first->error || first->kind == SCRIPT_TOK_END || first[1].error) return nullptr;
    CONXScriptObject* declared = first->kind == SCRIPT_TOK_IDENT ? Declared(m->scope, first) : nullptr;
    bool leaf = IsLiteral(first) || IsVariableName(declared);
    if (leaf && !IsBinary(first + 1)) {
        // A lone variable or literal, read in place.
        if (!EndsRight(first + 1, argument)) return nullptr;
        return MakeLeaf(m, first);
    }
    if (TSCRIPTFASTPROGRAM* program = ScriptFastProgram(m->context, m->scope, first)) {
        TSCRIPTTOKEN* end = ScriptFastProgramEnd(program);
        if (!EndsRight(end, argument)) return nullptr;
        TPLANNODE* node = &m->plan->nodes.emplace_back();
        node->program = program;
        node->first = first;
        node->end = end;
        return node;
    }
    TPLANNODE* operand;
    if (leaf) operand = MakeLeaf(m, first);
    else if (declared && declared->KindTag() == SCRIPT_OBJ_FUNCTION)
        operand = MakeCall(m, first, static_cast<CONXScriptFunc*>(declared), depth);
    else return nullptr;
    if (!operand) return nullptr;
    TSCRIPTTOKEN* op = operand->end;
    if (!IsBinary(op)) return EndsRight(op, argument) ? operand : nullptr;
    TPLANNODE* rest = MakeExpression(m, op + 1, argument, depth + 1);
    if (!rest) return nullptr;
    TPLANNODE* node = &m->plan->nodes.emplace_back();
    node->kind = PLAN_BINARY;
    node->hasCall = operand->hasCall || rest->hasCall;
    node->copyLeft = operand->kind == PLAN_VAR && rest->hasCall;
    node->op = op->op;
    node->first = first;
    node->end = rest->end;
    node->opToken = op;
    node->left = operand;
    node->rest = rest;
    return node;
}

// The plan of the statement starting at t, or null when it is not of a planned form.
TSCRIPTPLAN* MakePlan(CONXScriptExecContext* context, CONXScriptFunc* scope, TSCRIPTTOKEN* t) {
    if (context->IndexOf(t) < 0 || t->kind != SCRIPT_TOK_IDENT || t->keyword != SCRIPT_KW_NONE)
        return nullptr;
    TSCRIPTTOKEN* op = t + 1;
    if (op->error || op->kind != SCRIPT_TOK_OP || op->op < 0 ||
        !(g_ScriptOperators[op->op].opClass & SCRIPT_OPCLASS_ASSIGN))
        return nullptr;
    std::unique_ptr<TSCRIPTPLAN> plan(new TSCRIPTPLAN);
    plan->self = ScriptNamesEqual(t->text.c_str(), scope->Name().c_str());
    if (!plan->self && !IsVariableName(Declared(scope, t))) return nullptr;
    plan->op = op->op;
    if (op->op != SCRIPT_OP_ASSIGN) plan->row = ScriptBinaryRow(op->op);
    plan->opToken = op;
    TPLANMAKER maker = {context, scope, plan.get()};
    plan->value = MakeExpression(&maker, op + 1, false, 0);
    if (!plan->value) return nullptr;
    context->plans.emplace_back(plan.release());
    return context->plans.back().get();
}

TSCRIPTPLAN* MakeConditionPlan(CONXScriptExecContext* context, CONXScriptFunc* scope,
                               TSCRIPTTOKEN* open) {
    if (context->IndexOf(open) < 0 || open->error || !IsPunct(open, '(')) return nullptr;
    TSCRIPTFASTPROGRAM* program = ScriptFastProgram(context, scope, open + 1);
    if (!program || !IsPunct(ScriptFastProgramEnd(program), ')')) return nullptr;
    std::unique_ptr<TSCRIPTPLAN> plan(new TSCRIPTPLAN);
    plan->condition = program;
    context->plans.emplace_back(plan.release());
    return context->plans.back().get();
}

// ---- running a plan ----

// A compound assignment of two numbers, as ApplyAssignmentOp does it.
inline uint32_t AssignNumbers(CONXScriptVariable* target, int32_t row, uint32_t type, uint64_t value) {
    int index = (ScriptTypeIsSigned(target->Type()) ? 5 : 0) | (ScriptTypeIsSigned(type) ? 2 : 0);
    uint64_t out;
    if (uint32_t err = g_ScriptBinaryRoutines[row][index](target->Number(), value, &out)) return err;
    return target->StoreNumber(out, 0);
}

uint32_t PlanEval(CONXScriptExecContext* c, CONXScriptFunc* scope, const TPLANNODE* n,
                  CONXScriptVariable* result);

// The variable a name stands for now, or null.
inline CONXScriptVariable* Bound(CONXScriptFunc* scope, TSCRIPTTOKEN* t) {
    CONXScriptObject* o = ScriptResolveName(scope, t);
    return (o && o->KindTag() == SCRIPT_OBJ_VARIABLE) ? static_cast<CONXScriptVariable*>(o)->Resolved()
                                                      : nullptr;
}
inline CONXScriptVariable* LeafValue(CONXScriptFunc* scope, const TPLANNODE* n) {
    return n->kind == PLAN_LITERAL ? n->literal : Bound(scope, n->first);
}

// The reading evaluation takes the expression over from its first token.
uint32_t ReadingEval(CONXScriptExecContext* c, CONXScriptFunc* scope, const TPLANNODE* n,
                     CONXScriptVariable* result) {
    c->PutBack(n->first);
    return scope->Eval(c, result);
}

// After an expression the reading path has looked at the next token and put it back.
inline void Finish(CONXScriptExecContext* c, const TPLANNODE* n) {
    c->tokenStart = n->end->start;
    c->PutBack(n->end);
}

// As EvalRef: a lone variable or literal in place, anything else in a temporary.
uint32_t PlanEvalRef(CONXScriptExecContext* c, CONXScriptFunc* scope, const TPLANNODE* n,
                     CONXScriptVariable** value) {
    if (n->kind == PLAN_VAR || n->kind == PLAN_LITERAL) {
        if (CONXScriptVariable* v = LeafValue(scope, n)) {
            Finish(c, n);
            *value = v;
            return 0;
        }
    }
    CONXScriptVariable* temp = c->vars.Push();
    *value = temp;
    return PlanEval(c, scope, n, temp);
}

// Evaluates the arguments of the call n onto the run's list. A function of
// its own, so that none of its frame stays on the stack while the callee runs.
__attribute__((noinline)) uint32_t PushArguments(CONXScriptExecContext* c, CONXScriptFunc* scope,
                                                 const TPLANNODE* n) {
    uint32_t err;
    for (size_t i = 0; i < n->argCount; i++) {
        CONXScriptVariable* v;
        if (n->argsInPlace) {
            if ((err = PlanEvalRef(c, scope, n->args[i], &v))) return err;
        } else {
            v = c->vars.Push();
            if (n->params[i]) v->InitFrame(n->params[i]);  // found through its declaration, unnamed
            if ((err = PlanEval(c, scope, n->args[i], v))) return err;
        }
        c->arguments.push_back(v);
    }
    return 0;
}

// Binds the parameters of the user function that n calls to args, and its
// value to result. Apart for the same reason as PushArguments.
__attribute__((noinline)) void BindCall(CONXScriptExecContext* c, const TPLANNODE* n,
                                        CONXScriptObject* const* args, CONXScriptVariable* result) {
    for (size_t i = 0; i < n->argCount; i++) c->Bind(&n->params[i]->m_pCurrent, args[i]);
    c->Bind(&n->callee->m_pResult, result);
}

// As ScriptCallFunction, the name just read.
uint32_t RunCall(CONXScriptExecContext* c, CONXScriptFunc* scope, const TPLANNODE* n,
                 CONXScriptVariable* result) {
    c->tokenStart = n->first->start;
    if (c->StackLow()) return SCRIPT_ERR_OUTOFMEMORY;
    if (c->Step()) return SCRIPT_ERR_ABORTED;
    CONXScriptVarStack::TMARK mark = c->vars.Mark();
    // The arguments go to the run's list rather than this frame: a level of
    // a recursion then costs less stack. Taken only once all are there.
    const size_t base = c->arguments.size();
    uint32_t err;
    if ((err = PushArguments(c, scope, n))) return err;
    CONXScriptObject* const* args = c->arguments.data() + base;
    c->tokenStart = n->close->start;
    CONXScriptFunc* callee = n->callee;
    if (callee->m_isBuiltIn || callee->m_pDelegate) {
        TSCRIPTARGS list;
        list.items = args;
        list.count = n->argCount;
        if ((err = callee->Execute(c->run, scope, list, result))) return err;
    } else if (!ScriptRunNumericCall(c, callee, args, n->argCount, result)) {
        // What Execute does for a user function, its parameters known to be
        // value declarations matching the arguments.
        if (c->StackLow()) return SCRIPT_ERR_OUTOFMEMORY;
        size_t bindMark = c->BindMark();
        BindCall(c, n, args, result);
        if ((err = callee->EnterBody(c, callee->m_statements))) return err;
        c->UnbindTo(bindMark);
    }
    c->PutBack(n->end);
    c->arguments.resize(base);
    c->vars.PopTo(mark);
    return 0;
}

// As Eval into a result variable.
uint32_t PlanEval(CONXScriptExecContext* c, CONXScriptFunc* scope, const TPLANNODE* n,
                  CONXScriptVariable* result) {
    if (c->StackLow()) return SCRIPT_ERR_OUTOFMEMORY;
    if (n->kind == PLAN_FAST)
        return ScriptFastRunInto(c, n->program, result) ? 0 : ReadingEval(c, scope, n, result);
    if (ScriptFastEvaluate(c, scope, n->first, result)) return 0;
    uint32_t err;
    switch (n->kind) {
    case PLAN_VAR:
    case PLAN_LITERAL: {
        CONXScriptVariable* v = LeafValue(scope, n);
        if (!v) return ReadingEval(c, scope, n, result);
        Finish(c, n);
        // A function that never set its value gives an untyped one: passed on as it is.
        if (v->Type() != SCRIPT_TYPE_NONE || result->Type() != SCRIPT_TYPE_NONE)
            return result->AssignFast(v);
        return 0;
    }
    case PLAN_CALL: {
        CONXScriptVarStack::TMARK mark = c->vars.Mark();
        if (result->Type() == SCRIPT_TYPE_NONE) {
            // The call is the whole expression and the result is fresh: straight there.
            if ((err = RunCall(c, scope, n, result))) return err;
            Finish(c, n);
        } else {
            CONXScriptVariable* operand = c->vars.Push();
            if ((err = RunCall(c, scope, n, operand))) return err;
            Finish(c, n);
            if ((err = result->AssignFast(operand))) return err;  // the result is typed
        }
        c->vars.PopTo(mark);
        return 0;
    }
    default: {  // PLAN_BINARY
        const TPLANNODE* l = n->left;
        CONXScriptVarStack::TMARK mark = c->vars.Mark();
        CONXScriptVariable* operand;
        if (l->kind == PLAN_CALL) {
            operand = c->vars.Push();
            if ((err = RunCall(c, scope, l, operand))) return err;
        } else {
            operand = LeafValue(scope, l);
            if (!operand) return ReadingEval(c, scope, n, result);
            if (n->copyLeft) {
                // The operand's value as it is now, before the rest can change it.
                c->tokenStart = n->opToken->start;
                CONXScriptVariable* copy = c->vars.Push();
                if ((err = copy->AssignFast(operand))) return err;
                operand = copy;
            }
        }
        CONXScriptVariable* rest;
        if ((err = PlanEvalRef(c, scope, n->rest, &rest))) return err;
        if ((err = result->ApplyBinaryOp(n->op, operand, rest))) return err;
        c->vars.PopTo(mark);
        return 0;
    }
    }
}

}  // namespace

uint32_t ScriptRunSimpleStatement(CONXScriptExecContext* context, CONXScriptFunc* scope,
                                  TSCRIPTTOKEN* t) {
    if (t->planScope != scope) {
        t->plan = MakePlan(context, scope, t);
        t->planScope = scope;
    }
    const TSCRIPTPLAN* plan = t->plan;
    if (!plan) return scope->ExecSimple(context, t);
    CONXScriptVariable* target;
    if (plan->self) {
        if (!scope->m_pResult) return scope->ExecSimple(context, t);
        target = static_cast<CONXScriptVariable*>(scope->m_pResult)->Resolved();
    } else {
        target = Bound(scope, t);
        if (!target) return scope->ExecSimple(context, t);
    }
    context->tokenStart = plan->opToken->start;
    const TPLANNODE* n = plan->value;
    uint32_t err;
    if (n->kind == PLAN_FAST && ScriptTypeIsNumeric(target->Type())) {
        // A number into a number, without the temporary that would hold it.
        uint32_t type;
        uint64_t number;
        if (ScriptFastRunValue(context, n->program, &type, &number))
            return plan->row < 0 ? target->StoreNumber(number, 0)
                                 : AssignNumbers(target, plan->row, type, number);
    }
    CONXScriptVarStack::TMARK mark = context->vars.Mark();
    CONXScriptVariable* value;
    if ((err = PlanEvalRef(context, scope, n, &value))) return err;
    if (plan->row >= 0 && ScriptTypeIsNumeric(target->Type()) && ScriptTypeIsNumeric(value->Type()))
        err = AssignNumbers(target, plan->row, value->Type(), value->Number());
    else
        err = target->ApplyAssignmentOp(plan->op, value);
    if (err) return err;
    context->vars.PopTo(mark);
    return 0;
}

bool ScriptPlannedCondition(CONXScriptExecContext* context, CONXScriptFunc* scope, TSCRIPTTOKEN* open,
                            uint64_t* value) {
    if (open->planScope != scope) {
        open->plan = MakeConditionPlan(context, scope, open);
        open->planScope = scope;
    }
    uint32_t type;
    if (!open->plan || !ScriptFastRunValue(context, open->plan->condition, &type, value)) return false;
    context->Next();  // the ")"
    return true;
}
