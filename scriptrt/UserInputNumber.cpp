// The number questions: userinputdword, userinputuint32, userinputint32,
// userinputuint64, userinputint64.
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "scriptrt/OperatorPrompt.h"
#include "scriptrt/SysFuncs.h"
#include "scriptrt/UserInputFuncs.h"

namespace {

const char* const kDefaultPrompt = "Enter information";

// A 64-bit word brought into the type's width, sign-extended for the signed types.
uint64_t Narrow(uint32_t type, uint64_t value) {
    switch (type) {
    case SCRIPT_TYPE_UINT32: return (uint32_t)value;
    case SCRIPT_TYPE_INT32: return (uint64_t)(int64_t)(int32_t)(uint32_t)value;
    default: return value;
    }
}

bool Less(uint32_t type, uint64_t a, uint64_t b) {
    if (ScriptTypeIsSigned(type)) return (int64_t)a < (int64_t)b;
    return a < b;
}

void FullRange(uint32_t type, uint64_t* minimum, uint64_t* maximum) {
    switch (type) {
    case SCRIPT_TYPE_INT32: *minimum = (uint64_t)(int64_t)INT32_MIN; *maximum = INT32_MAX; break;
    case SCRIPT_TYPE_UINT64: *minimum = 0; *maximum = UINT64_MAX; break;
    case SCRIPT_TYPE_INT64: *minimum = (uint64_t)INT64_MIN; *maximum = INT64_MAX; break;
    default: *minimum = 0; *maximum = UINT32_MAX; break;
    }
}

}  // namespace

std::string UserInputFormatNumber(uint32_t type, uint64_t value) {
    char text[32];
    switch (type) {
    case SCRIPT_TYPE_INT32: snprintf(text, sizeof text, "%d", (int32_t)(uint32_t)value); break;
    case SCRIPT_TYPE_UINT64: snprintf(text, sizeof text, "%" PRIu64, value); break;
    case SCRIPT_TYPE_INT64: snprintf(text, sizeof text, "%" PRId64, (int64_t)value); break;
    default: snprintf(text, sizeof text, "%u", (uint32_t)value); break;
    }
    return text;
}

EUSERINPUTCHECK UserInputCheckNumber(const char* text, uint32_t type, uint64_t minimum,
                                     uint64_t maximum, uint64_t* value, std::string* message) {
    // The C scanner's conversions: blanks skipped, a sign allowed, trailing
    // text ignored; out-of-range numbers saturate, a minus on an unsigned
    // type wraps.
    char* end = nullptr;
    uint64_t read = 0;
    errno = 0;
    if (ScriptTypeIsSigned(type)) {
        long long v = strtoll(text, &end, 10);
        if (type == SCRIPT_TYPE_INT32) v = v < INT32_MIN ? INT32_MIN : v > INT32_MAX ? INT32_MAX : v;
        read = (uint64_t)(int64_t)v;
    } else if (type == SCRIPT_TYPE_UINT64) {
        read = strtoull(text, &end, 10);
    } else {
        const char* p = text;
        while (*p == ' ' || (*p >= '\t' && *p <= '\r')) ++p;
        bool negative = *p == '-';
        if (*p == '-' || *p == '+') ++p;
        unsigned long long magnitude = (*p >= '0' && *p <= '9') ? strtoull(p, &end, 10) : 0;
        if (!end) end = const_cast<char*>(text);
        if (magnitude > UINT32_MAX) read = UINT32_MAX;
        else read = negative ? (uint32_t)(0u - (uint32_t)magnitude) : (uint32_t)magnitude;
    }
    if (end == text) return USERINPUT_CHECK_NOT_A_NUMBER;
    *value = read;
    if (Less(type, read, minimum)) {
        if (message) *message = "Value must be >= " + UserInputFormatNumber(type, minimum);
        return USERINPUT_CHECK_TOO_SMALL;
    }
    if (Less(type, maximum, read)) {
        if (message) *message = "Value must be <= " + UserInputFormatNumber(type, maximum);
        return USERINPUT_CHECK_TOO_LARGE;
    }
    return USERINPUT_CHECK_OK;
}

uint32_t ondbuiltin::AskNumber(const TSCRIPTSYSCALL& call) {
    const uint32_t type = call.def.type;
    const uint64_t defaultValue = call.Number(2);
    uint64_t minimum, maximum;
    FullRange(type, &minimum, &maximum);
    if (call.Count() >= 5) {
        minimum = Narrow(type, call.Number(3));
        maximum = Narrow(type, call.Number(4));
        if (Less(type, maximum, minimum)) return SCRIPT_ERR_SYSFUNC;
    }
    uint64_t initial = Narrow(type, defaultValue);
    if (Less(type, maximum, initial)) initial = maximum;
    if (Less(type, initial, minimum)) initial = minimum;

    const std::string& prompt = call.Text(1);
    TOPERATORNUMBERQUESTION question;
    question.caption = call.Text(0).c_str();
    question.prompt = prompt.empty() ? kDefaultPrompt : prompt.c_str();
    question.type = type;
    question.minimum = minimum;
    question.maximum = maximum;
    question.initial = initial;

    CONXOperatorPrompt_0* op = call.run ? call.run->m_pOperator : nullptr;
    uint64_t answer = 0;
    bool ok = op && op->AskNumber(question, &answer) == OPERATOR_ANSWER_OK;
    if (ok) {
        answer = Narrow(type, answer);
        ok = !Less(type, answer, minimum) && !Less(type, maximum, answer);
    }
    if (call.Count() == 6) {
        if (uint32_t err = call.Variable(5)->SetNumber(ok ? 1 : 0, SCRIPT_TYPE_UINT32)) return err;
    }
    if (!call.result) return 0;
    return call.result->SetNumber(ok ? answer : defaultValue, type);
}
