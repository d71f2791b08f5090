// The execution engine: bodies, statements, calls. Each statement is read
// again from its source offset every time it runs.
#include <cinttypes>
#include <cstdio>

#include "os/Platform.h"
#include "script/ScriptErrors.h"
#include "script/ScriptExec.h"
#include "script/ScriptRun.h"
#include "script/ScriptTokens.h"

namespace {

// The "@N<offset>" object of an if or while statement, found once per token.
CONXScriptFunc* StatementObject(CONXScriptFunc* scope, TSCRIPTTOKEN* keyword, uint64_t offset,
                                uint32_t kind) {
    CONXScriptObject* object;
    if (keyword->cacheScope == scope) {
        object = keyword->cacheObject;
    } else {
        char name[32];
        snprintf(name, sizeof name, "@N%" PRIu64, offset);
        if (scope->FindName(name, nullptr, &object) < 0) object = nullptr;
        keyword->cacheScope = scope;
        keyword->cacheObject = object;
    }
    if (!object || object->KindTag() != kind) return nullptr;
    return static_cast<CONXScriptFunc*>(object);
}

// Reads "( condition )" into a numeric value.
uint32_t Condition(CONXScriptExecContext* context, CONXScriptFunc* scope, uint64_t* value) {
    TSCRIPTTOKEN* open = context->Upcoming();
    if (g_ScriptFastPath && open && ScriptPlannedCondition(context, scope, open, value)) return 0;
    uint32_t err;
    if ((err = ExpectPunct(context, '('))) return err;
    TSCRIPTTOKEN* first = context->Upcoming();
    uint32_t type;
    if (first && ScriptFastValue(context, scope, first, &type, value)) return ExpectPunct(context, ')');
    CONXScriptVarStack::TMARK mark = context->vars.Mark();
    CONXScriptVariable* condition;
    if ((err = scope->EvalRef(context, &condition))) return err;
    if (!ScriptTypeIsNumeric(condition->Type())) return SCRIPT_ERR_TYPE;
    *value = condition->Number();
    context->vars.PopTo(mark);
    return ExpectPunct(context, ')');
}

// Whether the argument list opened by the "(" token open holds a call (a
// name followed by "("); true when that cannot be told. Kept in the token.
bool ArgumentsMayCall(CONXScriptExecContext* context, TSCRIPTTOKEN* open) {
    if (open->restCall) return open->restCall == 2;
    int32_t i = context->IndexOf(open);
    bool call = i < 0 || open->match < 0;
    for (int32_t k = i + 1; !call && k < open->match; k++) {
        const TSCRIPTTOKEN* t = context->TokenByIndex(k);
        call = t->error || (t->kind == SCRIPT_TOK_IDENT && IsPunct(context->TokenByIndex(k + 1), '('));
    }
    open->restCall = call ? 2 : 1;
    return call;
}

}  // namespace

void CONXScriptVarStack::NextChunk() {
    if (m_next != nullptr) m_chunk++;
    if (m_chunk == m_chunks.size()) {
        std::unique_ptr<CONXScriptVariable[]> chunk(new CONXScriptVariable[kChunk]);
        m_chunks.push_back(chunk.get());
        chunk.release();
    }
    m_next = m_chunks[m_chunk];
    m_end = m_next + kChunk;
}

CONXScriptVarStack::~CONXScriptVarStack() {
    for (CONXScriptVariable* chunk : m_chunks) delete[] chunk;
}

CONXScriptObject* ScriptLookUpName(CONXScriptFunc* scope, TSCRIPTTOKEN* token) {
    // Names are resolved against the complete lists of the running scope.
    CONXScriptObject* object;
    if (scope->FindName(token->text.c_str(), nullptr, &object) < 0) object = nullptr;
    token->cacheScope = scope;
    token->cacheObject = object;
    return object;
}

uint32_t CONXScriptFunc::EnterBody(CONXScriptExecContext* context, const TSCRIPTSTMTLIST& statements) {
    if (context->StackLow()) return SCRIPT_ERR_OUTOFMEMORY;
    if (!m_declares) {
        // Nothing to start afresh, and statements that succeed leave the
        // stacks as they found them: a small frame, where recursion passes.
        for (uint64_t offset : statements) {
            uint32_t err = ExecStatement(context, offset);
            if (err) return err;
        }
        return 0;
    }
    return EnterFrame(context, statements);
}

namespace {

// Every entry starts a body's declarations afresh, wherever they stand in it.
// Apart from EnterFrame, so that its work leaves nothing on the stack while
// the body runs.
__attribute__((noinline)) void StartDeclarations(CONXScriptExecContext* context,
                                                 const TSCRIPTOBJLIST& locals) {
    for (CONXScriptObject* local : locals) {
        if (local->KindTag() != SCRIPT_OBJ_TEMPLATE) continue;
        CONXScriptVarTemplate* tmpl = static_cast<CONXScriptVarTemplate*>(local);
        CONXScriptVariable* v = context->vars.Push();
        v->InitFrame(tmpl);
        context->Bind(&tmpl->m_pCurrent, v);
    }
}

}  // namespace

uint32_t CONXScriptFunc::EnterFrame(CONXScriptExecContext* context, const TSCRIPTSTMTLIST& statements) {
    CONXScriptVarStack::TMARK mark = context->vars.Mark();
    size_t bindMark = context->BindMark();
    StartDeclarations(context, m_locals);
    for (uint64_t offset : statements) {
        uint32_t err = ExecStatement(context, offset);
        if (err) return err;
    }
    context->UnbindTo(bindMark);
    context->vars.PopTo(mark);
    return 0;
}

uint32_t CONXScriptFunc::ExecuteBody(CONXScriptExecContext* context) {
    if (m_pDelegate) return m_pDelegate->ExecuteBody(context);
    return EnterBody(context, m_statements);
}

uint32_t CONXScriptIfStatement::ExecuteElse(CONXScriptExecContext* context) {
    return EnterBody(context, m_elseStatements);
}

uint32_t CONXScriptFunc::ExecuteStatement(CONXScriptExecContext* context, uint64_t offset) {
    if (m_pDelegate) return m_pDelegate->ExecuteStatement(context, offset);
    return ExecStatement(context, offset);
}

namespace {

// The "( condition )" of an if: its error code, or whether it holds. Its own
// function, so that ExecStatement has no local whose address escapes and can
// hand over to the chosen block by a jump: an if adds no frame to a recursion.
const uint64_t kConditionHolds = uint64_t(1) << 32;
__attribute__((noinline)) uint64_t IfCondition(CONXScriptExecContext* context, CONXScriptFunc* scope) {
    uint64_t value = 0;
    uint32_t err = Condition(context, scope, &value);
    if (err) return err;
    return value ? kConditionHolds : 0;
}

__attribute__((noinline)) uint32_t ExecWhile(CONXScriptExecContext* context, CONXScriptFunc* scope,
                                             CONXScriptFunc* block, uint64_t offset) {
    uint32_t err;
    if (g_ScriptFastPath && ScriptRunNumericLoop(context, scope, block, offset, &err)) return err;
    uint64_t loop = context->position;
    TSCRIPTTOKEN* loopToken = context->Upcoming();
    for (;;) {
        // The only place where the engine itself looks at the stop request.
        if (context->stopEvent && context->stopEvent->IsSet()) return SCRIPT_ERR_ABORTED;
        if (context->Step()) return SCRIPT_ERR_ABORTED;
        if (loopToken) context->PutBack(loopToken);
        else context->position = loop;
        uint64_t value = 0;
        if ((err = Condition(context, scope, &value))) return err;
        if ((err = ExpectPunct(context, '{'))) return err;
        if (!value) return 0;
        if ((err = block->EnterBody(context, block->m_statements))) return err;
    }
}

}  // namespace

uint32_t CONXScriptFunc::ExecStatement(CONXScriptExecContext* context, uint64_t offset) {
    if (context->Step()) return SCRIPT_ERR_ABORTED;
    TSCRIPTTOKEN* t = context->ReadAt(offset);
    if (t->error) return t->error;
    if (IsKeyword(t, SCRIPT_KW_IF)) {
        CONXScriptFunc* block = StatementObject(this, t, offset, SCRIPT_OBJ_IF);
        if (!block) return SCRIPT_ERR_UNKNOWNIDENT;
        const uint64_t condition = IfCondition(context, this);
        if (uint32_t err = static_cast<uint32_t>(condition)) return err;
        if (condition) return block->EnterBody(context, block->m_statements);
        return block->EnterBody(context, static_cast<CONXScriptIfStatement*>(block)->m_elseStatements);
    }
    if (IsKeyword(t, SCRIPT_KW_WHILE)) {
        CONXScriptFunc* block = StatementObject(this, t, offset, SCRIPT_OBJ_WHILE);
        if (!block) return SCRIPT_ERR_UNKNOWNIDENT;
        return ExecWhile(context, this, block, offset);
    }
    // Its first token is read already.
    return g_ScriptFastPath ? ScriptRunSimpleStatement(context, this, t) : ExecSimple(context, t);
}

uint32_t CONXScriptFunc::ExecuteSimpleStatement(CONXScriptExecContext* context) {
    if (m_pDelegate) return m_pDelegate->ExecuteSimpleStatement(context);
    TSCRIPTTOKEN* t = context->Next();
    if (t->error) return t->error;
    return ExecSimple(context, t);
}

uint32_t CONXScriptFunc::ExecSimple(CONXScriptExecContext* context, TSCRIPTTOKEN* t) {
    if (t->kind != SCRIPT_TOK_IDENT) return SCRIPT_ERR_UNEXPECTEDTOKEN;
    if (t->selfScope != this) {
        t->isSelf = ScriptNamesEqual(t->text.c_str(), m_name.c_str());
        t->selfScope = this;
    }
    uint32_t err;
    if (t->isSelf) {
        TSCRIPTTOKEN* op = context->Next();
        if (op->error) return op->error;
        if ((OpClass(op) & SCRIPT_OPCLASS_ASSIGN) && m_pResult) {
            int32_t index = op->op;
            CONXScriptVarStack::TMARK mark = context->vars.Mark();
            CONXScriptVariable* value;
            if ((err = EvalRef(context, &value))) return err;
            // The function's value: its result variable.
            CONXScriptVariable* target = static_cast<CONXScriptVariable*>(m_pResult)->Resolved();
            if ((err = target->ApplyAssignmentOp(index, value))) return err;
            context->vars.PopTo(mark);
            return 0;
        }
        context->PutBack(op);
    }
    CONXScriptObject* object = ScriptResolveName(this, t);
    if (!object) return SCRIPT_ERR_UNKNOWNIDENT;
    if (object->KindTag() == SCRIPT_OBJ_VARIABLE) {
        CONXScriptVariable* target = static_cast<CONXScriptVariable*>(object)->Resolved();
        const TSCRIPTTOKEN* op = context->Next();
        if (op->error) return op->error;
        if (!(OpClass(op) & SCRIPT_OPCLASS_ASSIGN)) return SCRIPT_ERR_UNEXPECTEDTOKEN;
        int32_t index = op->op;
        CONXScriptVarStack::TMARK mark = context->vars.Mark();
        CONXScriptVariable* value;
        if ((err = EvalRef(context, &value))) return err;
        if ((err = target->ApplyAssignmentOp(index, value))) return err;
        context->vars.PopTo(mark);
        return 0;
    }
    // A call: evaluated as an expression whose value nobody uses.
    context->PutBack(t);
    return Eval(context, nullptr);
}

uint32_t ScriptCallFunction(CONXScriptExecContext* context, CONXScriptFunc* scope,
                            CONXScriptFunc* callee, CONXScriptVariable* result) {
    if (context->StackLow()) return SCRIPT_ERR_OUTOFMEMORY;
    if (context->Step()) return SCRIPT_ERR_ABORTED;
    TSCRIPTTOKEN* open = context->Next();
    if (open->error) return open->error;
    if (!IsPunct(open, '(')) return SCRIPT_ERR_UNEXPECTEDTOKEN;
    uint32_t err;
    CONXScriptVarStack::TMARK mark = context->vars.Mark();
    size_t base = context->arguments.size();
    TSCRIPTTOKEN* t = context->Next();
    if (t->error) return t->error;
    if (!IsPunct(t, ')')) {
        // A built-in that only reads its arguments may read a lone variable
        // where it is, unless a later argument calls something that could
        // change the variable before the built-in runs.
        bool inPlace = callee->m_readsArgumentsOnly && !ArgumentsMayCall(context, open);
        context->PutBack(t);
        for (size_t i = 0;; i++) {
            CONXScriptObject* param = callee->GetParameter(i);
            uint32_t paramTag = param ? param->KindTag() : SCRIPT_OBJ_PLAIN;
            t = context->Next();
            if (t->error) return t->error;
            if (t->kind == SCRIPT_TOK_OP && t->op == SCRIPT_OP_AND) {
                TSCRIPTTOKEN* nameToken = context->Next();
                if (nameToken->error) return nameToken->error;
                if (nameToken->kind != SCRIPT_TOK_IDENT) return SCRIPT_ERR_UNEXPECTEDTOKEN;
                CONXScriptObject* named = ScriptResolveName(scope, nameToken);
                if (!named) return SCRIPT_ERR_UNKNOWNIDENT;
                if (named->KindTag() == SCRIPT_OBJ_VARIABLE) {
                    CONXScriptVariable* v = static_cast<CONXScriptVariable*>(named);
                    // A variable goes only to a value parameter of exactly its type
                    // (a built-in takes it as it is).
                    if (paramTag == SCRIPT_OBJ_TEMPLATE &&
                        v->GetType() != static_cast<CONXScriptVarTemplate*>(param)->m_type)
                        return SCRIPT_ERR_TYPE;
                    if (paramTag == SCRIPT_OBJ_FUNCTION) return SCRIPT_ERR_TYPE;
                    CONXScriptVariable* alias = context->vars.Push();
                    alias->SetReferenceFast(v);
                    if (param) alias->SetName(param->Name().c_str());
                    context->arguments.push_back(alias);
                } else if (named->KindTag() == SCRIPT_OBJ_FUNCTION) {
                    // Calls of the parameter run the named function.
                    if (paramTag == SCRIPT_OBJ_TEMPLATE) return SCRIPT_ERR_TYPE;
                    context->arguments.push_back(named);
                } else {
                    return SCRIPT_ERR_TYPE;
                }
            } else {
                context->PutBack(t);
                CONXScriptVariable* v;
                if (inPlace) {
                    if ((err = scope->EvalRef(context, &v))) return err;
                } else {
                    v = context->vars.Push();
                    if (paramTag == SCRIPT_OBJ_TEMPLATE)
                        v->InitFast(static_cast<CONXScriptVarTemplate*>(param));
                    else if (paramTag == SCRIPT_OBJ_FUNCTION)
                        return SCRIPT_ERR_TYPE;  // a "func" parameter takes only "&name"
                    if ((err = scope->Eval(context, v))) return err;
                }
                context->arguments.push_back(v);
            }
            t = context->Next();
            if (t->error) return t->error;
            if (IsPunct(t, ')')) break;
            if (!IsPunct(t, ',')) return SCRIPT_ERR_UNEXPECTEDTOKEN;
        }
    }
    size_t count = context->arguments.size() - base;
    if (!callee->CheckArgumentCount(count)) return SCRIPT_ERR_PARAMCOUNT;
    // The list stays where it is while the callee runs: a user function binds
    // its parameters before anything can push further arguments.
    TSCRIPTARGS args;
    args.items = context->arguments.data() + base;
    args.count = count;
    // The callee reads its own statements; the caller's expression goes on after the ")".
    uint64_t resume = context->position;
    TSCRIPTTOKEN* resumeToken = context->Upcoming();
    if ((err = callee->Execute(context->run, scope, args, result))) return err;
    if (resumeToken) context->PutBack(resumeToken);
    else context->position = resume;
    context->arguments.resize(base);
    context->vars.PopTo(mark);
    return 0;
}

uint32_t CONXScriptFunc::Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                 const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    if (m_pDelegate) return m_pDelegate->Execute(runContext, symbols, arguments, result);
    CONXScriptExecContext* context = runContext ? runContext->m_pExec : nullptr;
    if (!context) return SCRIPT_ERR_SYSFUNC;
    if (context->StackLow()) return SCRIPT_ERR_OUTOFMEMORY;
    if (arguments.size() != m_params.size()) return SCRIPT_ERR_PARAMCOUNT;
    CONXScriptVarStack::TMARK mark = context->vars.Mark();
    size_t bindMark = context->BindMark();
    for (size_t i = 0; i < m_params.size(); i++) {
        CONXScriptObject* param = m_params[i];
        CONXScriptObject* arg = arguments[i];
        if (param->KindTag() == SCRIPT_OBJ_TEMPLATE) {
            if (arg->KindTag() != SCRIPT_OBJ_VARIABLE) return SCRIPT_ERR_TYPE;
            context->Bind(&static_cast<CONXScriptVarTemplate*>(param)->m_pCurrent, arg);
        } else {
            if (arg->KindTag() != SCRIPT_OBJ_FUNCTION) return SCRIPT_ERR_TYPE;
            context->Bind(&static_cast<CONXScriptFunc*>(param)->m_pBound, arg);
        }
    }
    if (!result) result = context->vars.Push();  // the value goes nowhere
    context->Bind(&m_pResult, result);
    uint32_t err = EnterBody(context, m_statements);
    if (err) return err;
    context->UnbindTo(bindMark);
    context->vars.PopTo(mark);
    return 0;
}

uint32_t CONXScriptFunc::ExecuteFunction(CONXScriptExecContext* context, const char* name,
                                         const TSCRIPTARGS& arguments, CONXScriptVariable* result) {
    if (m_pDelegate) return m_pDelegate->ExecuteFunction(context, name, arguments, result);
    CONXScriptObject* object = nullptr;
    if (FindName(name, nullptr, &object) < 0 || object->KindTag() != SCRIPT_OBJ_FUNCTION)
        return SCRIPT_ERR_UNKNOWNIDENT;
    CONXScriptFunc* f = static_cast<CONXScriptFunc*>(object);
    if (!f->CheckArgumentCount(arguments.size())) return SCRIPT_ERR_PARAMCOUNT;
    CONXScriptVarStack::TMARK mark = context->vars.Mark();
    size_t bindMark = context->BindMark();
    // The program's own variables exist (at zero) while the function runs;
    // its main statements do not run.
    StartDeclarations(context, m_locals);
    size_t base = context->arguments.size();
    for (size_t i = 0; i < arguments.size(); i++) {
        CONXScriptObject* param = f->GetParameter(i);
        CONXScriptObject* arg = arguments[i];
        if (!param || param->KindTag() != SCRIPT_OBJ_TEMPLATE || arg->KindTag() != SCRIPT_OBJ_VARIABLE)
            return SCRIPT_ERR_TYPE;
        // Passed by value, converted to the declared type.
        CONXScriptVariable* v = context->vars.Push();
        v->InitFast(static_cast<CONXScriptVarTemplate*>(param));
        uint32_t err = v->AssignFast(static_cast<CONXScriptVariable*>(arg)->Resolved());
        if (err) return err;
        context->arguments.push_back(v);
    }
    TSCRIPTARGS args;
    args.items = context->arguments.data() + base;
    args.count = arguments.size();
    uint32_t err = f->Execute(context->run, this, args, result);
    if (err) return err;
    context->arguments.resize(base);
    context->UnbindTo(bindMark);
    context->vars.PopTo(mark);
    return 0;
}
