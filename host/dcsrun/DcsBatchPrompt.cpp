#include "host/dcsrun/DcsBatchPrompt.h"

#include <cstdio>
#include <cstring>

#include "host/dcsrun/DcsVariables.h"

namespace {

void Note(const char* kind, const char* caption, const char* prompt) {
    std::string c = DcsEscapeText(caption ? caption : "", caption ? strlen(caption) : 0);
    std::string p = DcsEscapeText(prompt ? prompt : "", prompt ? strlen(prompt) : 0);
    fprintf(stderr, "dcsrun: batch: %s \"%s\" (%s) answered as Cancel\n", kind, c.c_str(), p.c_str());
    fflush(stderr);
}

}  // namespace

void CDcsBatchPrompt::ShowMessage(const char* caption, const char* text) {
    std::string c = DcsEscapeText(caption ? caption : "", caption ? strlen(caption) : 0);
    std::string t = DcsEscapeText(text ? text : "", text ? strlen(text) : 0);
    fprintf(stderr, "dcsrun: message \"%s\": %s\n", c.c_str(), t.c_str());
    fflush(stderr);
}

EOPERATORANSWER CDcsBatchPrompt::AskNumber(const TOPERATORNUMBERQUESTION& question, uint64_t*) {
    Note("number question", question.caption, question.prompt);
    return OPERATOR_ANSWER_CANCEL;
}

EOPERATORANSWER CDcsBatchPrompt::AskString(const char* caption, const char* prompt,
                                           const std::string&, std::string*) {
    Note("text question", caption, prompt);
    return OPERATOR_ANSWER_CANCEL;
}

EOPERATORANSWER CDcsBatchPrompt::AskListItem(const char* caption, const char* prompt,
                                             const std::vector<std::string>&, uint32_t,
                                             uint32_t*) {
    Note("list question", caption, prompt);
    return OPERATOR_ANSWER_CANCEL;
}
