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

// Evaluates left op right into a fresh result.
struct TBin {
    uint32_t err;
    CONXScriptVariable result;
};
void Binary(TBin* out, const char* op, CONXScriptVariable* l, CONXScriptVariable* r) {
    out->err = out->result.ApplyBinaryOperator(op, l, r);
}

TEST(ScriptValue, BinaryResultTypes) {
    TVar u32(SCRIPT_TYPE_UINT32, 1), s32(SCRIPT_TYPE_INT32, 1), u64(SCRIPT_TYPE_UINT64, 1),
        s64(SCRIPT_TYPE_INT64, 1);
    TBin b;
    Binary(&b, "+", &u32, &s32);
    EXPECT_EQ(b.result.GetType(), (uint32_t)SCRIPT_TYPE_INT32);
    TBin c;
    Binary(&c, "+", &u32, &s64);
    EXPECT_EQ(c.result.GetType(), (uint32_t)SCRIPT_TYPE_INT64);
    TBin d;
    Binary(&d, "*", &u64, &s32);
    EXPECT_EQ(d.result.GetType(), (uint32_t)SCRIPT_TYPE_INT64);
    TBin e;
    Binary(&e, "<<", &u32, &s64);  // shifts keep the left type
    EXPECT_EQ(e.result.GetType(), (uint32_t)SCRIPT_TYPE_UINT32);
    TBin f;
    Binary(&f, "==", &u64, &u64);
    EXPECT_EQ(f.result.GetType(), (uint32_t)SCRIPT_TYPE_UINT64);
    EXPECT_EQ(f.result.GetNumber(), 1u);
    // A typed result keeps its type.
    TVar typed(SCRIPT_TYPE_UINT32, 0);
    EXPECT_EQ(typed.ApplyBinaryOperator("-", &s32, &s64), 0u);
    EXPECT_EQ(typed.GetType(), (uint32_t)SCRIPT_TYPE_UINT32);
}

TEST(ScriptValue, SignedVariantWhenEitherOperandIsSigned) {
    TVar d(SCRIPT_TYPE_UINT32, 0xFFFFFFFF), zero(SCRIPT_TYPE_INT32, 0), uzero(SCRIPT_TYPE_UINT32, 0);
    TBin lt;
    Binary(&lt, "<", &d, &zero);  // signed compare of 4294967295 and 0
    EXPECT_EQ(lt.result.GetNumber(), 0u);
    TVar big(SCRIPT_TYPE_UINT64, 1ull << 63);
    TBin lt2;
    Binary(&lt2, "<", &big, &zero);  // bit pattern read as negative
    EXPECT_EQ(lt2.result.GetNumber(), 1u);
    TBin lt3;
    Binary(&lt3, "<", &big, &uzero);
    EXPECT_EQ(lt3.result.GetNumber(), 0u);
    TVar m7(SCRIPT_TYPE_INT32, (uint64_t)-7), two(SCRIPT_TYPE_INT32, 2);
    TBin q, r;
    Binary(&q, "/", &m7, &two);
    Binary(&r, "%", &m7, &two);
    EXPECT_EQ((int64_t)q.result.GetNumber(), -3);  // toward zero
    EXPECT_EQ((int64_t)r.result.GetNumber(), -1);  // sign of the left operand
}

TEST(ScriptValue, ShiftsBothWaysAndBeyondTheWidth) {
    TVar one(SCRIPT_TYPE_INT32, 1), c64(SCRIPT_TYPE_INT32, 64), cm1(SCRIPT_TYPE_INT32, (uint64_t)-1),
        m8(SCRIPT_TYPE_INT32, (uint64_t)-8), c1(SCRIPT_TYPE_INT32, 1), c70(SCRIPT_TYPE_INT32, 70),
        um8(SCRIPT_TYPE_UINT64, (uint64_t)-8), cm70(SCRIPT_TYPE_INT32, (uint64_t)-70),
        cm2(SCRIPT_TYPE_INT32, (uint64_t)-2);
    TBin a, b, c, d, e, f, g, h;
    Binary(&a, "<<", &one, &c64);
    EXPECT_EQ(a.result.GetNumber(), 0u);
    Binary(&b, "<<", &one, &cm1);
    EXPECT_EQ(b.result.GetNumber(), 0u);
    Binary(&c, ">>", &m8, &c1);
    EXPECT_EQ((int64_t)c.result.GetNumber(), -4);
    Binary(&d, ">>", &m8, &c70);
    EXPECT_EQ((int64_t)d.result.GetNumber(), -1);
    Binary(&e, ">>", &um8, &c1);  // unsigned left: logical
    EXPECT_EQ(e.result.GetNumber(), 0x7FFFFFFFFFFFFFFCull);
    Binary(&f, "<<", &m8, &cm70);  // signed left, count beyond: all sign bits
    EXPECT_EQ((int64_t)f.result.GetNumber(), -1);
    Binary(&g, ">>", &one, &cm2);  // negative count shifts left
    EXPECT_EQ(g.result.GetNumber(), 4u);
    Binary(&h, "<<", &um8, &cm70);
    EXPECT_EQ(h.result.GetNumber(), 0u);
}

TEST(ScriptValue, DivisionByZeroAndTheWrappingCase) {
    TVar seven(SCRIPT_TYPE_INT32, 7), zero(SCRIPT_TYPE_INT32, 0);
    TBin a, b;
    Binary(&a, "/", &seven, &zero);
    EXPECT_EQ(a.err, SCRIPT_ERR_DIVZERO);
    Binary(&b, "%", &seven, &zero);
    EXPECT_EQ(b.err, SCRIPT_ERR_DIVZERO);
    TVar x(SCRIPT_TYPE_INT32, 5);
    EXPECT_EQ(x.ApplyAssignment("/=", &zero), SCRIPT_ERR_DIVZERO);
    EXPECT_EQ(x.GetNumber(), 5u);
    TVar min64(SCRIPT_TYPE_INT64, 1ull << 63), m1(SCRIPT_TYPE_INT64, ~0ull);
    TVar umin64(SCRIPT_TYPE_UINT64, 1ull << 63), um1(SCRIPT_TYPE_UINT64, ~0ull);
    TBin c, d, e;
    Binary(&c, "/", &min64, &m1);
    EXPECT_EQ(c.err, 0u);
    EXPECT_EQ(c.result.GetNumber(), 1ull << 63);
    Binary(&d, "%", &min64, &m1);
    EXPECT_EQ(d.result.GetNumber(), 0u);
    Binary(&e, "/", &umin64, &um1);  // both unsigned: an ordinary unsigned quotient
    EXPECT_EQ(e.result.GetNumber(), 0u);
    EXPECT_EQ(min64.ApplyAssignment("%=", &m1), 0u);
    EXPECT_EQ(min64.GetNumber(), 0u);
}

TEST(ScriptValue, StringOperators) {
    TVar ab(std::string("ab")), cd(std::string("cd")), b(std::string("b"));
    TVar five(SCRIPT_TYPE_INT32, 5);
    TBin cat, num, eq, lt, rev;
    Binary(&cat, "+", &ab, &cd);
    EXPECT_EQ(cat.result.GetText(), "abcd");
    Binary(&num, "+", &ab, &five);  // a number adds its (empty) text
    EXPECT_EQ(num.err, 0u);
    EXPECT_EQ(num.result.GetText(), "ab");
    Binary(&eq, "==", &ab, &ab);
    EXPECT_EQ(eq.result.GetType(), (uint32_t)SCRIPT_TYPE_UINT32);
    EXPECT_EQ(eq.result.GetNumber(), 1u);
    Binary(&lt, "<", &ab, &b);
    EXPECT_EQ(lt.err, SCRIPT_ERR_SYNTAX);
    Binary(&rev, "+", &five, &ab);
    EXPECT_EQ(rev.err, SCRIPT_ERR_TYPE);
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
