// dcsrun's operator: the console, or nobody in batch mode.
#include "host/console/ConsolePrompt.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "host/console/ConsoleTerminal.h"
#include "script/ScriptValue.h"
#include "scriptrt/UserInputFuncs.h"
#include "util/EscapedString.h"

namespace {

// Caption, prompt and message texts on one console line, in the escaped-string
// syntax (so that a quote or a line break cannot end the line early).
std::string OneLine(const char* text) {
    return text ? ondutil::EscapeForDisplay(text, strlen(text), true, true) : std::string();
}

const char* NumberFunction(uint32_t type) {
    switch (type) {
    case SCRIPT_TYPE_INT32: return "userinputint32";
    case SCRIPT_TYPE_UINT64: return "userinputuint64";
    case SCRIPT_TYPE_INT64: return "userinputint64";
    default: return "userinputdword";
    }
}

bool IsCancel(const std::string& line) { return line == "."; }

}  // namespace

CConsolePrompt::CConsolePrompt(bool batchRequested)
    : m_batch(batchRequested || !ConsoleInputIsTerminal()), m_input(stdin), m_output(stderr) {}

CConsolePrompt::CConsolePrompt(bool batch, FILE* input, FILE* output)
    : m_batch(batch), m_input(input), m_output(output) {}

bool ReadConsoleLine(FILE* input, std::string* line) {
    line->clear();
    char buffer[256];
    bool any = false;
    while (fgets(buffer, sizeof buffer, input)) {
        any = true;
        line->append(buffer);
        if (!line->empty() && line->back() == '\n') break;
    }
    while (!line->empty() && (line->back() == '\n' || line->back() == '\r')) line->pop_back();
    return any;
}

void CConsolePrompt::Write(const std::string& text) {
    fputs(text.c_str(), m_output);
    fflush(m_output);
}

void CConsolePrompt::BatchNote(const char* function, const char* prompt) {
    Write(std::string("dcsrun: ") + function + " \"" + OneLine(prompt) +
          "\": no operator (batch), answered Cancel\n");
}

void CConsolePrompt::ShowMessage(const char* caption, const char* text) {
    if (m_batch) {
        Write("dcsrun: messagebox \"" + OneLine(caption) + "\": \"" + OneLine(text) +
              "\" (batch, not waited for)\n");
        return;
    }
    Write(std::string("[") + OneLine(caption) + "] " + (text ? text : "") + "\nPress Enter to go on: ");
    std::string line;
    (void)ReadLine(&line);
}

EOPERATORANSWER CConsolePrompt::AskNumber(const TOPERATORNUMBERQUESTION& question, uint64_t* value) {
    if (m_batch) {
        BatchNote(NumberFunction(question.type), question.prompt);
        return OPERATOR_ANSWER_CANCEL;
    }
    const std::string shown = UserInputFormatNumber(question.type, question.initial);
    Write("[" + OneLine(question.caption) + "] " + OneLine(question.prompt) + "\n");
    for (;;) {
        Write("Number from " + UserInputFormatNumber(question.type, question.minimum) + " to " +
              UserInputFormatNumber(question.type, question.maximum) + " [" + shown +
              "] (\".\" cancels): ");
        std::string line;
        if (!ReadLine(&line) || IsCancel(line)) return OPERATOR_ANSWER_CANCEL;
        if (line.empty()) line = shown;
        std::string message;
        switch (UserInputCheckNumber(line.c_str(), question.type, question.minimum, question.maximum,
                                     value, &message)) {
        case USERINPUT_CHECK_OK: return OPERATOR_ANSWER_OK;
        case USERINPUT_CHECK_NOT_A_NUMBER: Write("Not a number.\n"); break;
        default: Write("Error: " + message + "\n"); break;
        }
    }
}

EOPERATORANSWER CConsolePrompt::AskString(const char* caption, const char* prompt,
                                          const std::string& initial, std::string* value) {
    if (m_batch) {
        BatchNote("userinputstring", prompt);
        return OPERATOR_ANSWER_CANCEL;
    }
    Write("[" + OneLine(caption) + "] " + OneLine(prompt) + "\nText [" + OneLine(initial.c_str()) +
          "] (\".\" cancels): ");
    std::string line;
    if (!ReadLine(&line) || IsCancel(line)) return OPERATOR_ANSWER_CANCEL;
    *value = line.empty() ? initial : line;
    return OPERATOR_ANSWER_OK;
}

EOPERATORANSWER CConsolePrompt::AskListItem(const char* caption, const char* prompt,
                                            const std::vector<std::string>& items,
                                            uint32_t initialIndex, uint32_t* index) {
    if (m_batch) {
        BatchNote("userlistinput", prompt);
        return OPERATOR_ANSWER_CANCEL;
    }
    if (items.empty()) return OPERATOR_ANSWER_CANCEL;  // nothing to pick
    std::string text = "[" + OneLine(caption) + "] " + OneLine(prompt) + "\n";
    for (size_t i = 0; i < items.size(); ++i) {
        char number[32];
        snprintf(number, sizeof number, "%c%3zu: ", i == initialIndex ? '*' : ' ', i);
        text += number + OneLine(items[i].c_str()) + "\n";
    }
    Write(text);
    const uint64_t last = items.size() - 1;
    for (;;) {
        Write("Line number [" + std::to_string(initialIndex) + "] (\".\" cancels): ");
        std::string line;
        if (!ReadLine(&line) || IsCancel(line)) return OPERATOR_ANSWER_CANCEL;
        if (line.empty()) line = std::to_string(initialIndex);
        uint64_t chosen = 0;
        std::string message;
        EUSERINPUTCHECK check =
            UserInputCheckNumber(line.c_str(), SCRIPT_TYPE_UINT64, 0, last, &chosen, &message);
        if (check == USERINPUT_CHECK_OK) {
            *index = (uint32_t)chosen;
            return OPERATOR_ANSWER_OK;
        }
        Write(check == USERINPUT_CHECK_NOT_A_NUMBER ? "Not a number.\n" : "Error: " + message + "\n");
    }
}
