// The script lexer: operator table, token scanning, literal conversion.
#include "script/ScriptLexer.h"

#include <cstring>

#include "script/ScriptErrors.h"
#include "util/AsciiCase.h"
#include "util/EscapedString.h"

const TSCRIPTOPERATOR g_ScriptOperators[SCRIPT_OP_COUNT] = {
    {"=", 4},  {"+=", 4}, {"-=", 4}, {"*=", 4}, {"/=", 4}, {"%=", 4}, {"&=", 4}, {"|=", 4},
    {"^=", 4}, {">>=", 4}, {"<<=", 4}, {"+", 3}, {"-", 3}, {"!", 1}, {"~", 1}, {"*", 2},
    {"/", 2},  {"%", 2},  {"&", 2},  {"|", 2},  {"^", 2},  {"<<", 2}, {">>", 2}, {"==", 2},
    {"!=", 2}, {"<", 2},  {">", 2},  {"<=", 2}, {">=", 2},
};

namespace {

const char kIdentLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_";
const char kDecDigits[] = "0123456789";
const char kBinDigits[] = "01";
const char kHexDigits[] = "0123456789ABDCEFabcdef";  // D before C: kept as it always was
const char kSuffixLetters[] = "UuSsLlHh";

inline bool In(const char* set, char c) { return c != '\0' && strchr(set, c) != nullptr; }
inline bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// Hexadecimal and binary digits after the prefix. Returns the count scanned,
// or -1 for a malformed number.
int64_t ScanPrefixedNumber(const char* s, const char* digits) {
    if (!In(digits, s[0])) return -1;
    int64_t i = 0;
    while (In(digits, s[i])) i++;
    if (s[i] != ':') return i;
    i++;
    int64_t letters = 0;
    while (In(kSuffixLetters, s[i])) {
        i++;
        letters++;
    }
    return letters ? i : -1;
}

uint8_t KeywordOf(const std::string& t) {
    if (t.size() < 2 || t.size() > 5) return SCRIPT_KW_NONE;
    const char* s = t.c_str();
    if (ScriptNamesEqual(s, "var")) return SCRIPT_KW_VAR;
    if (ScriptNamesEqual(s, "func")) return SCRIPT_KW_FUNC;
    if (ScriptNamesEqual(s, "if")) return SCRIPT_KW_IF;
    if (ScriptNamesEqual(s, "else")) return SCRIPT_KW_ELSE;
    if (ScriptNamesEqual(s, "while")) return SCRIPT_KW_WHILE;
    return SCRIPT_KW_NONE;
}

}  // namespace

bool ScriptNamesEqual(const char* a, const char* b) { return ondutil::EqualsIgnoringCase(a, b); }

uint32_t OperatorClass(const char* text, size_t n) {
    for (const TSCRIPTOPERATOR& op : g_ScriptOperators)
        if (strncmp(text, op.text, n) == 0) return op.opClass;
    return 0;
}

int32_t OperatorIndex(const char* text) {
    for (int32_t i = 0; i < SCRIPT_OP_COUNT; i++)
        if (strcmp(text, g_ScriptOperators[i].text) == 0) return i;
    return -1;
}

uint32_t TypeCodeOfName(const char* name) {
    static const struct {
        const char* name;
        uint32_t code;
    } kTypes[] = {{"dword", 1}, {"uint32", 1}, {"string", 2}, {"long", 3},
                  {"int32", 3}, {"uint64", 4}, {"int64", 5}};
    for (const auto& t : kTypes)
        if (ScriptNamesEqual(name, t.name)) return t.code;
    return 0;
}

uint32_t ScanToken(const char* text, uint64_t length, uint64_t pos, TSCRIPTTOKEN* token) {
    TSCRIPTTOKEN& t = *token;
    t.callPos = pos;
    t.text.clear();
    t.op = -1;
    t.match = -1;
    t.keyword = SCRIPT_KW_NONE;
    t.typeCode = 0;
    t.punct = 0;
    t.error = 0;
    t.kind = SCRIPT_TOK_PUNCT;
    for (;;) {
        t.start = pos;
        while (pos < length && IsBlank(text[pos])) pos++;
        if (pos >= length || text[pos] != '#') break;
        // A comment runs to and includes the first line break; the token start moves past it.
        while (pos < length && text[pos] != '\r' && text[pos] != '\n') pos++;
        if (pos < length) pos++;
    }
    t.end = pos;
    if (pos >= length || text[pos] == '\0') {
        t.kind = SCRIPT_TOK_END;
        return 0;
    }
    const char* s = text + pos;
    char c = s[0];
    if (c == '"') {
        size_t used = 0;
        int ok = 0;
        // The script's length bounds the scan, so an open literal on the last line
        // ends at the end of the text.
        std::string decoded = ondutil::ParseString(s + 1, (size_t)(length - pos - 1), '"',
                                                            &used, nullptr, &ok);
        if (!ok) return t.error = SCRIPT_ERR_STRING;
        t.text.swap(decoded);
        t.kind = SCRIPT_TOK_STRING;
        t.end = pos + 1 + used;
        return 0;
    }
    char one[2] = {c, '\0'};
    if (OperatorClass(one, 1)) {
        char candidate[4] = {c, '\0', '\0', '\0'};
        size_t n = 1;
        while (n < 3 && s[n] != '\0' && pos + n < length) {
            candidate[n] = s[n];
            if (!OperatorClass(candidate, n + 1)) {
                candidate[n] = '\0';
                break;
            }
            n++;
        }
        t.text.assign(candidate, n);
        t.kind = SCRIPT_TOK_OP;
        t.op = OperatorIndex(t.text.c_str());
        t.end = pos + n;
        return 0;
    }
    if (c == '0' && (ondutil::AsciiLower(s[1]) == 'x' || ondutil::AsciiLower(s[1]) == 'b')) {
        bool hex = ondutil::AsciiLower(s[1]) == 'x';
        int64_t n = ScanPrefixedNumber(s + 2, hex ? kHexDigits : kBinDigits);
        if (n < 0) return t.error = SCRIPT_ERR_SYNTAX;
        t.text.assign(s + 2, (size_t)n);
        t.kind = hex ? SCRIPT_TOK_HEX : SCRIPT_TOK_BIN;
        t.end = pos + 2 + (uint64_t)n;
        return 0;
    }
    if (!In(kDecDigits, c)) {
        size_t n = 0;
        while (In(kIdentLetters, s[n]) || (n > 0 && In(kDecDigits, s[n]))) n++;
        if (n == 0) {
            t.text.assign(1, c);
            t.punct = c;
            t.end = pos + 1;
            return 0;
        }
        t.text.assign(s, n);
        t.kind = SCRIPT_TOK_IDENT;
        t.keyword = KeywordOf(t.text);
        t.typeCode = (uint8_t)TypeCodeOfName(t.text.c_str());
        t.end = pos + n;
        return 0;
    }
    size_t n = 0;
    bool suffix = false;
    for (;;) {
        char d = s[n];
        if (!suffix && In(kDecDigits, d)) {
            n++;
        } else if (!suffix && d == ':') {
            suffix = true;
            n++;
        } else if (suffix && In(kSuffixLetters, d)) {
            n++;
        } else {
            break;
        }
    }
    t.text.assign(s, n);
    t.kind = SCRIPT_TOK_DEC;
    t.end = pos + n;
    return 0;
}

uint32_t ConvertLiteral(const std::string& text, uint32_t kind, uint32_t* type, uint64_t* value) {
    if (kind == SCRIPT_TOK_STRING) {
        *type = 2;
        *value = 0;
        return 0;
    }
    if (kind != SCRIPT_TOK_DEC && kind != SCRIPT_TOK_HEX && kind != SCRIPT_TOK_BIN)
        return SCRIPT_ERR_TYPE;
    bool isSigned = true;
    int width = 0;  // 0 none, 32 "L", 64 "H"
    size_t colon = text.find(':');
    size_t digitsEnd = text.size();
    if (colon != std::string::npos) {
        if (colon + 1 == text.size()) return SCRIPT_ERR_SYNTAX;
        // The last letter of each pair wins.
        for (size_t i = colon + 1; i < text.size(); i++) {
            switch (text[i]) {
            case 'U': case 'u': isSigned = false; break;
            case 'S': case 's': isSigned = true; break;
            case 'L': case 'l': width = 32; break;
            case 'H': case 'h': width = 64; break;
            default: return SCRIPT_ERR_SYNTAX;
            }
        }
        digitsEnd = colon;
    }
    // Digits beyond 64 bits wrap around (the C library's scanners disagree here).
    uint64_t v = 0;
    if (digitsEnd == 0) return SCRIPT_ERR_TYPE;
    if (kind == SCRIPT_TOK_BIN) {
        if (digitsEnd > 64) return SCRIPT_ERR_TYPE;
        for (size_t i = 0; i < digitsEnd; i++) {
            if (text[i] != '0' && text[i] != '1') return SCRIPT_ERR_TYPE;
            v = (v << 1) | (uint64_t)(text[i] - '0');
        }
    } else {
        for (size_t i = 0; i < digitsEnd; i++) {
            char c = text[i];
            unsigned d;
            if (c >= '0' && c <= '9') d = (unsigned)(c - '0');
            else if (kind == SCRIPT_TOK_HEX && c >= 'a' && c <= 'f') d = (unsigned)(c - 'a' + 10);
            else if (kind == SCRIPT_TOK_HEX && c >= 'A' && c <= 'F') d = (unsigned)(c - 'A' + 10);
            else return SCRIPT_ERR_TYPE;
            v = v * (kind == SCRIPT_TOK_HEX ? 16u : 10u) + d;
        }
    }
    bool needs64;
    if (kind == SCRIPT_TOK_DEC && isSigned) {
        int64_t s = (int64_t)v;
        needs64 = s < INT32_MIN || s > INT32_MAX;
        if (width == 32 && needs64) return SCRIPT_ERR_SYNTAX;
        // "H" does not widen a small decimal: deliberate, unlike hex and binary.
        *type = needs64 ? 5 : 3;
    } else if (kind == SCRIPT_TOK_DEC) {
        needs64 = v > 0xFFFFFFFFull;
        if (width == 32 && needs64) return SCRIPT_ERR_SYNTAX;
        *type = needs64 ? 4 : 1;
    } else {
        needs64 = v > 0xFFFFFFFFull;
        if (width == 32 && needs64) return SCRIPT_ERR_SYNTAX;
        bool wide = width == 64 || needs64;
        *type = wide ? (isSigned ? 5 : 4) : (isSigned ? 3 : 1);
    }
    *value = v;
    return 0;
}

CONXScriptCursor::CONXScriptCursor(const char* sourceText)
    : text(sourceText), length(strlen(sourceText)) {
    m_index.assign(length + 1, -1);
    std::vector<int32_t> open;
    uint64_t pos = 0;
    for (;;) {
        if (m_index[pos] >= 0) break;
        m_tokens.emplace_back();
        TSCRIPTTOKEN& t = m_tokens.back();
        ScanToken(text, length, pos, &t);
        int32_t i = (int32_t)m_tokens.size() - 1;
        m_index[pos] = i;
        if (t.error) break;  // nothing behind a lexer error is ever read
        if (t.kind == SCRIPT_TOK_PUNCT && t.punct == '(') {
            open.push_back(i);
        } else if (t.kind == SCRIPT_TOK_PUNCT && t.punct == ')' && !open.empty()) {
            m_tokens[open.back()].match = i;
            open.pop_back();
        }
        if (t.kind == SCRIPT_TOK_END && t.end == pos) break;
        pos = t.end;
    }
    // A sentinel, so that the token after the last one can be named; it is
    // never at the cursor's position.
    m_tokens.emplace_back();
    m_tokens.back().callPos = UINT64_MAX;
}

TSCRIPTTOKEN* CONXScriptCursor::Find() {
    int32_t i = position <= length ? m_index[position] : -1;
    if (i >= 0) return &m_tokens[i];
    TSCRIPTTOKEN* t = &m_scratch;
    ScanToken(text, length, position, t);
    t->cacheScope = nullptr;
    t->selfScope = nullptr;
    t->literalDone = false;
    t->restCall = 0;
    t->noFast = true;  // the shortcut walks the prepared tokens only
    return t;
}
