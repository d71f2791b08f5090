// Tokens of the script language and the source cursor that reads them.
//
// The engine re-reads statements from their source offsets, so the cursor is
// a byte position. To keep that cheap, the text is tokenised once: every
// position from which a token is read maps to a prepared token (text decoded,
// operator and keyword identified, literal converted on first use). A position
// that is not in the map falls back to scanning the text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class CONXScriptObject;
class CONXScriptVariable;
struct TSCRIPTFASTPROGRAM;
struct TSCRIPTPLAN;

// Token kinds.
enum : uint32_t {
    SCRIPT_TOK_PUNCT = 0,   // one character that starts nothing else
    SCRIPT_TOK_IDENT = 1,   // identifier or keyword
    SCRIPT_TOK_STRING = 2,  // decoded string literal
    SCRIPT_TOK_DEC = 3,     // decimal number, with optional ":suffix"
    SCRIPT_TOK_HEX = 4,     // digits after "0x"
    SCRIPT_TOK_BIN = 5,     // digits after "0b"
    SCRIPT_TOK_OP = 6,
    SCRIPT_TOK_END = 7,
};

// Operator classes (flags).
enum : uint32_t {
    SCRIPT_OPCLASS_UNARY = 1,
    SCRIPT_OPCLASS_BINARY = 2,
    SCRIPT_OPCLASS_ASSIGN = 4,
};

// Indexes into the operator table.
enum : int32_t {
    SCRIPT_OP_ASSIGN = 0, SCRIPT_OP_ADDASSIGN, SCRIPT_OP_SUBASSIGN, SCRIPT_OP_MULASSIGN,
    SCRIPT_OP_DIVASSIGN, SCRIPT_OP_MODASSIGN, SCRIPT_OP_ANDASSIGN, SCRIPT_OP_ORASSIGN,
    SCRIPT_OP_XORASSIGN, SCRIPT_OP_SHRASSIGN, SCRIPT_OP_SHLASSIGN,
    SCRIPT_OP_PLUS, SCRIPT_OP_MINUS, SCRIPT_OP_NOT, SCRIPT_OP_INVERT,
    SCRIPT_OP_MUL, SCRIPT_OP_DIV, SCRIPT_OP_MOD, SCRIPT_OP_AND, SCRIPT_OP_OR, SCRIPT_OP_XOR,
    SCRIPT_OP_SHL, SCRIPT_OP_SHR, SCRIPT_OP_EQ, SCRIPT_OP_NE, SCRIPT_OP_LT, SCRIPT_OP_GT,
    SCRIPT_OP_LE, SCRIPT_OP_GE,
    SCRIPT_OP_COUNT
};

struct TSCRIPTOPERATOR {
    const char* text;
    uint32_t opClass;
};
extern const TSCRIPTOPERATOR g_ScriptOperators[SCRIPT_OP_COUNT];

// Class of the first table entry whose first n characters match text, or 0.
uint32_t OperatorClass(const char* text, size_t n);
// Exact, case-insensitive lookup; -1 when text is no operator.
int32_t OperatorIndex(const char* text);

// Keywords, recognised by the parser on identifier tokens.
enum : uint8_t {
    SCRIPT_KW_NONE = 0, SCRIPT_KW_VAR, SCRIPT_KW_FUNC, SCRIPT_KW_IF, SCRIPT_KW_ELSE,
    SCRIPT_KW_WHILE,
};

// Data type code of a type name ("dword", "Int64", ...); 0 for anything else.
uint32_t TypeCodeOfName(const char* name);

bool ScriptNamesEqual(const char* a, const char* b);  // without regard to case

struct alignas(64) TSCRIPTTOKEN {
    // What the engine reads on every pass comes first, in one cache line.
    uint32_t error = 0;    // lexer error of this read; 0 = a token
    uint32_t kind = SCRIPT_TOK_END;
    uint64_t callPos = 0;  // position the read started from
    uint64_t start = 0;    // token start: where the read began after any comment
    uint64_t end = 0;      // position after the token (on an error: where scanning stopped)
    int32_t op = -1;       // operator table index for kind 6
    int32_t match = -1;    // token index of the matching ")" for a "("
    char punct = 0;        // the character of a kind 0 token
    uint8_t keyword = SCRIPT_KW_NONE;
    uint8_t typeCode = 0;  // identifiers that name a data type
    bool literalDone = false;
    bool isSelf = false;   // whether the identifier is the name of the function in selfScope
    // For a binary operator: whether the rest of the expression holds a call;
    // for a "(": whether its argument list does (0 not known yet, 1 no, 2 yes).
    uint8_t restCall = 0;
    bool noFast = false;  // an expression starting here is not numbers only
    // Last name look-up: in which scope, found what.
    const void* cacheScope = nullptr;
    CONXScriptObject* cacheObject = nullptr;
    // Converted literal, filled on first use.
    CONXScriptVariable* literalValue = nullptr;
    const void* selfScope = nullptr;
    TSCRIPTFASTPROGRAM* fastProgram = nullptr;  // numbers-only expression starting here
    // The plan of the simple statement starting here, made for planScope (null: none).
    const void* planScope = nullptr;
    TSCRIPTPLAN* plan = nullptr;
    uint32_t literalError = 0;
    std::string text;
};

// Scans one token from pos of a NUL-terminated text of the given length.
// Returns the lexer error code (0, 2 or 3), also kept in token->error.
uint32_t ScanToken(const char* text, uint64_t length, uint64_t pos, TSCRIPTTOKEN* token);

// Converts a number or string literal's token text to a type and value
// (strings: type 2, the text is the token's own).
uint32_t ConvertLiteral(const std::string& text, uint32_t kind, uint32_t* type, uint64_t* value);

class CONXScriptCursor {
public:
    explicit CONXScriptCursor(const char* text);
    CONXScriptCursor(const CONXScriptCursor&) = delete;
    CONXScriptCursor& operator=(const CONXScriptCursor&) = delete;

    // Reads the token at position: sets tokenStart and moves position past it.
    // Check ->error before using it.
    TSCRIPTTOKEN* Next() {
        // Reading on from the last token needs no look-up by position.
        TSCRIPTTOKEN* t = m_pNext;
        if (!t || t->callPos != position) t = Find();
        tokenStart = t->start;
        position = t->end;
        m_pNext = t == &m_scratch ? nullptr : t + 1;
        return t;
    }
    // Reads the token at pos (a statement's offset).
    TSCRIPTTOKEN* ReadAt(uint64_t pos) {
        int32_t i = pos <= length ? m_index[pos] : -1;
        if (i < 0) {
            position = pos;
            m_pNext = nullptr;
            return Next();
        }
        TSCRIPTTOKEN* t = &m_tokens[i];
        tokenStart = t->start;
        position = t->end;
        m_pNext = t + 1;
        return t;
    }
    // The token a read would give now, if known without a look-up.
    TSCRIPTTOKEN* Upcoming() const {
        return (m_pNext && m_pNext->callPos == position) ? m_pNext : nullptr;
    }
    // Moves back to just before the token t, as read last.
    void PutBack(TSCRIPTTOKEN* t) {
        position = t->callPos;
        m_pNext = t;
    }
    // The token a read from position would give, without moving; null if the
    // position is not a prepared one.
    TSCRIPTTOKEN* TokenAt(uint64_t pos) {
        int32_t i = pos <= length ? m_index[pos] : -1;
        return i >= 0 ? &m_tokens[i] : nullptr;
    }
    TSCRIPTTOKEN* TokenByIndex(int32_t i) { return &m_tokens[i]; }
    int32_t IndexOf(const TSCRIPTTOKEN* t) const {
        return t == &m_scratch ? -1 : (int32_t)(t - m_tokens.data());
    }

    // True when the stack has come down to the reserve: every recursion of the
    // parser and the engine asks this first (a call count would not do, frames
    // differ in size).
    bool StackLow() const {
        char probe;
        return (uintptr_t)&probe < stackLimit;
    }

    const char* text;
    uint64_t length;
    uint64_t tokenStart = 0;
    uint64_t position = 0;
    uintptr_t stackLimit = 0;  // lowest address recursion may reach; 0 = unchecked

private:
    TSCRIPTTOKEN* Find();

    TSCRIPTTOKEN* m_pNext = nullptr;  // the token after the last one read
    std::vector<TSCRIPTTOKEN> m_tokens;
    std::vector<int32_t> m_index;  // position -> token, -1 where no read starts
    TSCRIPTTOKEN m_scratch;
};
