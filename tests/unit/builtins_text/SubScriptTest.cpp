// "executesubscript" and "executesubscriptfunc": scripts in a scratch folder.
// The base directory of a sub-script and its diagnostics are conformance scripts.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <thread>

#include "os/Platform.h"
#include "script/ScriptErrors.h"
#include "script/ScriptSysFunc.h"
#include "tests/unit/TestSupport.h"

namespace {

class BuiltinSubScript : public ScratchTest {};

// A built-in that only a test registers: shows that a sub-script gets the
// caller's factories.
class CProbe : public CONXScriptSysFunc {
public:
    explicit CProbe(const TSCRIPTSYSFUNCENV& env) : CONXScriptSysFunc("probe", env.output, env.outputContext) {}
    uint32_t Execute(CONXScriptRunContext*, CONXScriptFunc*, const TSCRIPTARGS&, CONXScriptVariable*) override {
        Output("probed");
        return 0;
    }
};
void ProbeFactory(const TSCRIPTSYSFUNCENV& env, std::vector<CONXScriptSysFunc*>* list) {
    list->push_back(new CProbe(env));
}

}  // namespace

TEST_F(BuiltinSubScript, FailuresOfTheCall) {
    Write("lib.dcs", "func add(var int32 a, var int32 b) { add = a + b; }");
    std::filesystem::create_directory(Native("folder"));
    struct {
        const char* text;
        uint32_t code;
        bool named;  // the "in subscript" line follows the sub-script's own diagnostic
    } cases[] = {
        // Arguments are matched to the function's parameters there.
        {"executesubscriptfunc(\"lib.dcs\", \"add\", 1);", SCRIPT_ERR_PARAMCOUNT, true},
        {"executesubscriptfunc(\"lib.dcs\", \"nothing\");", SCRIPT_ERR_UNKNOWNIDENT, true},
        // A file that cannot be read fails the call itself.
        {"executesubscriptfunc(\"missing.dcs\", \"f\");", SCRIPT_ERR_SYSFUNC, false},
        {"executesubscript(\"folder\");", SCRIPT_ERR_SYSFUNC, false},
    };
    for (const auto& c : cases) {
        TTESTRUN run = TestRun(c.text, Dir());
        EXPECT_EQ(run.code, c.code) << c.text;
        EXPECT_EQ(run.output.find("in subscript \"") != std::string::npos, c.named) << run.output;
    }
}

TEST_F(BuiltinSubScript, SharesFactoriesLimitsAndVariablesStayApart) {
    Write("s.dcs", "probe(); delay(4294967295); print(strlen(\"abc\"));");
    CONXScriptRunContext context;
    context.m_sysFuncFactories = {ScriptRuntimeFactory, ProbeFactory};
    context.m_limits.maxDelayMs = 1;
    TTESTRUN run = TestRun("executesubscript(\"s.dcs\");", Dir(), &context);
    EXPECT_EQ(run.code, 0u);
    EXPECT_EQ(run.output, "probed3");
    Write("v.dcs", "print(secret);");
    TTESTRUN apart = TestRun("var int32 secret; executesubscript(\"v.dcs\");", Dir());
    EXPECT_EQ(apart.code, SCRIPT_ERR_UNKNOWNIDENT);
}

TEST_F(BuiltinSubScript, StopRequestReachesTheSubScript) {
    Write("loop.dcs", "while (1) { }");
    Write("wait.dcs", "delay(4294967295);");
    for (const char* name : {"loop.dcs", "wait.dcs"}) {
        CONXScriptRunContext context;
        context.m_limits.maxDelayMs = 20000;
        context.m_limits.maxSteps = 2000000000;  // either way the test ends, passed or failed
        uint64_t stoppedAt = 0;
        std::thread stopper([&] {
            OsSleep(100);
            stoppedAt = OsTickCount();
            context.RequestStop();
        });
        TTESTRUN run = TestRun(std::string("executesubscript(\"") + name + "\"); print(\"never\");", Dir(), &context);
        uint64_t late = OsTickCount() - stoppedAt;
        stopper.join();
        printf("[ measured ] %s ended %llu ms after the stop request\n", name, (unsigned long long)late);
        EXPECT_EQ(run.code, SCRIPT_ERR_ABORTED);
        EXPECT_NE(run.output.find(std::string("in subscript \"") + name + "\"\n"), std::string::npos);
        EXPECT_EQ(run.output.find("never"), std::string::npos);
        EXPECT_LT(late, 5000u);
    }
}

TEST_F(BuiltinSubScript, BoundedRunsShareTheirSteps) {
    // Each sub-script loops long; the caller calls it again and again. With a
    // step budget the whole nest ends, and soon.
    Write("busy.dcs", "var int32 i; while (i < 100000) { i += 1; }");
    CONXScriptRunContext context;
    context.m_limits.maxSteps = 20000;
    uint64_t start = OsTickCount();
    TTESTRUN run = TestRun("while (1) { executesubscript(\"busy.dcs\"); }", Dir(), &context);
    EXPECT_EQ(run.code, SCRIPT_ERR_ABORTED);
    EXPECT_LT(OsTickCount() - start, 20000u);
}

TEST_F(BuiltinSubScript, SelfCallingSubScriptRunsOutOfStackCleanly) {
    Write("self.dcs", "executesubscript(\"self.dcs\");");
    struct TJOB {
        std::string directory;
        TTESTRUN run;
    } job = {Dir(), {}};
    COsThread worker;  // a small stack: the end comes soon
    ASSERT_TRUE(worker.Start(65536, [](void* p) {
        TJOB* j = static_cast<TJOB*>(p);
        j->run = TestRun("executesubscript(\"self.dcs\");", j->directory);
    }, &job, OS_STACK_WHOLE));
    worker.Join();
    EXPECT_EQ(job.run.code, SCRIPT_ERR_OUTOFMEMORY);
    EXPECT_NE(job.run.output.find("in subscript \"self.dcs\"\n"), std::string::npos);
}
