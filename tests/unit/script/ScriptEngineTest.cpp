// Parser, evaluator and engine: what the conformance scripts cannot see (the
// tree, stop requests, budgets, the shortcuts' side effects, function runs).
// External variables are the Script Processor's tests.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "os/Platform.h"
#include "os/StackScale.h"
#include "script/ScriptErrors.h"
#include "script/ScriptExec.h"
#include "script/ScriptFunc.h"
#include "script/ScriptValue.h"
#include "tests/unit/TestSupport.h"

namespace {

TEST(ScriptParser, BuildsNamedStatementObjects) {
    CONXScriptFunc program;
    program.SetName("@MAIN");
    CONXScriptCursor cursor("var int32 a;\nif (a) { while (a) { } } else { var string s; }\na = 1;");
    ASSERT_EQ(program.ParseBody(&cursor, 0), 0u);
    ASSERT_EQ(program.m_statements.size(), 2u);
    EXPECT_EQ(program.m_statements[0], 12u);  // before the line feed: the position before whitespace
    CONXScriptObject* found = nullptr;
    ASSERT_GE(program.FindName("@N12", nullptr, &found), 0);
    EXPECT_EQ(found->GetObjectKind(), (uint32_t)SCRIPT_OBJ_IF);
    CONXScriptIfStatement* block = static_cast<CONXScriptIfStatement*>(found);
    EXPECT_EQ(block->m_statements.size(), 1u);
    EXPECT_EQ(block->m_elseStatements.size(), 0u);  // a declaration is no statement
    int32_t which = -1;
    EXPECT_GE(block->FindName("s", &which, &found), 0);
    EXPECT_EQ(which, SCRIPT_LIST_LOCALS);  // else-block declarations belong to the if object
    EXPECT_GE(block->FindName("A", &which, &found), 0);
    EXPECT_EQ(which, SCRIPT_LIST_OUTER);
}

TEST(ScriptEngine, FunctionNameInsideABlockIsACall) {
    // Inside an if block the function's name is no result target: it is a call without "(".
    EXPECT_EQ(TestRun("func f() { if (1) { f = 1; } }").code, SCRIPT_ERR_UNEXPECTEDTOKEN);
}

// A thread that requests a stop of the run on context after ms milliseconds.
std::thread StopAfter(CONXScriptRunContext* context, uint32_t ms) {
    return std::thread([context, ms] {
        OsSleep(ms);
        context->RequestStop();
    });
}

TEST(ScriptEngine, StopRequestEndsALoop) {
    CONXScriptRunContext context;
    std::thread stopper = StopAfter(&context, 50);
    TTESTRUN r = TestRun("while (1) { }", &context);
    stopper.join();
    EXPECT_EQ(r.code, SCRIPT_ERR_ABORTED);
    EXPECT_EQ(r.output.rfind("Processing aborted near line 1/", 0), 0u) << r.output;
    EXPECT_NE(r.output.find("during executing\n"), std::string::npos);
    // The next run resets the event.
    EXPECT_EQ(TestRun("print(1);", &context).code, 0u);
}

TEST(ScriptEngine, StopRequestEndsALoopInsideAFunctionOfNumbers) {
    // Such a call runs natively first; the stop must end it all the same, and
    // the diagnostic points into the loop as an ordinary run would: at the
    // "while" (offset 24, where its read begins) or after "n += 1".
    CONXScriptRunContext context;
    std::thread stopper = StopAfter(&context, 50);
    TTESTRUN r = TestRun(
        "func spin(var int32 n) {\n  while (1) {\n    n += 1;\n  }\n  spin = n;\n}\nvar int32 x;\nx = "
        "spin(0);",
        &context);
    stopper.join();
    EXPECT_EQ(r.code, SCRIPT_ERR_ABORTED);
    EXPECT_EQ(r.output.rfind("Processing aborted near line ", 0), 0u) << r.output;
    EXPECT_TRUE(r.output.find("(offset 24)") != std::string::npos ||
                r.output.find("line 3/") != std::string::npos)
        << r.output;
}

// A loop of numbers only runs natively on copies of the variables it uses.
// What the host can read afterwards must be what the ordinary run leaves.
TEST(ScriptEngine, LoopsOfNumbersLeaveTheirVariablesAsTheOrdinaryRunDoes) {
    CONXScriptRunContext context;
    context.m_sysFuncFactories.push_back(ScriptRuntimeFactory);
    CONXScriptVariable counter;
    counter.SetName("counter");
    ASSERT_EQ(counter.SetNumber(0, SCRIPT_TYPE_INT64), 0u);
    std::vector<CONXScriptVariable*> externals = {&counter};
    std::string out;
    // A stop request: the progress up to the round where it is seen stays.
    std::thread stopper = StopAfter(&context, 50);
    const char* endless = "while (1) {\n  counter += 1;\n}";
    uint32_t code = RunScript(&context, endless,
                              {.externals = &externals, .output = TestCollect, .outputContext = &out});
    stopper.join();
    EXPECT_EQ(code, SCRIPT_ERR_ABORTED);
    EXPECT_GT(counter.GetNumber(), 0u);
    // Seen at the first round (the "while") or after a round's "counter += 1;".
    EXPECT_TRUE(out.find("(offset 0)") != std::string::npos ||
                out.find("line 2/column 15 (offset 26)") != std::string::npos)
        << out;
    // An error: the rounds before it are done, none after.
    ASSERT_EQ(counter.SetNumber(0, SCRIPT_TYPE_INT64), 0u);
    out.clear();
    code = RunScript(&context,
                     "var int64 q; while (counter < 10) { counter += 1; if (counter == 4) { q = 1 / 0; } }",
                     {.externals = &externals, .output = TestCollect, .outputContext = &out});
    EXPECT_EQ(code, SCRIPT_ERR_DIVZERO);
    EXPECT_EQ(counter.GetNumber(), 4u);
    // Done: the value goes back with the variable's own type.
    counter.SetType(SCRIPT_TYPE_UINT32);
    ASSERT_EQ(counter.SetNumber(0xFFFFFFFEu, 0), 0u);
    EXPECT_EQ(RunScript(&context, "var int32 i; while (i < 3) { counter += 1; i += 1; }",
                        {.externals = &externals, .output = TestCollect, .outputContext = &out}),
              0u);
    EXPECT_EQ(counter.GetType(), (uint32_t)SCRIPT_TYPE_UINT32);
    EXPECT_EQ(counter.GetNumber(), 1u);
}

TEST(ScriptEngine, StepBudgetCountsTheSameWithAndWithoutShortcuts) {
    // Around the exact budget the run needs, every budget must end alike with
    // the shortcuts (plans, functions and loops of numbers run natively) and
    // without.
    const char* text =
        "func count(var int32 n) { var int32 i; while (i < n) { i += 1; } count = i; }\n"
        "func fib(var int32 n) { var int32 r; if (n < 2) { r = n; } else { r = fib(n - 1) + fib(n - 2); "
        "} fib = r; }\n"
        "var int32 x; var int32 k; while (k < 7) { if (k & 1) { x += fib(k); } k += 1; }\n"
        "x = count(20) + fib(6) + x; print(x);";
    CONXScriptRunContext unlimited;
    ASSERT_EQ(TestRun(text, &unlimited).output, "36");
    uint64_t needed = unlimited.m_stats.steps;
    for (uint64_t budget = needed - 80; budget <= needed + 1; budget++) {
        CONXScriptRunContext context;
        context.m_limits.maxSteps = budget;
        g_ScriptFastPath = false;
        TTESTRUN reading = TestRun(text, &context);
        uint64_t readingSteps = context.m_stats.steps;
        g_ScriptFastPath = true;
        TTESTRUN fast = TestRun(text, &context);
        EXPECT_EQ(fast.code, reading.code) << "budget " << budget;
        EXPECT_EQ(fast.output, reading.output) << "budget " << budget;
        EXPECT_EQ(context.m_stats.steps, readingSteps) << "budget " << budget;
        EXPECT_EQ(reading.code, budget < needed ? SCRIPT_ERR_ABORTED : 0u) << "budget " << budget;
    }
}

// A native run that fails deep in a recursion must not be tried again at every
// level on the way back: on a host's large stack that made such a run take
// time quadratic in its depth. The steps taken back stay in proportion to one
// attempt (about three per level), not to the square of the depth.
TEST(ScriptEngine, FailedNativeRunsAreNotRetriedAtEveryLevel) {
    struct TCASE {
        const char* text;
        uint32_t code;
        const char* output;
    } cases[] = {
        // An error at the bottom.
        {"func f(var int32 n) { var int32 r; if (n > 0) { r = f(n - 1); } else { r = 1 / n; } f = r; }\n"
         "var int32 x; x = f(1000);",
         SCRIPT_ERR_DIVZERO, "Division by 0 error"},
        // A function without a value at the bottom: the ordinary run then fails
        // with a type error where its untyped value reaches r.
        {"func none(var int32 n) { var int32 t; t = n; }\n"
         "func f(var int32 n) { var int32 r; if (n > 0) { r = f(n - 1); } else { r = none(n); } f = r; }\n"
         "var int32 x; x = f(1000);",
         SCRIPT_ERR_TYPE, "Type error"},
    };
    for (const TCASE& c : cases) {
        struct TJOB {
            const char* text;
            CONXScriptRunContext context;
            TTESTRUN result;
        } job;
        job.text = c.text;
        COsThread thread;  // a host's thread: room for every level of the ordinary run
        ASSERT_TRUE(thread.Start((size_t(16) << 20) * kOsStackScale, [](void* p) {
            TJOB* j = static_cast<TJOB*>(p);
            j->result = TestRun(j->text, &j->context);
        }, &job, OS_STACK_WHOLE));
        thread.Join();
        EXPECT_EQ(job.result.code, c.code) << c.text;
        EXPECT_EQ(job.result.output.rfind(c.output, 0), 0u) << job.result.output;
        EXPECT_GT(job.context.m_stats.stepsUndone, 1000u) << c.text;  // one attempt went down
        EXPECT_LT(job.context.m_stats.stepsUndone, 10000u) << c.text;
    }
}

// One function of a program, as executesubscriptfunc runs it: the program's
// own variables exist (at zero), its main statements do not run, and the
// arguments are converted to the parameters' types.
TEST(ScriptEngine, FunctionRuns) {
    CONXScriptRunContext context;
    context.m_sysFuncFactories.push_back(ScriptRuntimeFactory);
    std::string out;
    CONXScriptVariable arg, result;
    ASSERT_EQ(arg.SetNumber(20, SCRIPT_TYPE_INT64), 0u);
    std::vector<CONXScriptVariable*> args = {&arg};
    EXPECT_EQ(RunScript(&context, "var int32 g; print(\"main\"); func twice(var int32 a) { twice = a * 2 + g; }",
                        {.output = TestCollect, .outputContext = &out, .functionName = "TWICE",
                         .functionArguments = &args, .result = &result}),
              0u);
    EXPECT_EQ(out, "");
    EXPECT_EQ(result.GetType(), (uint32_t)SCRIPT_TYPE_INT32);
    EXPECT_EQ(result.GetNumber(), 40u);
    EXPECT_EQ(RunScript(&context, "func f() { }", {.functionName = "g"}), SCRIPT_ERR_UNKNOWNIDENT);
}

TEST(ScriptErrors, TextsAndClasses) {
    EXPECT_STREQ(ErrorText(0), "No error");
    EXPECT_STREQ(ErrorText(1), "out of memory error");
    EXPECT_STREQ(ErrorText(13), "Processing aborted");
    EXPECT_STREQ(ErrorText(14), "Unknown error");
    EXPECT_STREQ(ErrorText(0x10000005), "User Error");
    EXPECT_STREQ(ErrorText(0x20000001), "Unknown error class");
}

// The diagnostic lines themselves are conformance scripts (diagnostics/).
TEST(ScriptErrors, Positions) {
    uint64_t line = 9, column = 9;
    LineAndColumn("ab\r\ncd\nx", 6, &line, &column);
    EXPECT_EQ(line, 1u);
    EXPECT_EQ(column, 2u);
    LineAndColumn("a\0b\nc", 5, &line, &column);  // stops at the NUL
    EXPECT_EQ(line, 0u);
    EXPECT_EQ(column, 1u);
}

// Without an output function a failure is only its code.
TEST(ScriptErrors, NoOutputFunctionNoDiagnostic) {
    CONXScriptRunContext context;
    EXPECT_EQ(RunScript(&context, "x = 1;"), SCRIPT_ERR_UNKNOWNIDENT);
}

}  // namespace
