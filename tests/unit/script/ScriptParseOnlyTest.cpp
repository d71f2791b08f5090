// RunScript with parseOnly: a script is read as a run reads it and nothing of it runs.
#include <gtest/gtest.h>

#include <string>

#include "script/ScriptRun.h"
#include "scriptrt/SysFuncTable.h"
#include "tests/unit/TestSupport.h"

namespace {

struct TPARSECASE {
    const char* text;
    uint32_t code;
    const char* output;
};

TEST(ScriptParseOnly, ReadsWithoutRunning) {
    const TPARSECASE cases[] = {
        // Statements that would fail or end the run (dcsrun's --check tests show
        // printing, the device, endless loops, external names and the syntax errors).
        {"var int32 a; a = 1 / 0;", 0, ""},
        {"exit(); print(strtodword(\"x\"));", 0, ""},
        // The built-ins and "version" are known names, as in a run.
        {"var string v; v = version + getsysdate();", 0, ""},
        // Faults of the text: the run's diagnostic line, phase "parsing".
        {"var short s;", 5, "Unknown data type near line 1/column 4 (offset 3) during parsing\n"},
        {"print(\"a\n\");", 3, "Error in string near line 1/column 7 (offset 6) during parsing\n"},
    };
    for (const TPARSECASE& c : cases) {
        CONXScriptRunContext context;
        context.m_sysFuncFactories.push_back(ScriptRuntimeFactory);
        std::string output;
        EXPECT_EQ(RunScript(&context, c.text,
                            {.output = TestCollect, .outputContext = &output, .parseOnly = true}),
                  c.code)
            << c.text;
        EXPECT_EQ(output, c.output) << c.text;
    }
}

}  // namespace
