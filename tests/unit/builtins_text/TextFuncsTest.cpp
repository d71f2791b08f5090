// "print", "strlen", "substr", "instr", "ascii", "chr", run from scripts.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "script/ScriptErrors.h"
#include "tests/unit/builtins_text/BuiltinTestRun.h"

namespace {

void CollectCalls(void* context, const char* text) {
    static_cast<std::vector<std::string>*>(context)->push_back(text);
}

// The code of a script whose only interest is whether it fails, and how.
uint32_t Code(const std::string& text) { return BuiltinRun(text).code; }

std::string Out(const std::string& text) {
    TBUILTINRUN run = BuiltinRun(text);
    EXPECT_EQ(run.code, 0u) << text << "\n" << run.output;
    return run.output;
}

}  // namespace

TEST(BuiltinText, PrintFormatsEachTypeInOneCallPerArgument) {
    std::vector<std::string> calls;
    CONXScriptRunContext context;
    context.m_sysFuncFactories.push_back(ScriptRuntimeFactory);
    const char* text =
        "var int32 i; var dword d; var uint64 u; var int64 s; var string t;\n"
        "i = -5; d = 0xFFFFFFFF:U; u = 0xFFFFFFFFFFFFFFFF:U; s = 0x8000000000000000; t = \"a\\0b\";\n"
        "print(i, d, u, s, t, \"\");\n";
    uint32_t code = RunScript(&context, nullptr, text, "Z:\\tmp", nullptr, nullptr, nullptr,
                              CollectCalls, &calls, nullptr);
    ASSERT_EQ(code, 0u);
    std::vector<std::string> expected = {"-5", "4294967295", "18446744073709551615",
                                         "-9223372036854775808", "a\\0b", ""};
    EXPECT_EQ(calls, expected);
}

TEST(BuiltinText, PrintSkipsWhatItCannotShow) {
    EXPECT_EQ(Out("print();"), "");
    // A function bound with "&" is not a variable; an untyped value has nothing to show.
    EXPECT_EQ(Out("func none() { } print(\"a\", &print, none(), \"b\");"), "ab");
    // Without an output function print still succeeds.
    CONXScriptRunContext context;
    context.m_sysFuncFactories.push_back(ScriptRuntimeFactory);
    EXPECT_EQ(RunScript(&context, nullptr, "print(1, \"x\");", "Z:\\tmp", nullptr, nullptr, nullptr,
                        nullptr, nullptr, nullptr),
              0u);
}

TEST(BuiltinText, LiteralsAndExpressionsArriveAsVariables) {
    EXPECT_EQ(Out("print(\"done\\n\");"), "done\n");
    EXPECT_EQ(Out("print(substr(\"hello\", 1, 100), strtodword(\"  12abc\"), 2 + 3);"), "ello125");
}

TEST(BuiltinText, Strlen) {
    EXPECT_EQ(Out("print(strlen(\"\"), \",\", strlen(\"a\\0b\"), \",\", strlen(chr(0)));"), "0,3,1");
    EXPECT_EQ(Code("strlen();"), SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(Code("strlen(\"a\", \"b\");"), SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(Code("strlen(&print);"), SCRIPT_ERR_TYPE);
    // The type is checked even when the value is not used.
    EXPECT_EQ(Code("strlen(5);"), SCRIPT_ERR_TYPE);
    EXPECT_EQ(Code("var int32 n; n = strlen(n);"), SCRIPT_ERR_TYPE);
}

TEST(BuiltinText, SubstrBounds) {
    EXPECT_EQ(Out("print(substr(\"hello\", 5), \",\", substr(\"hello\", 1, 100), \",\","
                  " substr(\"hello\", 1, 0), \",\", substr(\"hello\", 0), \",\", substr(\"hello\", 4, 1));"),
              ",ello,,hello,o");
    // Start and length are 64-bit unsigned: no truncation to 32 bits, -1 is huge.
    EXPECT_EQ(Out("print(substr(\"hello\", 4294967296), \",\", substr(\"hello\", -1), \",\","
                  " substr(\"hello\", 1, 4294967297), \",\", substr(\"hello\", 2, -1));"),
              ",,ello,llo");
    EXPECT_EQ(Out("print(substr(\"a\\0bc\", 1, 2));"), "\\0b");
}

TEST(BuiltinText, SubstrChecksCountBeforeArguments) {
    EXPECT_EQ(Code("substr(&print);"), SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(Code("substr(\"s\", 1, 2, 3);"), SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(Code("substr(&print, 1);"), SCRIPT_ERR_TYPE);
    EXPECT_EQ(Code("substr(1, 1);"), SCRIPT_ERR_TYPE);
    EXPECT_EQ(Code("substr(\"s\", \"1\");"), SCRIPT_ERR_TYPE);
    EXPECT_EQ(Code("substr(\"s\", 1, \"2\");"), SCRIPT_ERR_TYPE);
    EXPECT_EQ(Code("substr(\"s\", 9);"), 0u);
}

TEST(BuiltinText, InstrBoundsAndType) {
    EXPECT_EQ(Out("print(instr(\"abcabc\", \"c\", 3), \",\", instr(\"abc\", \"x\"), \",\","
                  " instr(\"abc\", \"\", 3), \",\", instr(\"abc\", \"\", 4), \",\", instr(\"abcabc\", \"abc\"));"),
              "5,-1,3,-1,0");
    // A start beyond 32 bits is past the end, not wrapped back to the front.
    EXPECT_EQ(Out("print(instr(\"abc\", \"a\", 4294967296));"), "-1");
    // Bytes after a NUL are searched too.
    EXPECT_EQ(Out("print(instr(\"a\\0b\", \"b\"), \",\", instr(\"a\\0b\", \"\\0\"));"), "2,1");
    // The result is an int32 whatever it holds.
    EXPECT_EQ(Out("print(numtohexstr(instr(\"abc\", \"x\")), \",\", numtostr(instr(\"abc\", \"x\")));"),
              "FFFFFFFF,-1");
    EXPECT_EQ(Code("instr(\"a\");"), SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(Code("instr(\"a\", \"b\", 1, 2);"), SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(Code("instr(\"a\", 1);"), SCRIPT_ERR_TYPE);
    EXPECT_EQ(Code("instr(\"a\", \"b\", \"c\");"), SCRIPT_ERR_TYPE);
}

TEST(BuiltinText, AsciiAndChr) {
    EXPECT_EQ(Out("print(ascii(\"\"), \",\", ascii(\"A\"), \",\", ascii(\"\\(228)x\"), \",\","
                  " ascii(chr(255)) > 0);"),
              "0,65,228,1");
    EXPECT_EQ(Out("print(chr(321), \",\", chr(0), \",\", strlen(chr(0)), \",\", ascii(chr(-1)));"),
              "A,\\0,1,255");
    EXPECT_EQ(Code("ascii(65);"), SCRIPT_ERR_TYPE);
    EXPECT_EQ(Code("chr(\"A\");"), SCRIPT_ERR_TYPE);
    EXPECT_EQ(Code("chr();"), SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(Code("ascii(\"a\", \"b\");"), SCRIPT_ERR_PARAMCOUNT);
}

TEST(BuiltinText, FailureLeavesTheTargetAlone) {
    // The failing call's diagnostic line follows what was printed before it.
    TBUILTINRUN run = BuiltinRun("var string s; s = \"kept\"; print(s); s = substr(5, 1);");
    EXPECT_EQ(run.code, SCRIPT_ERR_TYPE);
    EXPECT_EQ(run.output.rfind("keptType error near line 1", 0), 0u) << run.output;
}
