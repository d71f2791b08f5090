// Values: storing, reading, converting, references, and the operator rules.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "script/ScriptErrors.h"
#include "script/ScriptValue.h"

namespace {

// A variable of a type holding a value.
struct TVar : CONXScriptVariable {
    TVar(uint32_t type, uint64_t value) {
        SetType(type);
        EXPECT_EQ(SetNumber(value, 0), 0u);
    }
    explicit TVar(const std::string& text) { EXPECT_EQ(SetText(text), 0u); }
};

TEST(ScriptValue, StoringTruncatesAndReadingWidens) {
    TVar d(SCRIPT_TYPE_UINT32, 0x100000005ull);
    EXPECT_EQ(d.GetNumber(), 5u);
    TVar i(SCRIPT_TYPE_INT32, ~0ull);
    EXPECT_EQ(i.GetNumber(), ~0ull);  // sign-extended
    TVar u(SCRIPT_TYPE_UINT32, ~0ull);
    EXPECT_EQ(u.GetNumber(), 0xFFFFFFFFull);  // zero-extended
    CONXScriptVariable untyped;
    EXPECT_EQ(untyped.SetNumber(1, SCRIPT_TYPE_STRING), SCRIPT_ERR_TYPE);
    EXPECT_EQ(untyped.GetType(), 0u);
    EXPECT_EQ(untyped.SetNumber(7, SCRIPT_TYPE_INT64), 0u);
    EXPECT_EQ(untyped.GetType(), (uint32_t)SCRIPT_TYPE_INT64);
}

TEST(ScriptValue, AssignKeepsTheTargetTypeAndRefusesMixing) {
    TVar target(SCRIPT_TYPE_UINT32, 1);
    TVar big(SCRIPT_TYPE_INT64, 0x123456789ull);
    EXPECT_EQ(target.Assign(&big), 0u);
    EXPECT_EQ(target.GetType(), (uint32_t)SCRIPT_TYPE_UINT32);
    EXPECT_EQ(target.GetNumber(), 0x23456789u);
    TVar s(std::string("text"));
    EXPECT_EQ(target.Assign(&s), SCRIPT_ERR_TYPE);
    EXPECT_EQ(target.GetNumber(), 0x23456789u);  // unchanged
    EXPECT_EQ(s.Assign(&big), SCRIPT_ERR_TYPE);
    EXPECT_EQ(s.GetText(), "text");
    CONXScriptVariable fresh;
    EXPECT_EQ(fresh.Assign(&big), 0u);
    EXPECT_EQ(fresh.GetType(), (uint32_t)SCRIPT_TYPE_INT64);
    CONXScriptVariable a, b;
    EXPECT_EQ(a.Assign(&b), SCRIPT_ERR_TYPE);  // nothing to take a type from
}

TEST(ScriptValue, TextRules) {
    TVar n(SCRIPT_TYPE_INT32, 5);
    EXPECT_EQ(n.SetText("x"), SCRIPT_ERR_TYPE);
    EXPECT_EQ(n.GetText(), "");
    CONXScriptVariable s;
    EXPECT_EQ(s.SetTextChars("a\0b", 3), 0u);
    EXPECT_EQ(s.GetText(), std::string("a\0b", 3));
    EXPECT_EQ(s.SetTextChars("a\0b", -1), 0u);
    EXPECT_EQ(s.GetText(), "a");
}

TEST(ScriptValue, ReferencesActOnTheirTarget) {
    TVar target(SCRIPT_TYPE_INT32, 1);
    CONXScriptVariable alias(&target);
    EXPECT_EQ(alias.GetObjectKind(), (uint32_t)SCRIPT_OBJ_VARIABLE);
    EXPECT_EQ(alias.GetType(), (uint32_t)SCRIPT_TYPE_INT32);
    TVar five(SCRIPT_TYPE_INT32, 5);
    EXPECT_EQ(alias.ApplyAssignment("+=", &five), 0u);
    EXPECT_EQ(target.GetNumber(), 6u);
    EXPECT_EQ(alias.SetNumber(9, 0), 0u);
    EXPECT_EQ(target.GetNumber(), 9u);
    EXPECT_EQ(alias.Resolved(), &target);
    EXPECT_EQ(alias.Type(), 0u);  // its own fields stay untouched
}

// The operator rules are conformance scripts (operators/); here what a script
// cannot reach or show.
TEST(ScriptValue, OperatorsBeyondTheScripts) {
    const uint32_t U32 = SCRIPT_TYPE_UINT32, S32 = SCRIPT_TYPE_INT32, U64 = SCRIPT_TYPE_UINT64,
                   S64 = SCRIPT_TYPE_INT64;
    const uint64_t kMin64 = 1ull << 63;
    const struct {
        const char* op;
        uint32_t leftType;
        uint64_t left;
        uint32_t rightType;
        uint64_t right;
        uint32_t type;
        uint64_t result;
    } cases[] = {
        {"<<", U32, 1, S64, 1, U32, 2},  // a shift keeps the left type, even for a 64-bit count
        {"<<", U64, (uint64_t)-8, S32, (uint64_t)-70, U64, 0},  // unsigned: logical beyond the width
        {"/", U64, kMin64, U64, ~0ull, U64, 0},  // both unsigned: an ordinary quotient
    };
    for (const auto& c : cases) {
        TVar l(c.leftType, c.left), r(c.rightType, c.right);
        CONXScriptVariable result;
        EXPECT_EQ(result.ApplyBinaryOperator(c.op, &l, &r), 0u) << c.left << c.op << c.right;
        EXPECT_EQ(result.GetType(), c.type) << c.left << c.op << c.right;
        EXPECT_EQ(result.GetNumber(), c.result) << c.left << c.op << c.right;
    }
    // A typed result keeps its type.
    TVar typed(U32, 0), a(S32, 1), b(S64, 1);
    EXPECT_EQ(typed.ApplyBinaryOperator("-", &a, &b), 0u);
    EXPECT_EQ(typed.GetType(), U32);
    // A failed assignment leaves the target; the wrapping remainder in place.
    TVar x(S32, 5), zero(S32, 0), min64(S64, kMin64), m1(S64, ~0ull);
    EXPECT_EQ(x.ApplyAssignment("/=", &zero), SCRIPT_ERR_DIVZERO);
    EXPECT_EQ(x.GetNumber(), 5u);
    EXPECT_EQ(min64.ApplyAssignment("%=", &m1), 0u);
    EXPECT_EQ(min64.GetNumber(), 0u);
    // A comparison of strings always lands in the 32-bit unsigned field.
    TVar ab(std::string("ab")), wide(S64, 0);
    EXPECT_EQ(wide.ApplyBinaryOperator("==", &ab, &ab), 0u);
    EXPECT_EQ(wide.GetNumber(), 0u);
    // No assignment or unary operator (the parser never hands these over);
    // an untyped target takes the source's type, then 0 - (-1).
    EXPECT_EQ(x.ApplyAssignment("+", &x), SCRIPT_ERR_SYNTAX);
    EXPECT_EQ(x.ApplyUnaryOperator("*", &x), SCRIPT_ERR_SYNTAX);
    CONXScriptVariable fresh;
    EXPECT_EQ(fresh.ApplyAssignment("-=", &m1), 0u);
    EXPECT_EQ(fresh.GetNumber(), 1u);
}

TEST(ScriptValue, StringBudget) {
    TSCRIPTSTRINGBUDGET budget = {8, 12, 0};
    TSCRIPTSTRINGBUDGET* old = SetScriptStringBudget(&budget);
    {
        CONXScriptVariable a, b;
        EXPECT_EQ(a.SetText("12345678"), 0u);
        EXPECT_EQ(a.SetText("123456789"), SCRIPT_ERR_OUTOFMEMORY);  // one string too long
        EXPECT_EQ(a.GetText(), "12345678");
        EXPECT_EQ(b.SetText("1234"), 0u);
        EXPECT_EQ(b.SetText("12345"), SCRIPT_ERR_OUTOFMEMORY);  // all strings too much
        EXPECT_EQ(budget.liveBytes, 12u);
        EXPECT_EQ(a.SetText(""), 0u);
        EXPECT_EQ(b.SetText("12345"), 0u);
    }
    EXPECT_EQ(budget.liveBytes, 0u);  // released with the variables
    SetScriptStringBudget(old);
}

}  // namespace
