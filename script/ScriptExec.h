// The state of one run while it executes: the cursor over the text, the
// variables of the running bodies and calls, and the run's limits.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "script/ScriptFunc.h"
#include "script/ScriptLexer.h"
#include "script/ScriptValue.h"

class COsEvent;
class CONXScriptRunContext;

// Variables of running bodies and temporaries, kept in stack order in chunks
// that never move, so a body entry or a temporary costs no allocation once
// the run has warmed up. A pushed variable is fresh: untyped, unnamed, empty.
class CONXScriptVarStack {
public:
    struct TMARK {
        size_t chunk;
        CONXScriptVariable* next;
    };
    CONXScriptVarStack() { NextChunk(); }
    ~CONXScriptVarStack();
    CONXScriptVarStack(const CONXScriptVarStack&) = delete;
    CONXScriptVarStack& operator=(const CONXScriptVarStack&) = delete;

    TMARK Mark() const { return {m_chunk, m_next}; }
    CONXScriptVariable* Push() {
        if (m_next == m_end) NextChunk();
        CONXScriptVariable* v = m_next++;
        v->Reset();
        return v;
    }
    // Popped variables keep their storage until they are pushed again.
    void PopTo(const TMARK& mark) {
        m_chunk = mark.chunk;
        m_next = mark.next;
        m_end = m_chunks[m_chunk] + kChunk;
    }

private:
    void NextChunk();
    static const size_t kChunk = 256;
    std::vector<CONXScriptVariable*> m_chunks;
    size_t m_chunk = 0;
    CONXScriptVariable* m_next = nullptr;
    CONXScriptVariable* m_end = nullptr;
};

class CONXScriptExecContext : public CONXScriptCursor {
public:
    explicit CONXScriptExecContext(const char* text) : CONXScriptCursor(text) {}

    // A binding that the running body or call changed, to restore on leaving it.
    struct TSAVED {
        CONXScriptObject** slot;
        CONXScriptObject* old;
    };
    void Bind(CONXScriptObject** slot, CONXScriptObject* value) {
        m_saved.push_back({slot, *slot});
        *slot = value;
    }
    size_t BindMark() const { return m_saved.size(); }
    void UnbindTo(size_t mark) {
        while (m_saved.size() > mark) {
            *m_saved.back().slot = m_saved.back().old;
            m_saved.pop_back();
        }
    }

    // Counts a step against the budget; true when the budget is used up.
    bool Step() { return ++steps > maxSteps && maxSteps != 0; }

    CONXScriptRunContext* run = nullptr;
    COsEvent* stopEvent = nullptr;
    uint64_t steps = 0;
    uint64_t maxSteps = 0;
    CONXScriptVarStack vars;
    std::vector<CONXScriptObject*> arguments;  // argument lists being collected
    std::vector<TSAVED> m_saved;
    std::vector<std::unique_ptr<CONXScriptVariable>> literals;  // converted literals, read-only
    struct TFREEPROGRAM {
        void operator()(TSCRIPTFASTPROGRAM* p) const;
    };
    std::vector<std::unique_ptr<TSCRIPTFASTPROGRAM, TFREEPROGRAM>> fastPrograms;
    struct TFREEPLAN {
        void operator()(TSCRIPTPLAN* p) const;
    };
    std::vector<std::unique_ptr<TSCRIPTPLAN, TFREEPLAN>> plans;
    struct TFREENUMERIC {
        void operator()(TSCRIPTNUMFUNC* f) const;
    };
    std::vector<std::unique_ptr<TSCRIPTNUMFUNC, TFREENUMERIC>> numericFunctions;
    // Native runs of functions and loops of numbers only are a speculation.
    // One that ends in an error, a stop or the end of the stack or budget
    // would end the same way when run again, so none is tried after it in this
    // run; one that ends without a value disables the functions it passed through.
    bool numericOff = false;
    bool numericNoValue = false;  // set while a native run unwinds from a missing value
    bool numericStopped = false;  // set while a native run unwinds from a stop request
    uint64_t numericStepsUndone = 0;  // steps of native runs taken back (a statistic)
};

// Nothing is unwound on an error: the first error ends the run, and the run's
// state goes with it. Only the success paths pop and unbind.

// The object a name stands for while the program runs: a template gives the
// variable of the innermost running body, a function parameter the function
// bound to it. Null when the name is unknown. Look-ups are cached per token.
CONXScriptObject* ScriptLookUpName(CONXScriptFunc* scope, TSCRIPTTOKEN* token);
inline CONXScriptObject* ScriptResolveName(CONXScriptFunc* scope, TSCRIPTTOKEN* token) {
    CONXScriptObject* object =
        token->cacheScope == scope ? token->cacheObject : ScriptLookUpName(scope, token);
    if (!object) return nullptr;
    switch (object->KindTag()) {
    case SCRIPT_OBJ_TEMPLATE:
        return static_cast<CONXScriptVarTemplate*>(object)->m_pCurrent;
    case SCRIPT_OBJ_FUNCTION: {
        CONXScriptFunc* f = static_cast<CONXScriptFunc*>(object);
        return f->m_isParameter ? f->m_pBound : f;
    }
    default:
        return object;
    }
}

// The value of a literal token, converted once per run.
uint32_t ScriptConvertLiteral(CONXScriptExecContext* context, TSCRIPTTOKEN* token);
inline uint32_t ScriptLiteral(CONXScriptExecContext* context, TSCRIPTTOKEN* token,
                              CONXScriptVariable** value) {
    uint32_t err = token->literalDone ? token->literalError : ScriptConvertLiteral(context, token);
    *value = token->literalValue;
    return err;
}

// Whether the numbers-only shortcut is used (the fuzzer compares runs without it).
extern bool g_ScriptFastPath;

// Computes an expression of numbers only into result, the cursor standing at
// its first token; false (and nothing changed) when the expression is not one.
bool ScriptFastEvaluateAt(CONXScriptExecContext* context, CONXScriptFunc* scope, TSCRIPTTOKEN* first,
                          CONXScriptVariable* result);
inline bool ScriptFastEvaluate(CONXScriptExecContext* context, CONXScriptFunc* scope,
                               TSCRIPTTOKEN* first, CONXScriptVariable* result) {
    // Known failures are answered here, without a call.
    if (!g_ScriptFastPath || first->noFast) return false;
    return ScriptFastEvaluateAt(context, scope, first, result);
}

// The same, giving the value's type and number instead.
bool ScriptFastValueAt(CONXScriptExecContext* context, CONXScriptFunc* scope, TSCRIPTTOKEN* first,
                       uint32_t* type, uint64_t* value);
inline bool ScriptFastValue(CONXScriptExecContext* context, CONXScriptFunc* scope, TSCRIPTTOKEN* first,
                            uint32_t* type, uint64_t* value) {
    if (!g_ScriptFastPath || first->noFast) return false;
    return ScriptFastValueAt(context, scope, first, type, value);
}

// The numbers-only program of the expression at first in scope (translated
// if it was not yet), or null when the expression is not one. Plans keep it.
TSCRIPTFASTPROGRAM* ScriptFastProgram(CONXScriptExecContext* context, CONXScriptFunc* scope,
                                      TSCRIPTTOKEN* first);
TSCRIPTTOKEN* ScriptFastProgramEnd(const TSCRIPTFASTPROGRAM* program);  // the token after it
// Run a kept program as ScriptFastEvaluate and ScriptFastValue do.
bool ScriptFastRunInto(CONXScriptExecContext* context, const TSCRIPTFASTPROGRAM* program,
                       CONXScriptVariable* result);
bool ScriptFastRunValue(CONXScriptExecContext* context, const TSCRIPTFASTPROGRAM* program,
                        uint32_t* type, uint64_t* value);

// Runs the simple statement whose first token t was just read at its offset
// through its plan, made on its first run; ExecSimple when it has none.
uint32_t ScriptRunSimpleStatement(CONXScriptExecContext* context, CONXScriptFunc* scope,
                                  TSCRIPTTOKEN* t);

// Computes the "( condition )" of an if or while through its plan when it is
// of numbers only, the cursor standing at open and left after the ")" as the
// reading path leaves it; false (and nothing changed) when the reading path
// has to do it.
bool ScriptPlannedCondition(CONXScriptExecContext* context, CONXScriptFunc* scope, TSCRIPTTOKEN* open,
                            uint64_t* value);

// Runs a call of a user function of numbers only natively, the arguments
// evaluated and the result fresh; false (with nothing changed) when the
// function does not qualify or the call has to run the ordinary way.
bool ScriptRunNumericCall(CONXScriptExecContext* context, CONXScriptFunc* func,
                          CONXScriptObject* const* arguments, size_t count, CONXScriptVariable* result);

// Runs the while statement at offset in scope (block: its "@N" object)
// natively when it is of numbers only, the cursor standing after its keyword;
// false (with nothing changed) when the ordinary run has to do it. *code is
// 0, or 13 for a stop request, seen as the ordinary run sees it: at the start
// of a round, with the variables as they stand there.
bool ScriptRunNumericLoop(CONXScriptExecContext* context, CONXScriptFunc* scope, CONXScriptFunc* block,
                          uint64_t offset, uint32_t* code);

// Evaluates a call: the cursor stands after the function's name.
uint32_t ScriptCallFunction(CONXScriptExecContext* context, CONXScriptFunc* scope,
                            CONXScriptFunc* callee, CONXScriptVariable* result);
