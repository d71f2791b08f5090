// Scanning and formatting numbers for the conversion built-ins and "print".
#include "scriptrt/NumberScan.h"

#include <cstring>

namespace {

struct TNUMFORMAT {
    bool wide;      // "I64": 64 bits
    bool hex;       // 'X' or 'x'
    bool isSigned;  // 'd'
};

bool ParseFormat(const char* format, TNUMFORMAT* f) {
    if (!format || format[0] != '%') return false;
    const char* p = format + 1;
    f->wide = strncmp(p, "I64", 3) == 0;
    if (f->wide) p += 3;
    if (p[0] == '\0' || p[1] != '\0') return false;
    f->hex = p[0] == 'X' || p[0] == 'x';
    f->isSigned = p[0] == 'd';
    return f->hex || f->isSigned || p[0] == 'u';
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r'; }

}  // namespace

bool ScriptScanNumber(const char* text, const char* format, uint64_t* value) {
    TNUMFORMAT f;
    if (!text || !ParseFormat(format, &f)) return false;
    const char* p = text;
    while (IsBlank(*p)) ++p;
    bool negative = false;
    if (*p == '+' || *p == '-') {
        negative = *p == '-';
        ++p;
    }
    uint64_t number = 0;
    bool digits = false;
    if (f.hex) {
        if (p[0] == '0' && (p[1] == 'x' || p[1] == 'X')) {
            digits = true;  // the '0' alone is a number when no hex digit follows
            p += 2;
        }
        for (int d; (d = HexDigit(*p)) >= 0; ++p) {
            number = (number << 4) | (uint64_t)d;
            digits = true;
        }
    } else {
        for (; *p >= '0' && *p <= '9'; ++p) {
            number = number * 10u + (uint64_t)(*p - '0');
            digits = true;
        }
    }
    if (!digits) return false;
    if (negative) number = 0 - number;
    if (!f.wide) number &= 0xFFFFFFFFu;
    *value = number;
    return true;
}

std::string ScriptFormatNumber(const char* format, uint64_t value) {
    TNUMFORMAT f;
    if (!ParseFormat(format, &f)) return std::string();
    bool negative = false;
    if (!f.wide) value &= 0xFFFFFFFFu;
    if (f.isSigned) {
        int64_t s = f.wide ? (int64_t)value : (int64_t)(int32_t)(uint32_t)value;
        negative = s < 0;
        value = negative ? 0 - (uint64_t)s : (uint64_t)s;
    }
    char buffer[24];
    char* end = buffer + sizeof buffer;
    char* p = end;
    const unsigned base = f.hex ? 16u : 10u;
    do {
        *--p = "0123456789ABCDEF"[value % base];
        value /= base;
    } while (value);
    if (negative) *--p = '-';
    return std::string(p, end);
}
