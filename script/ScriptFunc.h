// Functions and statement blocks: the parsed program is a tree of these. A
// block keeps the source offsets of its statements; the engine re-reads each
// statement from there when it runs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "script/ScriptObject.h"
#include "script/ScriptValue.h"

class CONXScriptRunContext;
class CONXScriptExecContext;
struct TSCRIPTNUMFUNC;

// The argument objects of one call, in call order (variables or functions).
struct TSCRIPTARGS {
    CONXScriptObject* const* items = nullptr;
    size_t count = 0;
    size_t size() const { return count; }
    CONXScriptObject* operator[](size_t i) const { return items[i]; }
    CONXScriptObject* const* begin() const { return items; }
    CONXScriptObject* const* end() const { return items + count; }
};

typedef std::vector<CONXScriptObject*> TSCRIPTOBJLIST;
typedef std::vector<uint64_t> TSCRIPTSTMTLIST;

// Which list FindName matched.
enum : int32_t { SCRIPT_LIST_PARAMS = 0, SCRIPT_LIST_LOCALS = 1, SCRIPT_LIST_OUTER = 2 };

class CONXScriptFunc : public CONXScriptObject {
public:
    CONXScriptFunc() { m_kindTag = SCRIPT_OBJ_FUNCTION; }
    ~CONXScriptFunc() override;

    uint32_t GetObjectKind() override { return SCRIPT_OBJ_FUNCTION; }

    virtual int32_t FindName(const char* name, int32_t* which, CONXScriptObject** object);
    virtual int32_t FindNameIn(const char* name, TSCRIPTOBJLIST* params, TSCRIPTOBJLIST* locals,
                               TSCRIPTOBJLIST* outer, int32_t* which, CONXScriptObject** object);
    [[nodiscard]] virtual uint32_t ParseSimpleStatement(CONXScriptCursor* cursor);
    [[nodiscard]] virtual uint32_t ParseExpression(CONXScriptCursor* cursor);
    [[nodiscard]] virtual uint32_t ExecuteStatement(CONXScriptExecContext* context, uint64_t offset);
    [[nodiscard]] virtual uint32_t ExecuteSimpleStatement(CONXScriptExecContext* context);
    [[nodiscard]] virtual uint32_t EvaluateExpression(CONXScriptExecContext* context,
                                                      CONXScriptVariable* result);
    [[nodiscard]] virtual uint32_t ExecuteBody(CONXScriptExecContext* context);
    [[nodiscard]] virtual uint32_t ParseBody(CONXScriptCursor* cursor, uint32_t depth);
    [[nodiscard]] virtual uint32_t ParseBlock(CONXScriptCursor* cursor, uint32_t depth,
                                              TSCRIPTSTMTLIST* statements);
    virtual void AddParameter(CONXScriptObject* parameter);
    virtual CONXScriptObject* GetParameter(size_t index);
    virtual void AddOuterNames(const TSCRIPTOBJLIST& names);
    virtual size_t GetParameterCount();
    virtual bool CheckArgumentCount(size_t count);
    [[nodiscard]] virtual uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                           const TSCRIPTARGS& arguments, CONXScriptVariable* result);
    [[nodiscard]] virtual uint32_t ExecuteFunction(CONXScriptExecContext* context, const char* name,
                                                   const TSCRIPTARGS& arguments,
                                                   CONXScriptVariable* result);

    void SetDelegate(CONXScriptFunc* delegate) { m_pDelegate = delegate; }
    CONXScriptFunc* GetDelegate() { return m_pDelegate; }

    // Engine internals, public for the engine's helpers.
    CONXScriptFunc* m_pDelegate = nullptr;
    TSCRIPTOBJLIST m_params;      // list 0, owned
    TSCRIPTOBJLIST m_locals;      // list 1, owned
    TSCRIPTOBJLIST m_outer;       // list 2, borrowed
    TSCRIPTSTMTLIST m_statements;
    bool m_declares = false;  // m_locals holds declarations
    // A "func" parameter: the function bound to it by the running call.
    bool m_isParameter = false;
    CONXScriptObject* m_pBound = nullptr;
    // Where an assignment to the function's own name goes in the running call.
    CONXScriptObject* m_pResult = nullptr;
    // A built-in that never writes its arguments: a lone variable or literal
    // may be handed to it in place of its by-value copy.
    bool m_readsArgumentsOnly = false;
    bool m_isBuiltIn = false;  // a system function: its own Execute does the work
    // Its translation as a function of numbers only, made once per run (owner).
    TSCRIPTNUMFUNC* m_pNumeric = nullptr;
    const void* m_numericOwner = nullptr;

    // The engine's own paths, without the virtual forwarding.
    uint32_t EnterBody(CONXScriptExecContext* context, const TSCRIPTSTMTLIST& statements);
    __attribute__((noinline)) uint32_t EnterFrame(CONXScriptExecContext* context,
                                                  const TSCRIPTSTMTLIST& statements);
    uint32_t ExecStatement(CONXScriptExecContext* context, uint64_t offset);
    uint32_t ExecSimple(CONXScriptExecContext* context, TSCRIPTTOKEN* first);
    uint32_t Eval(CONXScriptExecContext* context, CONXScriptVariable* result);
    // Evaluates into a value to read at once: a lone variable or literal is
    // given in place, anything else in a pushed temporary.
    uint32_t EvalRef(CONXScriptExecContext* context, CONXScriptVariable** value);

protected:
    uint32_t ParseStatement(CONXScriptCursor* cursor, uint32_t depth, TSCRIPTSTMTLIST* statements,
                            TSCRIPTTOKEN* first, uint64_t start);
    uint32_t ParseArguments(CONXScriptCursor* cursor);
    uint32_t ParseFunction(CONXScriptCursor* cursor, uint32_t depth);
    uint32_t ParseConditional(CONXScriptCursor* cursor, uint32_t depth, uint64_t start, bool isIf,
                              TSCRIPTSTMTLIST* statements);
};

class CONXScriptIfStatement : public CONXScriptFunc {
public:
    CONXScriptIfStatement() { m_kindTag = SCRIPT_OBJ_IF; }
    uint32_t GetObjectKind() override { return SCRIPT_OBJ_IF; }
    [[nodiscard]] virtual uint32_t ParseElseBlock(CONXScriptCursor* cursor, uint32_t depth);
    [[nodiscard]] virtual uint32_t ExecuteElse(CONXScriptExecContext* context);

    TSCRIPTSTMTLIST m_elseStatements;
};

class CONXScriptWhileStatement : public CONXScriptFunc {
public:
    CONXScriptWhileStatement() { m_kindTag = SCRIPT_OBJ_WHILE; }
    uint32_t GetObjectKind() override { return SCRIPT_OBJ_WHILE; }
};
