// The mode words and the decimal columns of lists of files to copy.
#include "util/FileEntry.h"

#include "util/AsciiCase.h"


const char* ondutil::FileModeText(uint32_t fileMode) {
    switch (fileMode) {
        case FILEMODE_BITREVERSE: return "bit reverse";
        case FILEMODE_PROGRAM: return "program";
        default: return "normal";
    }
}

uint32_t ondutil::FileModeFromText(const char* text) {
    if (!text) return FILEMODE_NORMAL;
    if (EqualsIgnoringCase(text, "bit reverse")) return FILEMODE_BITREVERSE;
    if (EqualsIgnoringCase(text, "program")) return FILEMODE_PROGRAM;
    return FILEMODE_NORMAL;
}

bool ondutil::ScanUnsigned(const char* text, uint32_t* value) {
    if (!text) return false;
    const char* p = text;
    while (*p == ' ' || *p == '\t' || *p == '\n' || *p == '\v' || *p == '\f' || *p == '\r') ++p;
    bool negative = false;
    if (*p == '+' || *p == '-') {
        negative = *p == '-';
        ++p;
    }
    if (*p < '0' || *p > '9') return false;
    uint32_t number = 0;
    for (; *p >= '0' && *p <= '9'; ++p) number = number * 10u + static_cast<uint32_t>(*p - '0');
    if (value) *value = negative ? 0u - number : number;
    return true;
}
