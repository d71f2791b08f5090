// dcsrun's console operator, with files in place of the terminal.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "script/ScriptValue.h"

// host/console is dcsrun's, not the core's: compiled in here for its tests.
#include "host/console/ConsolePrompt.cpp"
#ifdef _WIN32
#include "host/console/win32/ConsoleTerminal.cpp"
#else
#include "host/console/posix/ConsoleTerminal.cpp"
#endif

namespace {

// A console whose input is `typed` and whose output is kept.
class CTypedConsole {
public:
    explicit CTypedConsole(const std::string& typed, bool batch = false) {
        m_in = tmpfile();
        m_out = tmpfile();
        if (m_in) {
            fwrite(typed.data(), 1, typed.size(), m_in);
            rewind(m_in);
        }
        m_prompt = new CConsolePrompt(batch, m_in, m_out);
    }
    ~CTypedConsole() {
        delete m_prompt;
        if (m_in) fclose(m_in);
        if (m_out) fclose(m_out);
    }
    bool Ready() const { return m_in && m_out; }
    CConsolePrompt& Prompt() { return *m_prompt; }
    std::string Shown() {
        std::string text;
        rewind(m_out);
        char buffer[512];
        size_t n;
        while ((n = fread(buffer, 1, sizeof buffer, m_out)) > 0) text.append(buffer, n);
        return text;
    }

private:
    FILE* m_in = nullptr;
    FILE* m_out = nullptr;
    CConsolePrompt* m_prompt = nullptr;
};

TOPERATORNUMBERQUESTION Question(uint32_t type, int64_t minimum, int64_t maximum, int64_t initial) {
    return {"Cap", "How many?", type, (uint64_t)minimum, (uint64_t)maximum, (uint64_t)initial};
}

TEST(BuiltinConsolePrompt, NumberIsAskedAgainUntilItFits) {
    CTypedConsole console("abc\n25\r\n -3\n12xyz\n");
    ASSERT_TRUE(console.Ready());
    uint64_t value = 0;
    EXPECT_EQ(console.Prompt().AskNumber(Question(SCRIPT_TYPE_INT32, -2, 20, 5), &value), OPERATOR_ANSWER_OK);
    EXPECT_EQ(value, 12u);
    std::string shown = console.Shown();
    EXPECT_NE(shown.find("[Cap] How many?\n"), std::string::npos) << shown;
    EXPECT_NE(shown.find("Number from -2 to 20 [5]"), std::string::npos) << shown;
    EXPECT_NE(shown.find("Not a number.\n"), std::string::npos) << shown;
    EXPECT_NE(shown.find("Error: Value must be <= 20\n"), std::string::npos) << shown;
    EXPECT_NE(shown.find("Error: Value must be >= -2\n"), std::string::npos) << shown;
}

TEST(BuiltinConsolePrompt, EnterKeepsDotAndEndOfInputCancel) {
    uint64_t value = 0;
    {
        CTypedConsole console("\n");
        EXPECT_EQ(console.Prompt().AskNumber(Question(SCRIPT_TYPE_UINT64, 0, 100, 42), &value), OPERATOR_ANSWER_OK);
        EXPECT_EQ(value, 42u);
    }
    {
        CTypedConsole console(".\n");
        EXPECT_EQ(console.Prompt().AskNumber(Question(SCRIPT_TYPE_UINT32, 0, 100, 42), &value),
                  OPERATOR_ANSWER_CANCEL);
    }
    {
        CTypedConsole console("");
        std::string text;
        EXPECT_EQ(console.Prompt().AskString("C", "P", "init", &text), OPERATOR_ANSWER_CANCEL);
    }
    {
        CTypedConsole console("\nnew text\n");
        std::string text;
        EXPECT_EQ(console.Prompt().AskString("C", "P", "init", &text), OPERATOR_ANSWER_OK);
        EXPECT_EQ(text, "init");
        EXPECT_EQ(console.Prompt().AskString("C", "P", "init", &text), OPERATOR_ANSWER_OK);
        EXPECT_EQ(text, "new text");
    }
}

TEST(BuiltinConsolePrompt, ListShowsTheLinesAndTakesAValidNumber) {
    CTypedConsole console("3\n-1\n2\n");
    uint32_t index = 0;
    EXPECT_EQ(console.Prompt().AskListItem("C", "Pick", {"one", "two\tx", "three"}, 1, &index),
              OPERATOR_ANSWER_OK);
    EXPECT_EQ(index, 2u);
    std::string shown = console.Shown();
    EXPECT_NE(shown.find("   0: one\n*  1: two\\tx\n   2: three\n"), std::string::npos) << shown;
    EXPECT_NE(shown.find("Error: Value must be <= 2\n"), std::string::npos) << shown;
}

TEST(BuiltinConsolePrompt, BatchAnswersCancelWithOneLineEach) {
    CTypedConsole console("15\n", true);
    uint64_t value = 7;
    std::string text = "kept";
    uint32_t index = 9;
    EXPECT_EQ(console.Prompt().AskNumber(Question(SCRIPT_TYPE_UINT32, 0, 20, 5), &value), OPERATOR_ANSWER_CANCEL);
    EXPECT_EQ(console.Prompt().AskString("C", "Name \"x\"\n", "d", &text), OPERATOR_ANSWER_CANCEL);
    EXPECT_EQ(console.Prompt().AskListItem("C", "Pick", {"a"}, 0, &index), OPERATOR_ANSWER_CANCEL);
    console.Prompt().ShowMessage("Note", "done");
    EXPECT_EQ(console.Shown(),
              "dcsrun: userinputdword \"How many?\": no operator (batch), answered Cancel\n"
              "dcsrun: userinputstring \"Name \\\"x\\\"\\n\": no operator (batch), answered Cancel\n"
              "dcsrun: userlistinput \"Pick\": no operator (batch), answered Cancel\n"
              "dcsrun: messagebox \"Note\": \"done\" (batch, not waited for)\n");
    EXPECT_TRUE(console.Prompt().IsBatch());
}

}  // namespace
