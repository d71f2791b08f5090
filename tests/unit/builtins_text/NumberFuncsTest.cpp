// "strto...", "hexstrto...", "...tostr", "...tohexstr" from scripts: result
// types, the twin names, and which checks run when the value is not used.
#include <gtest/gtest.h>

#include <string>

#include "script/ScriptErrors.h"
#include "tests/unit/builtins_text/BuiltinTestRun.h"

namespace {

uint32_t Code(const std::string& text) { return BuiltinRun(text).code; }

std::string Out(const std::string& text) {
    TBUILTINRUN run = BuiltinRun(text);
    EXPECT_EQ(run.code, 0u) << text << "\n" << run.output;
    return run.output;
}

}  // namespace

TEST(BuiltinNumber, ScansGiveTheirOwnTypes) {
    // numtohexstr shows the width, numtostr the signedness of what a scan gave.
    EXPECT_EQ(Out("print(numtostr(strtoint32(\"-5\")), \",\", numtohexstr(strtoint32(\"-5\")));"),
              "-5,FFFFFFFB");
    EXPECT_EQ(Out("print(strtodword(\"-1\"), \",\", strtouint32(\"4294967296\"));"), "4294967295,0");
    EXPECT_EQ(Out("print(strtoint64(\"-9223372036854775808\"), \",\", strtouint64(\"18446744073709551615\"));"),
              "-9223372036854775808,18446744073709551615");
    EXPECT_EQ(Out("print(numtohexstr(strtoint64(\"-1\")), \",\", numtohexstr(strtouint64(\"1\")));"),
              "FFFFFFFFFFFFFFFF,1");
    EXPECT_EQ(Out("print(strtoint32(\"2147483648\"));"), "-2147483648");
}

TEST(BuiltinNumber, HexScans) {
    EXPECT_EQ(Out("print(hexstrtodword(\"ff\"), \",\", hexstrtouint32(\" 0xFF\"), \",\", hexstrtodword(\"100000000\"));"),
              "255,255,0");
    // The signed hexadecimal scans read an unsigned pattern and give the signed type.
    EXPECT_EQ(Out("print(hexstrtoint32(\"FFFFFFFF\"), \",\", hexstrtoint64(\"FFFFFFFFFFFFFFFF\"), \",\","
                  " hexstrtouint64(\"100000000\"), \",\", hexstrtoint64(\"7fffffffffffffff\"));"),
              "-1,-1,4294967296,9223372036854775807");
}

TEST(BuiltinNumber, ScanFailures) {
    EXPECT_EQ(Code("var dword d; d = strtodword(\"abc\");"), SCRIPT_ERR_TYPE);
    EXPECT_EQ(Code("var dword d; d = hexstrtodword(\"xyz\");"), SCRIPT_ERR_TYPE);
    EXPECT_EQ(Code("var dword d; d = strtodword(\"\");"), SCRIPT_ERR_TYPE);
    // Without a taker nothing is scanned, so nothing can fail to scan ...
    EXPECT_EQ(Code("strtodword(\"abc\"); strtoint64(\"\");"), 0u);
    // ... but the argument is still checked.
    EXPECT_EQ(Code("strtodword(5);"), SCRIPT_ERR_TYPE);
    EXPECT_EQ(Code("strtodword();"), SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(Code("hexstrtoint32(\"1\", \"2\");"), SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(Code("strtoint32(&print);"), SCRIPT_ERR_TYPE);
}

TEST(BuiltinNumber, FormatsByTheArgumentsType) {
    EXPECT_EQ(Out("var uint64 v; v = 1099511627776; print(dwordtostr(v));"), "1099511627776");
    EXPECT_EQ(Out("var uint64 v; v = 4294967296; print(numtohexstr(v));"), "100000000");
    EXPECT_EQ(Out("var dword d; d = 255; print(numtohexstr(d), \",\", dwordtohexstr(d));"), "FF,FF");
    EXPECT_EQ(Out("var int32 i; i = -1; print(numtostr(i), \",\", numtohexstr(i));"), "-1,FFFFFFFF");
    EXPECT_EQ(Out("var int64 s; s = -1; print(numtostr(s), \",\", numtohexstr(s));"), "-1,FFFFFFFFFFFFFFFF");
    EXPECT_EQ(Out("var dword d; d = 0xFFFFFFFF:U; print(dwordtostr(d));"), "4294967295");
}

TEST(BuiltinNumber, TwinNamesAgree) {
    const char* values[] = {"-7", "0xFFFFFFFF:U", "0x123456789:U", "-0x1:H", "0"};
    for (const char* v : values) {
        std::string text = std::string("print(dwordtostr(") + v + "), \",\", numtostr(" + v +
                           "), \",\", dwordtohexstr(" + v + "), \",\", numtohexstr(" + v + "));";
        std::string out = Out(text);
        size_t a = out.find(','), b = out.find(',', a + 1), c = out.find(',', b + 1);
        ASSERT_NE(c, std::string::npos) << out;
        EXPECT_EQ(out.substr(0, a), out.substr(a + 1, b - a - 1)) << v;
        EXPECT_EQ(out.substr(b + 1, c - b - 1), out.substr(c + 1)) << v;
    }
    EXPECT_EQ(Out("print(strtodword(\"-2\"), strtouint32(\"-2\"), hexstrtodword(\"-2\"), hexstrtouint32(\"-2\"));"),
              "4294967294429496729442949672944294967294");
}

TEST(BuiltinNumber, FormattingChecksTheTypeEvenWithoutATaker) {
    EXPECT_EQ(Code("numtostr(\"x\");"), SCRIPT_ERR_TYPE);
    EXPECT_EQ(Code("dwordtohexstr(\"x\");"), SCRIPT_ERR_TYPE);
    EXPECT_EQ(Code("func none() { } numtostr(none());"), SCRIPT_ERR_TYPE);  // untyped
    EXPECT_EQ(Code("numtostr(1);"), 0u);
    EXPECT_EQ(Code("numtostr(1, 2);"), SCRIPT_ERR_PARAMCOUNT);
    EXPECT_EQ(Code("numtostr(&print);"), SCRIPT_ERR_TYPE);
}
