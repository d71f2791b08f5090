// Built-in system functions. A built-in is a script function object, so the
// engine finds and calls built-ins and user functions alike. A library of
// built-ins is a table of TSCRIPTSYSFUNCDEF entries, one per name: the count
// rule, the argument signature and the function. One CONXScriptTableFunc per
// entry and run carries it into the engine, and its Execute makes the checks
// every built-in shares before it calls the entry's function.
#pragma once

#include <cstdint>
#include <string>

#include "script/ScriptFunc.h"
#include "script/ScriptRun.h"
#include "script/ScriptValue.h"

class CONXScriptSysFunc : public CONXScriptFunc {
public:
    CONXScriptSysFunc(const char* name, TSCRIPTOUTPUTFUNC output, void* outputContext);
    ~CONXScriptSysFunc() override = default;

    // Each built-in has its own count rule; this base accepts any count.
    bool CheckArgumentCount(size_t count) override;
    // Each built-in does its own work; this base has none to do.
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;

protected:
    // Writes text through the output function, if there is one.
    void Output(const char* text);

    TSCRIPTOUTPUTFUNC m_output;
    void* m_outputContext;
};

// The argument counts a built-in accepts: bit n for n arguments, bit 31 for
// 31 and more. Made with ScriptArgCounts, joined with | where a rule has a gap.
typedef uint32_t TSCRIPTARGCOUNTS;
constexpr uint32_t kScriptArgsOpen = 31;  // as maximum: no upper bound
constexpr TSCRIPTARGCOUNTS ScriptArgCounts(uint32_t minimum, uint32_t maximum) {
    return (maximum >= kScriptArgsOpen ? ~0u : (2u << maximum) - 1u) & ~((1u << minimum) - 1u);
}
constexpr TSCRIPTARGCOUNTS ScriptArgCounts(uint32_t exactly) { return ScriptArgCounts(exactly, exactly); }
constexpr bool ScriptArgCountAccepted(TSCRIPTARGCOUNTS counts, size_t count) {
    return (counts >> (count < kScriptArgsOpen ? count : kScriptArgsOpen)) & 1u;
}

struct TSCRIPTSYSCALL;
typedef uint32_t (*TSCRIPTSYSFUNCIMPL)(const TSCRIPTSYSCALL& call);

// One built-in of a library table.
struct TSCRIPTSYSFUNCDEF {
    const char* name;
    TSCRIPTARGCOUNTS counts;
    // One letter per argument: 's' a string, 'n' a number, '.' any variable;
    // arguments beyond it need only be variables. Null: nothing is checked.
    const char* signature;
    // Never writes its arguments: the engine may hand it a lone variable or
    // literal in place of a by-value copy.
    bool readsOnly;
    TSCRIPTSYSFUNCIMPL function;
    // Where several names share a function: the data type it gives or asks
    // for and the scan format it uses.
    uint32_t type = 0;
    const char* format = nullptr;
};

// One call as the entry's function sees it: arguments that passed the count
// rule and the signature, the run, and where the value goes.
struct TSCRIPTSYSCALL {
    const TSCRIPTSYSFUNCDEF& def;
    const TSCRIPTSYSFUNCENV& env;   // output function and context, channel
    CONXScriptRunContext* run;      // null when called outside a run
    const TSCRIPTARGS& arguments;
    CONXScriptVariable* result;     // null: nobody takes the call's value

    size_t Count() const { return arguments.size(); }
    CONXScriptVariable* Variable(size_t i) const {
        return static_cast<CONXScriptVariable*>(arguments[i])->Resolved();
    }
    const std::string& Text(size_t i) const { return Variable(i)->Text(); }
    // A number widened to 64 bits by its own signedness.
    uint64_t Number(size_t i) const { return Variable(i)->Number(); }
    // An optional number, or missing when the call left it out.
    uint64_t NumberOr(size_t i, uint64_t missing) const { return i < Count() ? Number(i) : missing; }
    void Output(const char* text) const {
        if (env.output) env.output(env.outputContext, text);
    }
};

// Checks arguments against a signature: 0, or 10 "Type error" when one is
// not a variable or not of its letter's type.
[[nodiscard]] uint32_t ScriptCheckArguments(const TSCRIPTARGS& arguments, const char* signature);

// The built-in of one table entry for one run.
class CONXScriptTableFunc final : public CONXScriptSysFunc {
public:
    CONXScriptTableFunc(const TSCRIPTSYSFUNCDEF& def, const TSCRIPTSYSFUNCENV& env);

    bool CheckArgumentCount(size_t count) override;
    // The count rule (for callers that did not ask first), the signature,
    // then the function; no exception leaves it.
    [[nodiscard]] uint32_t Execute(CONXScriptRunContext* runContext, CONXScriptFunc* symbols,
                                   const TSCRIPTARGS& arguments, CONXScriptVariable* result) override;

private:
    const TSCRIPTSYSFUNCDEF& m_def;
    TSCRIPTSYSFUNCENV m_env;
};
