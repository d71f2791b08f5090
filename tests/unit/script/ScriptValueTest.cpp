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

// left op right into a fresh result, numbers only.
TEST(ScriptValue, BinaryOperatorTable) {
    const uint32_t U32 = SCRIPT_TYPE_UINT32, S32 = SCRIPT_TYPE_INT32, U64 = SCRIPT_TYPE_UINT64,
                   S64 = SCRIPT_TYPE_INT64;
    const uint64_t kMin64 = 1ull << 63;
    const struct {
        const char* op;
        uint32_t leftType;
        uint64_t left;
        uint32_t rightType;
        uint64_t right;
        uint32_t err, type;
        uint64_t result;
    } cases[] = {
        // result types: the wider, signed when either is; shifts keep the left type
        {"+", U32, 1, S32, 1, 0, S32, 2},
        {"+", U32, 1, S64, 1, 0, S64, 2},
        {"*", U64, 1, S32, 1, 0, S64, 1},
        {"<<", U32, 1, S64, 1, 0, U32, 2},
        {"==", U64, 1, U64, 1, 0, U64, 1},
        // the signed variant when either operand is signed
        {"<", U32, 0xFFFFFFFF, S32, 0, 0, S32, 0},
        {"<", U64, kMin64, S32, 0, 0, S64, 1},  // the bit pattern read as negative
        {"<", U64, kMin64, U32, 0, 0, U64, 0},
        {"/", S32, (uint64_t)-7, S32, 2, 0, S32, (uint64_t)-3},  // toward zero
        {"%", S32, (uint64_t)-7, S32, 2, 0, S32, (uint64_t)-1},  // the sign of the left operand
        // shifts both ways and beyond the width
        {"<<", S32, 1, S32, 64, 0, S32, 0},
        {"<<", S32, 1, S32, (uint64_t)-1, 0, S32, 0},
        {">>", S32, (uint64_t)-8, S32, 1, 0, S32, (uint64_t)-4},
        {">>", S32, (uint64_t)-8, S32, 70, 0, S32, (uint64_t)-1},
        {">>", U64, (uint64_t)-8, S32, 1, 0, U64, 0x7FFFFFFFFFFFFFFCull},  // unsigned left: logical
        {"<<", S32, (uint64_t)-8, S32, (uint64_t)-70, 0, S32, (uint64_t)-1},  // all sign bits
        {">>", S32, 1, S32, (uint64_t)-2, 0, S32, 4},  // a negative count shifts the other way
        {"<<", U64, (uint64_t)-8, S32, (uint64_t)-70, 0, U64, 0},
        // division by zero and the wrapping case
        {"/", S32, 7, S32, 0, SCRIPT_ERR_DIVZERO, 0, 0},
        {"%", S32, 7, S32, 0, SCRIPT_ERR_DIVZERO, 0, 0},
        {"/", S64, kMin64, S64, ~0ull, 0, S64, kMin64},
        {"%", S64, kMin64, S64, ~0ull, 0, S64, 0},
        {"/", U64, kMin64, U64, ~0ull, 0, U64, 0},  // both unsigned: an ordinary quotient
    };
    for (const auto& c : cases) {
        TVar l(c.leftType, c.left), r(c.rightType, c.right);
        CONXScriptVariable result;
        EXPECT_EQ(result.ApplyBinaryOperator(c.op, &l, &r), c.err) << c.left << c.op << c.right;
        if (c.err) continue;
        EXPECT_EQ(result.GetType(), c.type) << c.left << c.op << c.right;
        EXPECT_EQ(result.GetNumber(), c.result) << c.left << c.op << c.right;
    }
    // A typed result keeps its type.
    TVar typed(U32, 0), a(S32, 1), b(S64, 1);
    EXPECT_EQ(typed.ApplyBinaryOperator("-", &a, &b), 0u);
    EXPECT_EQ(typed.GetType(), U32);
    TVar x(S32, 5), zero(S32, 0), min64(S64, kMin64), m1(S64, ~0ull);
    EXPECT_EQ(x.ApplyAssignment("/=", &zero), SCRIPT_ERR_DIVZERO);
    EXPECT_EQ(x.GetNumber(), 5u);
    EXPECT_EQ(min64.ApplyAssignment("%=", &m1), 0u);
    EXPECT_EQ(min64.GetNumber(), 0u);
}

TEST(ScriptValue, StringOperators) {
    TVar ab(std::string("ab")), cd(std::string("cd")), b(std::string("b"));
    TVar five(SCRIPT_TYPE_INT32, 5);
    CONXScriptVariable cat, num, eq, other;
    EXPECT_EQ(cat.ApplyBinaryOperator("+", &ab, &cd), 0u);
    EXPECT_EQ(cat.GetText(), "abcd");
    EXPECT_EQ(num.ApplyBinaryOperator("+", &ab, &five), 0u);  // a number adds its (empty) text
    EXPECT_EQ(num.GetText(), "ab");
    EXPECT_EQ(eq.ApplyBinaryOperator("==", &ab, &ab), 0u);
    EXPECT_EQ(eq.GetType(), (uint32_t)SCRIPT_TYPE_UINT32);
    EXPECT_EQ(eq.GetNumber(), 1u);
    EXPECT_EQ(other.ApplyBinaryOperator("<", &ab, &b), SCRIPT_ERR_SYNTAX);
    EXPECT_EQ(other.ApplyBinaryOperator("+", &five, &ab), SCRIPT_ERR_TYPE);
    // The comparison always lands in the 32-bit unsigned field.
    TVar wide(SCRIPT_TYPE_INT64, 0);
    EXPECT_EQ(wide.ApplyBinaryOperator("==", &ab, &ab), 0u);
    EXPECT_EQ(wide.GetNumber(), 0u);
}

TEST(ScriptValue, AssignmentOperators) {
    TVar s(std::string("ab")), t(std::string("cd"));
    EXPECT_EQ(s.ApplyAssignment("+=", &t), 0u);
    EXPECT_EQ(s.GetText(), "abcd");
    EXPECT_EQ(s.ApplyAssignment("+=", &s), 0u);  // onto itself
    EXPECT_EQ(s.GetText(), "abcdabcd");
    EXPECT_EQ(s.ApplyAssignment("-=", &t), SCRIPT_ERR_SYNTAX);
    TVar n(SCRIPT_TYPE_INT32, 1);
    EXPECT_EQ(n.ApplyAssignment("=", &t), SCRIPT_ERR_TYPE);
    EXPECT_EQ(n.ApplyAssignment("+", &n), SCRIPT_ERR_SYNTAX);
    TVar wide(SCRIPT_TYPE_INT64, 0x100000000ull);
    EXPECT_EQ(n.ApplyAssignment("+=", &wide), 0u);  // keeps only the low 32 bits
    EXPECT_EQ(n.GetNumber(), 1u);
    TVar u(SCRIPT_TYPE_UINT32, 0), m1(SCRIPT_TYPE_INT32, ~0ull);
    EXPECT_EQ(u.ApplyAssignment("=", &m1), 0u);
    EXPECT_EQ(u.GetNumber(), 0xFFFFFFFFu);
    CONXScriptVariable fresh;
    EXPECT_EQ(fresh.ApplyAssignment("-=", &m1), 0u);  // takes the type, then 0 - (-1)
    EXPECT_EQ(fresh.GetNumber(), 1u);
}

TEST(ScriptValue, UnaryOperators) {
    TVar five(SCRIPT_TYPE_UINT32, 5), zero(SCRIPT_TYPE_INT64, 0);
    CONXScriptVariable neg, inv, not0, bad;
    EXPECT_EQ(neg.ApplyUnaryOperator("-", &five), 0u);
    EXPECT_EQ(neg.GetType(), (uint32_t)SCRIPT_TYPE_UINT32);
    EXPECT_EQ(neg.GetNumber(), 0xFFFFFFFBu);
    EXPECT_EQ(inv.ApplyUnaryOperator("~", &zero), 0u);
    EXPECT_EQ(inv.GetNumber(), ~0ull);
    EXPECT_EQ(not0.ApplyUnaryOperator("!", &zero), 0u);
    EXPECT_EQ(not0.GetNumber(), 1u);
    TVar s(std::string("x"));
    EXPECT_EQ(bad.ApplyUnaryOperator("-", &s), SCRIPT_ERR_TYPE);
    EXPECT_EQ(bad.ApplyUnaryOperator("*", &five), SCRIPT_ERR_SYNTAX);
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
