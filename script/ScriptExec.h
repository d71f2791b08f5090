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
// the run has warmed up.
class CONXScriptVarStack {
public:
    CONXScriptVarStack() = default;
    CONXScriptVarStack(const CONXScriptVarStack&) = delete;
    CONXScriptVarStack& operator=(const CONXScriptVarStack&) = delete;

    size_t Mark() const { return m_top; }
    // A cleared, untyped, unnamed variable without reference.
    CONXScriptVariable* Push() {
        if (m_top == m_chunks.size() * kChunk) m_chunks.emplace_back(new CONXScriptVariable[kChunk]);
        CONXScriptVariable* v = &m_chunks[m_top / kChunk][m_top % kChunk];
        m_top++;
        return v;
    }
    void PopTo(size_t mark);

private:
    static const size_t kChunk = 128;
    std::vector<std::unique_ptr<CONXScriptVariable[]>> m_chunks;
    size_t m_top = 0;
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
};

// Leaves whatever a body or call bound and pushed, also when an exception
// (out of memory) passes through.
class CONXScriptScope {
public:
    explicit CONXScriptScope(CONXScriptExecContext* context)
        : m_context(context), m_varMark(context->vars.Mark()), m_bindMark(context->BindMark()),
          m_argMark(context->arguments.size()) {}
    ~CONXScriptScope() {
        m_context->UnbindTo(m_bindMark);
        m_context->arguments.resize(m_argMark);
        m_context->vars.PopTo(m_varMark);
    }
    CONXScriptScope(const CONXScriptScope&) = delete;
    CONXScriptScope& operator=(const CONXScriptScope&) = delete;

private:
    CONXScriptExecContext* m_context;
    size_t m_varMark;
    size_t m_bindMark;
    size_t m_argMark;
};

// The object a name stands for while the program runs: a template gives the
// variable of the innermost running body, a function parameter the function
// bound to it. Null when the name is unknown. Look-ups are cached per token.
CONXScriptObject* ScriptResolveName(CONXScriptFunc* scope, TSCRIPTTOKEN* token);

// Evaluates a call: the cursor stands after the function's name.
uint32_t ScriptCallFunction(CONXScriptExecContext* context, CONXScriptFunc* scope,
                            CONXScriptFunc* callee, CONXScriptVariable* result);
