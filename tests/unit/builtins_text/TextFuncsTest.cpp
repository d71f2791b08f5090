// The text and number built-ins from scripts, beyond what the conformance
// scripts show: how print reaches the output, the widths of positions and
// results, and the twin names.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/unit/TestSupport.h"

namespace {

void CollectCalls(void* context, const char* text) {
    static_cast<std::vector<std::string>*>(context)->push_back(text);
}

std::vector<std::string> PrintCalls(const char* text, TSCRIPTOUTPUTFUNC output) {
    std::vector<std::string> calls;
    CONXScriptRunContext context;
    context.m_sysFuncFactories.push_back(ScriptRuntimeFactory);
    EXPECT_EQ(RunScript(&context, text,
                        {.scriptDirectory = "Z:\\tmp", .output = output, .outputContext = &calls}),
              0u);
    return calls;
}

}  // namespace

TEST(BuiltinText, PrintWritesEachArgumentByOneCall) {
    std::vector<std::string> expected = {"-5", "a\\0b", "", "x"};
    EXPECT_EQ(PrintCalls("var int32 i; i = -5; func none() { } print(i, \"a\\0b\", \"\", &print, none(), \"x\");",
                         CollectCalls),
              expected);
    // Without an output function print still succeeds.
    EXPECT_TRUE(PrintCalls("print(1, \"x\");", nullptr).empty());
}

TEST(BuiltinText, Values) {
    struct {
        const char* text;
        const char* expected;
    } cases[] = {
        // Start and length are 64-bit unsigned: no truncation to 32 bits, -1 is huge.
        {"print(substr(\"hello\", 1, 4294967297), \",\", substr(\"hello\", 2, -1));", "ello,llo"},
        {"print(instr(\"abc\", \"a\", 4294967296), \",\", instr(\"a\\0b\", \"\\0\"));", "-1,1"},
        // The result of instr is an int32 whatever it holds.
        {"print(numtohexstr(instr(\"abc\", \"x\")));", "FFFFFFFF"},
        // A scan gives its own type: numtohexstr shows its width.
        {"print(numtohexstr(strtoint32(\"-5\")), \",\", numtohexstr(strtoint64(\"-1\")), \",\","
         " numtohexstr(strtouint64(\"1\")), \",\", numtohexstr(hexstrtoint32(\"FFFFFFFF\")));",
         "FFFFFFFB,FFFFFFFFFFFFFFFF,1,FFFFFFFF"},
        {"print(hexstrtouint32(\" 0xFF\"), \",\", hexstrtodword(\"100000000\"), \",\","
         " hexstrtoint64(\"7fffffffffffffff\"));",
         "255,0,9223372036854775807"},
        // The twin names are one function each.
        {"print(strtodword(\"-2\"), strtouint32(\"-2\"), hexstrtodword(\"-2\"), hexstrtouint32(\"-2\"));",
         "4294967294429496729442949672944294967294"},
        {"var int64 v; v = -7; print(dwordtostr(v), numtostr(v), \",\", dwordtohexstr(v), \",\", numtohexstr(v));",
         "-7-7,FFFFFFFFFFFFFFF9,FFFFFFFFFFFFFFF9"},
        {"var dword d; d = 0xFFFFFFFF:U; print(dwordtostr(d), \",\", numtostr(d));", "4294967295,4294967295"},
    };
    for (const auto& c : cases) {
        TTESTRUN run = TestRun(c.text);
        EXPECT_EQ(run.code, 0u) << c.text << "\n" << run.output;
        EXPECT_EQ(run.output, c.expected) << c.text;
    }
}
