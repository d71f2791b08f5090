// "delay", "exit", "getsysdate", "getsystime".
#include <gtest/gtest.h>

#include <cstdio>
#include <regex>
#include <string>
#include <thread>

#include "os/Platform.h"
#include "script/ScriptErrors.h"
#include "tests/unit/builtins_text/BuiltinTestRun.h"

namespace {

// Runs text while another thread asks the run to stop after stopAfterMs;
// returns the run and the milliseconds from the stop request to the run's end.
TBUILTINRUN RunAndStop(const std::string& text, uint32_t stopAfterMs, uint64_t* lateMs,
                       CONXScriptRunContext* context) {
    uint64_t stoppedAt = 0;
    std::thread stopper([&] {
        OsSleep(stopAfterMs);
        stoppedAt = OsTickCount();
        context->RequestStop();
    });
    TBUILTINRUN run = BuiltinRun(text, "Z:\\tmp", context);
    uint64_t endedAt = OsTickCount();
    stopper.join();
    *lateMs = endedAt >= stoppedAt ? endedAt - stoppedAt : 0;
    return run;
}

}  // namespace

TEST(BuiltinControl, DelayEndsOnAStopRequest) {
    CONXScriptRunContext context;
    context.m_limits.maxDelayMs = 20000;  // a delay deaf to the event fails instead of hanging
    uint64_t late = 0;
    TBUILTINRUN run = RunAndStop("print(\"a\"); delay(4294967295); print(\"b\");", 100, &late, &context);
    printf("[ measured ] delay(4294967295) ended %llu ms after the stop request\n",
           (unsigned long long)late);
    EXPECT_EQ(run.code, SCRIPT_ERR_ABORTED);
    EXPECT_EQ(run.output.rfind("aProcessing aborted near line 1", 0), 0u) << run.output;
    EXPECT_LT(late, 5000u);  // generous: the wait ends on the event, not by polling

    TBUILTINRUN finite = RunAndStop("delay(60000);", 100, &late, &context);
    EXPECT_EQ(finite.code, SCRIPT_ERR_ABORTED);
    EXPECT_LT(late, 5000u);
}

TEST(BuiltinControl, DelayRunsOut) {
    uint64_t start = OsTickCount();
    TBUILTINRUN run = BuiltinRun("delay(50); print(\"after\"); delay(0);");
    uint64_t took = OsTickCount() - start;
    EXPECT_EQ(run.code, 0u);
    EXPECT_EQ(run.output, "after");
    EXPECT_GE(took, 45u);
    // The low 32 bits count: 2^32 + 1 waits one millisecond.
    start = OsTickCount();
    EXPECT_EQ(BuiltinRun("delay(4294967297);").code, 0u);
    EXPECT_LT(OsTickCount() - start, 5000u);
}

TEST(BuiltinControl, DelayCappedByTheLimits) {
    CONXScriptRunContext context;
    context.m_limits.maxDelayMs = 5;
    uint64_t start = OsTickCount();
    TBUILTINRUN run = BuiltinRun("delay(4294967295); print(\"after\");", "Z:\\tmp", &context);
    EXPECT_EQ(run.code, 0u);
    EXPECT_EQ(run.output, "after");
    EXPECT_LT(OsTickCount() - start, 5000u);
}

TEST(BuiltinControl, DelayArguments) {
    EXPECT_EQ(BuiltinRun("delay();").code, SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(BuiltinRun("delay(1, 2);").code, SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(BuiltinRun("delay(\"1\");").code, SCRIPT_ERR_TYPE);
    EXPECT_EQ(BuiltinRun("delay(&print);").code, SCRIPT_ERR_TYPE);
}

TEST(BuiltinControl, ExitEndsTheWholeRunSilently) {
    TBUILTINRUN run = BuiltinRun(
        "func inner() { print(\"in\"); exit(); print(\"never\"); }\n"
        "func outer() { inner(); print(\"never\"); }\n"
        "print(\"a\"); outer(); print(\"never\");");
    EXPECT_EQ(run.code, SCRIPT_ERR_EXIT);
    EXPECT_EQ(run.output, "ain");
    TBUILTINRUN loop = BuiltinRun("while (1) { exit(); }");
    EXPECT_EQ(loop.code, SCRIPT_ERR_EXIT);
    EXPECT_EQ(loop.output, "");
    TBUILTINRUN wrong = BuiltinRun("exit(1);");
    EXPECT_EQ(wrong.code, SCRIPT_ERR_PARAMCOUNT);
}

TEST(BuiltinControl, DateAndTimeOfTheLocalClock) {
    TOSLOCALTIME before, after;
    OsLocalTime(&before);
    TBUILTINRUN run = BuiltinRun("print(getsysdate(), \" \", getsystime());");
    OsLocalTime(&after);
    ASSERT_EQ(run.code, 0u);
    ASSERT_TRUE(std::regex_match(run.output, std::regex("\\d\\d\\.\\d\\d\\.\\d\\d\\d\\d \\d\\d:\\d\\d:\\d\\d")))
        << run.output;
    char date[16];
    snprintf(date, sizeof date, "%02u.%02u.%04u", (unsigned)before.day, (unsigned)before.month,
             (unsigned)before.year);
    char dateAfter[16];
    snprintf(dateAfter, sizeof dateAfter, "%02u.%02u.%04u", (unsigned)after.day, (unsigned)after.month,
             (unsigned)after.year);
    std::string shown = run.output.substr(0, 10);
    EXPECT_TRUE(shown == date || shown == dateAfter) << shown;
    unsigned h = 0, m = 0, s = 0;
    ASSERT_EQ(sscanf(run.output.c_str() + 11, "%u:%u:%u", &h, &m, &s), 3);
    unsigned shownSec = h * 3600 + m * 60 + s;
    unsigned fromSec = before.hour * 3600u + before.minute * 60u + before.second;
    unsigned toSec = after.hour * 3600u + after.minute * 60u + after.second;
    EXPECT_TRUE((shownSec >= fromSec && shownSec <= toSec) || toSec < fromSec) << run.output;
    EXPECT_EQ(BuiltinRun("getsysdate(1);").code, SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(BuiltinRun("getsystime(\"x\");").code, SCRIPT_ERR_PARAMCOUNT);
}
