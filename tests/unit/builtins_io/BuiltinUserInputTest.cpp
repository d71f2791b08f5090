// The user-input built-ins with an operator double: what is asked, the
// results for OK and Cancel, limits, clamping, and runs without an operator.
#include <gtest/gtest.h>

#include <string>

#include "BuiltinIoTestRun.h"
#include "script/ScriptErrors.h"

namespace {

TBUILTINIORUN Ask(const std::string& text, CONXOperatorPrompt_0* op) {
    return BuiltinIoRun(text, nullptr, "", op);
}

TEST(BuiltinMessageBox, CaptionFirstThenText) {
    CTestOperator op;
    TBUILTINIORUN run = Ask("messagebox(\"Title\", \"Body\");", &op);
    EXPECT_EQ(run.code, 0u);
    EXPECT_EQ(op.calls, 1);
    EXPECT_EQ(op.caption, "Title");
    EXPECT_EQ(op.message, "Body");
}

TEST(BuiltinUserInputNum, DefaultIsClampedForTheQuestionButReturnedOnCancel) {
    CTestOperator op;
    op.answer = OPERATOR_ANSWER_CANCEL;
    TBUILTINIORUN run = Ask("var dword c; c = 7; print(userinputdword(\"T\", \"P\", 50, 10, 20, &c), \",\", c);", &op);
    ASSERT_EQ(run.code, 0u) << run.output;
    EXPECT_EQ(run.output, "50,0");
    EXPECT_EQ(op.question.initial, 20u);
    EXPECT_EQ(op.question.minimum, 10u);
    EXPECT_EQ(op.question.maximum, 20u);
    EXPECT_EQ(op.question.type, (uint32_t)SCRIPT_TYPE_UINT32);
    EXPECT_EQ(op.caption, "T");
    EXPECT_EQ(op.prompt, "P");

    // Below the minimum: raised to it.
    run = Ask("print(userinputint32(\"T\", \"\", -100, -5, 5));", &op);
    EXPECT_EQ(run.output, "-100");
    EXPECT_EQ((int64_t)op.question.initial, -5);
    EXPECT_EQ(op.prompt, "Enter information");  // the wording for an empty prompt
}

TEST(BuiltinUserInputNum, OkGivesTheAnswerWithTheFunctionsType) {
    CTestOperator op;
    op.number = 15;
    TBUILTINIORUN run = Ask("var dword c; print(userinputdword(\"T\", \"P\", 50, 10, 20, &c), \",\", c);", &op);
    EXPECT_EQ(run.output, "15,1");

    op.number = (uint64_t)(int64_t)-3;
    EXPECT_EQ(Ask("print(userinputint32(\"T\", \"P\", 0));", &op).output, "-3");
    EXPECT_EQ(op.question.minimum, (uint64_t)(int64_t)INT32_MIN);
    EXPECT_EQ(op.question.maximum, (uint64_t)INT32_MAX);
    EXPECT_EQ(Ask("print(userinputint64(\"T\", \"P\", 0));", &op).output, "-3");
    EXPECT_EQ(op.question.minimum, (uint64_t)INT64_MIN);
    op.number = UINT64_MAX;
    EXPECT_EQ(Ask("print(userinputuint64(\"T\", \"P\", 0));", &op).output, "18446744073709551615");
    EXPECT_EQ(op.question.maximum, UINT64_MAX);
    op.number = 4294967295u;
    EXPECT_EQ(Ask("print(userinputuint32(\"T\", \"P\", 0));", &op).output, "4294967295");
    EXPECT_EQ(op.question.maximum, 4294967295u);
}

TEST(BuiltinUserInputNum, LimitsInTheTypesWidthAndSign) {
    CTestOperator op;
    // Inverted limits fail before anything is asked.
    EXPECT_EQ(Ask("userinputint32(\"T\", \"P\", 0, 5, 1);", &op).code, SCRIPT_ERR_SYSFUNC);
    EXPECT_EQ(op.calls, 0);
    // -1 .. 1 is fine signed, inverted unsigned (-1 is 4294967295 there).
    op.number = 0;
    EXPECT_EQ(Ask("print(userinputint32(\"T\", \"P\", 0, -1, 1));", &op).code, 0u);
    EXPECT_EQ(Ask("userinputdword(\"T\", \"P\", 0, -1, 1);", &op).code, SCRIPT_ERR_SYSFUNC);
    // Limits are cut to the type's width: 0x100000005 is 5 for a dword.
    op.answer = OPERATOR_ANSWER_CANCEL;
    EXPECT_EQ(Ask("userinputdword(\"T\", \"P\", 7, 0x100000005, 9);", &op).code, 0u);
    EXPECT_EQ(op.question.minimum, 5u);
    EXPECT_EQ(op.question.initial, 7u);
    EXPECT_EQ(Ask("userinputint64(\"T\", \"P\", 0, 0x100000005, 9);", &op).code, SCRIPT_ERR_SYSFUNC);
    // Equal limits are allowed.
    EXPECT_EQ(Ask("print(userinputuint64(\"T\", \"P\", 1, 4, 4));", &op).output, "1");
    EXPECT_EQ(op.question.initial, 4u);
}

TEST(BuiltinUserInputNum, AnOkOutsideTheLimitsCountsAsCancel) {
    CTestOperator op;
    op.number = 25;
    EXPECT_EQ(Ask("var dword c; c = 9; print(userinputdword(\"T\", \"P\", 50, 10, 20, &c), \",\", c);", &op).output,
              "50,0");
}

TEST(BuiltinUserInputString, OkAndCancel) {
    CTestOperator op;
    op.text = std::string("ne\0w", 4);
    TBUILTINIORUN run = Ask("var dword c; print(userinputstring(\"T\", \"P\", \"old\", &c), \",\", c);", &op);
    EXPECT_EQ(run.output, "ne\\0w,1");
    EXPECT_EQ(op.initialText, "old");
    op.answer = OPERATOR_ANSWER_CANCEL;
    run = Ask("var dword c; c = 5; print(userinputstring(\"T\", \"\", \"old\", &c), \",\", c);", &op);
    EXPECT_EQ(run.output, "old,0");
    EXPECT_EQ(op.prompt, "Enter information");
}

TEST(BuiltinUserListInput, ItemsSelectionAndResults) {
    CTestOperator op;
    op.index = 2;
    TBUILTINIORUN run = Ask("var dword c; print(userlistinput(\"T\", \"P\", \"one\\0two\\0three\\0\", 1, &c), \",\", c);", &op);
    ASSERT_EQ(run.code, 0u) << run.output;
    EXPECT_EQ(run.output, "2,1");
    EXPECT_EQ(op.items, (std::vector<std::string>{"one", "two", "three"}));
    EXPECT_EQ(op.initialIndex, 1u);

    // Text after the last NUL is an item too; a default outside the list selects the first line.
    op.answer = OPERATOR_ANSWER_CANCEL;
    run = Ask("var dword c; c = 4; print(userlistinput(\"T\", \"\", \"a\\0b\", 9, &c), \",\", c);", &op);
    EXPECT_EQ(run.output, "-1,0");
    EXPECT_EQ(op.items, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(op.initialIndex, 0u);
    EXPECT_EQ(op.prompt, "Select an item");

    // An index past the list counts as Cancel; an empty list is not asked at all.
    op.answer = OPERATOR_ANSWER_OK;
    op.index = 2;
    EXPECT_EQ(Ask("print(userlistinput(\"T\", \"P\", \"a\\0b\", 0));", &op).output, "-1");
    int calls = op.calls;
    EXPECT_EQ(Ask("print(userlistinput(\"T\", \"P\", \"\", 0));", &op).output, "-1");
    EXPECT_EQ(op.calls, calls);
}

TEST(BuiltinUserInputCheck, ReadsLikeTheScannerAndNamesTheLimit) {
    uint64_t v = 0;
    std::string message;
    EXPECT_EQ(UserInputCheckNumber("  15abc", SCRIPT_TYPE_UINT32, 10, 20, &v, &message), USERINPUT_CHECK_OK);
    EXPECT_EQ(v, 15u);
    EXPECT_EQ(UserInputCheckNumber("25", SCRIPT_TYPE_UINT32, 10, 20, &v, &message), USERINPUT_CHECK_TOO_LARGE);
    EXPECT_EQ(message, "Value must be <= 20");
    EXPECT_EQ(UserInputCheckNumber("-7", SCRIPT_TYPE_INT32, (uint64_t)(int64_t)-5, 5, &v, &message),
              USERINPUT_CHECK_TOO_SMALL);
    EXPECT_EQ(message, "Value must be >= -5");
    EXPECT_EQ(UserInputCheckNumber("x1", SCRIPT_TYPE_INT64, 0, 5, &v, &message), USERINPUT_CHECK_NOT_A_NUMBER);
    EXPECT_EQ(UserInputCheckNumber("", SCRIPT_TYPE_UINT32, 0, 5, &v, &message), USERINPUT_CHECK_NOT_A_NUMBER);
    EXPECT_EQ(UserInputCheckNumber("-", SCRIPT_TYPE_UINT32, 0, 5, &v, &message), USERINPUT_CHECK_NOT_A_NUMBER);
    // A minus on an unsigned type wraps as the C scanner's does; too many digits saturate.
    EXPECT_EQ(UserInputCheckNumber("-1", SCRIPT_TYPE_UINT32, 0, UINT32_MAX, &v, &message), USERINPUT_CHECK_OK);
    EXPECT_EQ(v, 4294967295u);
    EXPECT_EQ(UserInputCheckNumber("99999999999", SCRIPT_TYPE_UINT32, 0, UINT32_MAX, &v, &message),
              USERINPUT_CHECK_OK);
    EXPECT_EQ(v, 4294967295u);
    EXPECT_EQ(UserInputCheckNumber("3000000000", SCRIPT_TYPE_INT32, (uint64_t)(int64_t)INT32_MIN, INT32_MAX,
                                   &v, &message), USERINPUT_CHECK_OK);
    EXPECT_EQ((int64_t)v, INT32_MAX);
    EXPECT_EQ(UserInputCheckNumber("18446744073709551615", SCRIPT_TYPE_UINT64, 0, 10, &v, &message),
              USERINPUT_CHECK_TOO_LARGE);
    EXPECT_EQ(message, "Value must be <= 10");
    EXPECT_EQ(UserInputCheckNumber("-9223372036854775808", SCRIPT_TYPE_INT64, (uint64_t)INT64_MIN, 0, &v,
                                   &message), USERINPUT_CHECK_OK);
    EXPECT_EQ(v, (uint64_t)INT64_MIN);
    EXPECT_EQ(UserInputFormatNumber(SCRIPT_TYPE_INT64, (uint64_t)INT64_MIN), "-9223372036854775808");
}

}  // namespace
