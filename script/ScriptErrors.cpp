// Error texts and diagnostics of the script language.
#include "script/ScriptErrors.h"

#include <cinttypes>
#include <cstdio>

const char* ErrorText(uint32_t code) {
    static const char* const kTexts[] = {
        "No error",           "out of memory error",  // lower case, as the system always wrote it
        "Syntax error",       "Error in string",
        "Unexpected token",   "Unknown data type",
        "Unknown object type", "Unknown identifier",
        "Wrong number of parameters", "Illegal parameter",
        "Type error",         "Division by 0 error",
        "System function failed", "Processing aborted",
    };
    uint32_t errorClass = code & SCRIPT_ERR_CLASSMASK;
    if (errorClass == SCRIPT_ERR_CLASS_USER) return "User Error";
    if (errorClass != 0) return "Unknown error class";
    if (code < sizeof kTexts / sizeof kTexts[0]) return kTexts[code];
    return "Unknown error";
}

void LineAndColumn(const char* text, uint64_t offset, uint64_t* line, uint64_t* column) {
    uint64_t l = 0, c = 0;
    for (uint64_t i = 0; i < offset && text[i] != '\0'; i++) {
        if (text[i] == '\n') {
            l++;
            c = 0;
        } else {
            c++;  // a carriage return is an ordinary column byte
        }
    }
    if (line) *line = l;
    if (column) *column = c;
}

std::string FormatDiagnostic(uint32_t code, const char* text, uint64_t tokenStart,
                             const char* phase) {
    uint64_t line = 0, column = 0;
    LineAndColumn(text, tokenStart, &line, &column);
    char buffer[256];
    // The offset is shown as 32 bits, as it always was.
    snprintf(buffer, sizeof buffer, "%s near line %" PRIu64 "/column %" PRIu64 " (offset %u) during %s\n",
             ErrorText(code), line + 1, column + 1, (unsigned)(uint32_t)tokenStart, phase);
    return buffer;
}
