// "executesubscript" and "executesubscriptfunc": scripts in a scratch folder.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <thread>

#include "os/Platform.h"
#include "script/ScriptErrors.h"
#include "script/ScriptSysFunc.h"
#include "tests/unit/builtins_text/BuiltinTestRun.h"

namespace {

class BuiltinSubScript : public BuiltinScratch {};

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

TEST_F(BuiltinSubScript, RunsWithItsOwnBaseDirectory) {
    std::filesystem::create_directory(m_native + "/sub");
    Write("sub\\s.dcs", "print(\"base=\", getbasepath(), \";\", readstringfromfile(\"data.txt\"), \"\\n\");");
    Write("sub\\data.txt", "beside");
    TBUILTINRUN run = Run("print(\"a\\n\"); executesubscript(\"sub\\\\s.dcs\"); print(getbasepath(), \"\\n\");");
    EXPECT_EQ(run.code, 0u);
    EXPECT_EQ(run.output, "a\nbase=" + m_dir + "\\sub;beside\n" + m_dir + "\n");
}

TEST_F(BuiltinSubScript, FunctionOfASubScript) {
    Write("lib.dcs",
          "print(\"main ran\");\n"
          "func add(var int32 a, var int32 b) { add = a + b; }\n"
          "func greet(var string who) { greet = \"hi \" + who; }\n");
    TBUILTINRUN run = Run(
        "var int32 x; x = 40;\n"
        "print(executesubscriptfunc(\"lib.dcs\", \"add\", x, 2), \",\", executesubscriptfunc(\"lib.dcs\", \"greet\", \"you\"));");
    EXPECT_EQ(run.code, 0u);
    EXPECT_EQ(run.output, "42,hi you");
    // Arguments are matched to the function's parameters: too few fails there.
    TBUILTINRUN few = Run("executesubscriptfunc(\"lib.dcs\", \"add\", 1);");
    EXPECT_EQ(few.code, SCRIPT_ERR_PARAMCOUNT);
    EXPECT_NE(few.output.find("in subscript \"lib.dcs\"\n"), std::string::npos) << few.output;
    TBUILTINRUN unknown = Run("executesubscriptfunc(\"lib.dcs\", \"nothing\");");
    EXPECT_EQ(unknown.code, SCRIPT_ERR_UNKNOWNIDENT);
}

TEST_F(BuiltinSubScript, ErrorInTheSubScriptStopsTheCaller) {
    Write("sub.dcs", "var int32 x;\nx = \"text\";\n");
    TBUILTINRUN run = Run("print(\"before\\n\");\nexecutesubscript(\"sub.dcs\");\nprint(\"never\");\n");
    EXPECT_EQ(run.code, SCRIPT_ERR_TYPE);
    // The sub-script's own line, the call's line, then the caller's.
    std::string expectedStart = "before\nType error near line 2";
    EXPECT_EQ(run.output.rfind(expectedStart, 0), 0u) << run.output;
    size_t marker = run.output.find("during executing\nin subscript \"sub.dcs\"\nType error near line 2/");
    EXPECT_NE(marker, std::string::npos) << run.output;
    EXPECT_EQ(run.output.find("never"), std::string::npos);
}

TEST_F(BuiltinSubScript, ExitInASubScriptEndsTheCaller) {
    Write("e.dcs", "print(\"b\"); exit(); print(\"x\");");
    TBUILTINRUN run = Run("print(\"a\"); executesubscript(\"e.dcs\"); print(\"c\");");
    EXPECT_EQ(run.code, SCRIPT_ERR_EXIT);
    EXPECT_EQ(run.output, "abin subscript \"e.dcs\"\n");
}

TEST_F(BuiltinSubScript, UnreadableSubScript) {
    TBUILTINRUN run = Run("print(\"before\\n\");\nexecutesubscript(\"missing.dcs\");\n");
    EXPECT_EQ(run.code, SCRIPT_ERR_SYSFUNC);
    EXPECT_EQ(run.output.rfind("before\nSystem function failed near line 2", 0), 0u) << run.output;
    EXPECT_EQ(run.output.find("in subscript"), std::string::npos);
    EXPECT_EQ(Run("executesubscriptfunc(\"missing.dcs\", \"f\");").code, SCRIPT_ERR_SYSFUNC);
    std::filesystem::create_directory(m_native + "/folder");
    EXPECT_EQ(Run("executesubscript(\"folder\");").code, SCRIPT_ERR_SYSFUNC);
}

TEST_F(BuiltinSubScript, ArgumentChecks) {
    EXPECT_EQ(Run("executesubscript();").code, SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(Run("executesubscript(\"a\", \"b\");").code, SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(Run("executesubscript(1);").code, SCRIPT_ERR_TYPE);
    EXPECT_EQ(Run("executesubscriptfunc(\"a\");").code, SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(Run("executesubscriptfunc(\"a\", 1);").code, SCRIPT_ERR_TYPE);
    EXPECT_EQ(Run("executesubscriptfunc(&print, \"f\");").code, SCRIPT_ERR_TYPE);
    Write("lib.dcs", "func f(var int32 a) { f = a; }");
    EXPECT_EQ(Run("executesubscriptfunc(\"lib.dcs\", \"f\", &print);").code, SCRIPT_ERR_TYPE);
    EXPECT_EQ(Run("executesubscriptfunc(\"missing.dcs\", \"f\", &print);").code, SCRIPT_ERR_TYPE);  // before the file
}

TEST_F(BuiltinSubScript, SharesFactoriesLimitsAndVariablesStayApart) {
    Write("s.dcs", "probe(); delay(4294967295); print(strlen(\"abc\"));");
    CONXScriptRunContext context;
    context.m_sysFuncFactories = {ScriptRuntimeFactory, ProbeFactory};
    context.m_limits.maxDelayMs = 1;
    TBUILTINRUN run = Run("executesubscript(\"s.dcs\");", &context);
    EXPECT_EQ(run.code, 0u);
    EXPECT_EQ(run.output, "probed3");
    Write("v.dcs", "print(secret);");
    TBUILTINRUN apart = Run("var int32 secret; executesubscript(\"v.dcs\");");
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
        TBUILTINRUN run = Run(std::string("executesubscript(\"") + name + "\"); print(\"never\");", &context);
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
    TBUILTINRUN run = Run("while (1) { executesubscript(\"busy.dcs\"); }", &context);
    EXPECT_EQ(run.code, SCRIPT_ERR_ABORTED);
    EXPECT_LT(OsTickCount() - start, 20000u);
}

TEST_F(BuiltinSubScript, SelfCallingSubScriptRunsOutOfStackCleanly) {
    Write("self.dcs", "executesubscript(\"self.dcs\");");
    struct TJOB {
        std::string directory;
        TBUILTINRUN run;
    } job = {m_dir, {}};
    COsThread worker;  // the Script Processor's worker stack
    ASSERT_TRUE(worker.Start(65536, [](void* p) {
        TJOB* j = static_cast<TJOB*>(p);
        j->run = BuiltinRun("executesubscript(\"self.dcs\");", j->directory);
    }, &job));
    worker.Join();
    EXPECT_EQ(job.run.code, SCRIPT_ERR_OUTOFMEMORY);
    EXPECT_NE(job.run.output.find("in subscript \"self.dcs\"\n"), std::string::npos);
}
