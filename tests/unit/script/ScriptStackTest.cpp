// Stack safety: deep recursion and deep nesting end the run with "out of
// memory error" instead of crashing (on a small stack, where the end comes
// soon), and a recursion a thousand deep fits the stack a host's thread has.
#include <gtest/gtest.h>

#include <string>

#include "os/Platform.h"
#include "os/StackScale.h"
#include "script/ScriptErrors.h"
#include "tests/unit/TestSupport.h"

namespace {

struct TJOB {
    std::string text;
    uint32_t reserve;
    TTESTRUN result;
};

// reserve: the stack kept free for the error path; a small one leaves the
// code between two checks no slack to hide in.
TTESTRUN RunOnWorkerStack(const std::string& text, size_t stack = 65536,
                                uint32_t reserve = TSCRIPTLIMITS().stackReserveBytes) {
    TJOB job;
    job.text = text;
    job.reserve = reserve;
    COsThread thread;
    EXPECT_TRUE(thread.Start(stack * kOsStackScale, [](void* p) {
        TJOB* j = static_cast<TJOB*>(p);
        CONXScriptRunContext context;
        context.m_limits.stackReserveBytes = j->reserve;
        j->result = TestRun(j->text, &context);
    }, &job, OS_STACK_WHOLE));
    thread.Join();
    return job.result;
}

std::string Repeat(const char* piece, int n) {
    std::string s;
    for (int i = 0; i < n; i++) s += piece;
    return s;
}

void ExpectOutOfStack(const TTESTRUN& r, const char* phase) {
    EXPECT_EQ(r.code, SCRIPT_ERR_OUTOFMEMORY);
    EXPECT_EQ(r.output.rfind("out of memory error near line ", 0), 0u) << r.output;
    if (phase) {
        EXPECT_NE(r.output.find(std::string("during ") + phase + "\n"), std::string::npos) << r.output;
    }
}

TEST(ScriptStack, EndlessRecursionEndsTheRun) {
    ExpectOutOfStack(RunOnWorkerStack("func f(var int64 n) { f = f(n + 1); }\nvar int64 x;\nx = f(0);"),
                     "executing");
}

TEST(ScriptStack, RecursionOfNumbersWithDeepExpressions) {
    // Such functions run natively once translated (here at the top of a host's
    // large stack); their expressions and blocks nest deep between two calls
    // and must watch the stack themselves.
    ExpectOutOfStack(RunOnWorkerStack("func f(var int64 n) { f = f(n " + Repeat("-", 190) +
                                      " 1); }\nvar int64 x;\nx = f(0);", 1 << 20, 256),
                     "executing");
    ExpectOutOfStack(RunOnWorkerStack("func f(var int64 n) { var int64 r; " + Repeat("if (1) { ", 190) +
                                      "r = f(n);" + Repeat(" }", 190) + " f = r; }\nvar int64 x;\nx = f(0);",
                                      1 << 20, 256),
                     "executing");
}

TEST(ScriptStack, RecursionThroughBlocksAndFuncParameters) {
    ExpectOutOfStack(RunOnWorkerStack("func g(func h, var int32 n) { if (n >= 0) { while (1) { "
                                      "g(&h, n + 1); } } }\nfunc k() { }\ng(&k, 0);"),
                     "executing");
}

TEST(ScriptStack, DeepNestingInTheSource) {
    ExpectOutOfStack(RunOnWorkerStack("var int32 x; x = " + Repeat("(", 100000) + "1" +
                                      Repeat(")", 100000) + ";"),
                     "parsing");
    ExpectOutOfStack(RunOnWorkerStack(Repeat("if (1) { ", 100000) + Repeat("} ", 100000)), "parsing");
    // Long operator chains: the syntax check may get through them when the
    // compiler turns its tail calls into jumps; evaluation cannot.
    ExpectOutOfStack(RunOnWorkerStack("var int32 x; x = " + Repeat("- ", 100000) + "1;"), nullptr);
    ExpectOutOfStack(RunOnWorkerStack("var int32 x; x = 1" + Repeat(" + 1", 100000) + ";"), nullptr);
    ExpectOutOfStack(RunOnWorkerStack(Repeat("func f() { ", 100000) + Repeat("} ", 100000)), "parsing");
}

TEST(ScriptStack, AThousandLevelsFitAMebibyte) {
    // Of numbers only (run natively), and with a string (the ordinary path).
    const char* kinds[] = {"", "var string s; "};
    for (const char* kind : kinds) {
        std::string f = std::string("func f(var int64 n) { var int64 r; ") + kind +
                        "r = 0; if (n > 0) { r = 1 + f(n - 1); } f = r; }\n";
        TTESTRUN r = RunOnWorkerStack(f + "print(f(1000));", 1 << 20);
        EXPECT_EQ(r.code, 0u) << kind << r.output;
        EXPECT_EQ(r.output, "1000");
        ExpectOutOfStack(RunOnWorkerStack(f + "print(f(100000));", 1 << 20), "executing");
    }
}

TEST(ScriptStack, OrdinaryDepthStillWorks) {
    // fib(15): 15 levels of user calls, each through an if/else block.
    TTESTRUN r = RunOnWorkerStack(
        "func fib(var int32 n) { var int32 r; if (n < 2) { r = n; } else { r = fib(n - 1) + fib(n - 2); } "
        "fib = r; }\nprint(fib(15));");
    EXPECT_EQ(r.code, 0u) << r.output;
    EXPECT_EQ(r.output, "610");
    r = RunOnWorkerStack("var int32 x; x = " + Repeat("(", 50) + "2" + Repeat(")", 50) + "; print(x);");
    EXPECT_EQ(r.output, "2");
}

}  // namespace
