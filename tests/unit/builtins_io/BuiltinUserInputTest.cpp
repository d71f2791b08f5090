// The user-input built-ins with an operator double: what is asked, the
// results for OK and Cancel, limits, clamping, and runs without an operator.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "BuiltinIoTestRun.h"
#include "script/ScriptErrors.h"

namespace {

TTESTRUN Ask(const std::string& text, CONXOperatorPrompt_0* op) {
    return BuiltinIoRun(text, nullptr, "", op);
}

TEST(BuiltinMessageBox, CaptionFirstThenText) {
    CTestOperator op;
    TTESTRUN run = Ask("messagebox(\"Title\", \"Body\");", &op);
    EXPECT_EQ(run.code, 0u);
    EXPECT_EQ(op.calls, 1);
    EXPECT_EQ(op.caption, "Title");
    EXPECT_EQ(op.message, "Body");
}

TEST(BuiltinUserInputNum, QuestionsAndAnswers) {
    const uint64_t kI32Min = (uint64_t)(int64_t)INT32_MIN, kI64Min = (uint64_t)INT64_MIN;
    const bool ok = true, cancel = false;
    struct {
        const char* text;
        bool ok;          // the operator's answer, with number
        uint64_t number;
        const char* output;
        uint32_t type;    // what the question holds
        uint64_t minimum, maximum, initial;
    } cases[] = {
        // The default is clamped for the question but returned on Cancel.
        {"var dword c; c = 7; print(userinputdword(\"T\", \"P\", 50, 10, 20, &c), \",\", c);", cancel, 0,
         "50,0", SCRIPT_TYPE_UINT32, 10, 20, 20},
        {"print(userinputint32(\"T\", \"\", -100, -5, 5));", cancel, 0, "-100", SCRIPT_TYPE_INT32,
         (uint64_t)-5, 5, (uint64_t)-5},
        // OK gives the answer with the function's type; without limits the type's range.
        {"var dword c; print(userinputdword(\"T\", \"P\", 50, 10, 20, &c), \",\", c);", ok, 15, "15,1",
         SCRIPT_TYPE_UINT32, 10, 20, 20},
        {"print(userinputint32(\"T\", \"P\", 0));", ok, (uint64_t)-3, "-3", SCRIPT_TYPE_INT32, kI32Min, INT32_MAX, 0},
        {"print(userinputint64(\"T\", \"P\", 0));", ok, (uint64_t)-3, "-3", SCRIPT_TYPE_INT64, kI64Min, INT64_MAX, 0},
        {"print(userinputuint64(\"T\", \"P\", 0));", ok, UINT64_MAX, "18446744073709551615", SCRIPT_TYPE_UINT64, 0,
         UINT64_MAX, 0},
        {"print(userinputuint32(\"T\", \"P\", 0));", ok, UINT32_MAX, "4294967295", SCRIPT_TYPE_UINT32, 0, UINT32_MAX, 0},
        // Limits in the type's width and sign: -1 .. 1 is fine signed; 0x100000005 is 5 for a dword.
        {"print(userinputint32(\"T\", \"P\", 0, -1, 1));", ok, 0, "0", SCRIPT_TYPE_INT32, (uint64_t)-1, 1, 0},
        {"userinputdword(\"T\", \"P\", 7, 0x100000005, 9);", cancel, 0, "", SCRIPT_TYPE_UINT32, 5, 9, 7},
        {"print(userinputuint64(\"T\", \"P\", 1, 4, 4));", cancel, 0, "1", SCRIPT_TYPE_UINT64, 4, 4, 4},
        // An OK outside the limits counts as Cancel.
        {"var dword c; c = 9; print(userinputdword(\"T\", \"P\", 50, 10, 20, &c), \",\", c);", ok, 25, "50,0",
         SCRIPT_TYPE_UINT32, 10, 20, 20},
    };
    for (const auto& c : cases) {
        CTestOperator op;
        op.answer = c.ok ? OPERATOR_ANSWER_OK : OPERATOR_ANSWER_CANCEL;
        op.number = c.number;
        TTESTRUN run = Ask(c.text, &op);
        EXPECT_EQ(run.code, 0u) << c.text << "\n" << run.output;
        EXPECT_EQ(run.output, c.output) << c.text;
        EXPECT_EQ(op.calls, 1) << c.text;
        EXPECT_EQ(op.caption, "T");
        EXPECT_EQ(op.prompt, strstr(c.text, "\"\",") ? "Enter information" : "P") << c.text;
        EXPECT_EQ(op.question.type, c.type) << c.text;
        EXPECT_EQ(op.question.minimum, c.minimum) << c.text;
        EXPECT_EQ(op.question.maximum, c.maximum) << c.text;
        EXPECT_EQ(op.question.initial, c.initial) << c.text;
    }
    // Limits the wrong way round in the type's order fail before anything is asked.
    CTestOperator op;
    for (const char* text : {"userinputint32(\"T\", \"P\", 0, 5, 1);", "userinputdword(\"T\", \"P\", 0, -1, 1);",
                             "userinputint64(\"T\", \"P\", 0, 0x100000005, 9);"})
        EXPECT_EQ(Ask(text, &op).code, SCRIPT_ERR_SYSFUNC) << text;
    EXPECT_EQ(op.calls, 0);
}

TEST(BuiltinUserInputString, OkAndCancel) {
    CTestOperator op;
    op.text = std::string("ne\0w", 4);
    TTESTRUN run = Ask("var dword c; print(userinputstring(\"T\", \"P\", \"old\", &c), \",\", c);", &op);
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
    TTESTRUN run = Ask("var dword c; print(userlistinput(\"T\", \"P\", \"one\\0two\\0three\\0\", 1, &c), \",\", c);", &op);
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
