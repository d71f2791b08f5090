// Numbers-only expressions run from a translated program after their first
// evaluation; results, types and errors must stay those of the ordinary path.
#include <gtest/gtest.h>

#include <string>

#include "script/ScriptErrors.h"
#include "tests/unit/TestSupport.h"

namespace {

std::string Out(const std::string& text) {
    TTESTRUN r = TestRun(text);
    EXPECT_EQ(r.code, 0u) << r.output;
    return r.output;
}

TEST(ScriptFastEval, OutermostOperatorTakesTheResultType) {
    // A 64-bit parameter receives the 64-bit sum, not a 32-bit one widened.
    EXPECT_EQ(Out("func f(var int64 p) { f = p; } var int32 a; a = 0x7FFFFFFF; "
                  "print(f(a + a), \",\", f((a + a)), \",\", f(-a - 1));"),  // the last is -(a - 1)
              "4294967294,-2,-2147483646");
    EXPECT_EQ(Out("func f(var int64 p) { f = p; } var int32 a; a = 0x80000000; print(f(-a), \",\", f(-(a)));"),
              "2147483648,2147483648");
    EXPECT_EQ(Out("func g(var uint32 p) { g = p; } var int32 a; a = -1; print(g(a), \",\", g(int64(a)));"),
              "4294967295,4294967295");
}

TEST(ScriptFastEval, RepeatedRunsSeeTheCurrentVariables) {
    EXPECT_EQ(Out("var int32 i; var int32 s; while (i < 10) { s += i * i; i += 1; } print(s);"), "285");
    // The same expression in every level of a recursion.
    EXPECT_EQ(Out("func d(var int32 n) { var int32 k; k = n * 10; if (n > 0) { d(n - 1); } print(k + n, \" \"); } d(3);"),
              "0 11 22 33 ");
}

TEST(ScriptFastEval, DeepExpressionsAndLaterFailures) {
    std::string deep = "var int32 x; x = ";
    for (int i = 0; i < 40; i++) deep += "(1 + ";
    deep += "1";
    for (int i = 0; i < 40; i++) deep += ")";
    deep += "; print(x);";
    EXPECT_EQ(Out(deep), "41");
    TTESTRUN r = TestRun("var int32 i; var int32 x; while (i < 3) { x = 6 / (2 - i); print(x, \",\"); i += 1; }");
    EXPECT_EQ(r.code, SCRIPT_ERR_DIVZERO);
    EXPECT_EQ(r.output, "3,6,Division by 0 error near line 1/column 58 (offset 57) during executing\n");
}

}  // namespace
