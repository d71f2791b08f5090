// RunScript with parseOnly: a script is read as a run reads it and nothing of it runs.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "script/ScriptRun.h"
#include "script/ScriptValue.h"
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
        // Statements that would print, fail or never end at run time.
        {"print(\"ran\\n\");", 0, ""},
        {"var int32 a; a = 1 / 0;", 0, ""},
        {"while (1) { }", 0, ""},
        {"exit(); print(strtodword(\"x\"));", 0, ""},
        // The built-ins and "version" are known names, as in a run.
        {"var string v; v = version + getsysdate();", 0, ""},
        // Faults of the text: the run's diagnostic line, phase "parsing".
        {"var int32 a\na = 1;", 2, "Syntax error near line 1/column 12 (offset 11) during parsing\n"},
        {"print(nosuch);", 7, "Unknown identifier near line 1/column 7 (offset 6) during parsing\n"},
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

TEST(ScriptParseOnly, ExternalNamesAreKnown) {
    const char text[] = "Count += 1;";
    CONXScriptRunContext context;
    context.m_sysFuncFactories.push_back(ScriptRuntimeFactory);
    EXPECT_EQ(RunScript(&context, text, {.parseOnly = true}), 7u);
    CONXScriptVariable count;
    count.SetName("count");
    count.SetType(SCRIPT_TYPE_UINT32);
    std::vector<CONXScriptVariable*> externals = {&count};
    EXPECT_EQ(RunScript(&context, text, {.externals = &externals, .parseOnly = true}), 0u);
    EXPECT_EQ(count.GetNumber(), 0u);  // read, never changed
}

}  // namespace
