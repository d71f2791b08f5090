// "delay", "exit", "getsysdate", "getsystime".
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <thread>

#include "os/Platform.h"
#include "script/ScriptErrors.h"
#include "tests/unit/TestSupport.h"

TEST(BuiltinControl, DelayEndsOnAStopRequest) {
    CONXScriptRunContext context;
    context.m_limits.maxDelayMs = 20000;  // a delay deaf to the event fails instead of hanging
    for (const char* text : {"print(\"a\"); delay(4294967295); print(\"b\");", "print(\"a\"); delay(60000);"}) {
        uint64_t stoppedAt = 0;
        std::thread stopper([&] {
            OsSleep(100);
            stoppedAt = OsTickCount();
            context.RequestStop();
        });
        TTESTRUN run = TestRun(text, &context);
        uint64_t late = OsTickCount() - stoppedAt;
        stopper.join();
        printf("[ measured ] %s ended %llu ms after the stop request\n", text, (unsigned long long)late);
        EXPECT_EQ(run.code, SCRIPT_ERR_ABORTED);
        EXPECT_EQ(run.output.rfind("aProcessing aborted near line 1", 0), 0u) << run.output;
        EXPECT_LT(late, 5000u);  // generous: the wait ends on the event, not by polling
    }
}

TEST(BuiltinControl, DelayRunsOutOrIsCappedByTheLimits) {
    uint64_t start = OsTickCount();
    TTESTRUN run = TestRun("delay(50); print(\"after\"); delay(0);");
    EXPECT_EQ(run.code, 0u);
    EXPECT_EQ(run.output, "after");
    EXPECT_GE(OsTickCount() - start, 45u);
    // The low 32 bits count: 2^32 + 1 waits one millisecond.
    start = OsTickCount();
    EXPECT_EQ(TestRun("delay(4294967297);").code, 0u);
    EXPECT_LT(OsTickCount() - start, 5000u);
    CONXScriptRunContext context;
    context.m_limits.maxDelayMs = 5;
    start = OsTickCount();
    EXPECT_EQ(TestRun("delay(4294967295); print(\"after\");", &context).output, "after");
    EXPECT_LT(OsTickCount() - start, 5000u);
}

TEST(BuiltinControl, ExitEndsTheWholeRunSilently) {
    TTESTRUN run = TestRun(
        "func inner() { print(\"in\"); while (1) { exit(); } print(\"never\"); }\n"
        "func outer() { inner(); print(\"never\"); }\n"
        "print(\"a\"); outer(); print(\"never\");");
    EXPECT_EQ(run.code, SCRIPT_ERR_EXIT);
    EXPECT_EQ(run.output, "ain");
}

TEST(BuiltinControl, DateAndTimeOfTheLocalClock) {
    TOSLOCALTIME before, after;
    OsLocalTime(&before);
    TTESTRUN run = TestRun("print(getsysdate(), \" \", getsystime());");
    OsLocalTime(&after);
    ASSERT_EQ(run.code, 0u);
    // Day first, then month; the time within the run's second or the next.
    char shown[2][64];
    for (int i = 0; i < 2; i++) {
        const TOSLOCALTIME& t = i ? after : before;
        snprintf(shown[i], sizeof shown[i], "%02u.%02u.%04u %02u:%02u:%02u", (unsigned)t.day,
                 (unsigned)t.month, (unsigned)t.year, (unsigned)t.hour, (unsigned)t.minute, (unsigned)t.second);
    }
    EXPECT_TRUE(run.output == shown[0] || run.output == shown[1]) << run.output;
}
