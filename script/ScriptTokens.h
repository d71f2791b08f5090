// Questions about one token, asked by the parser, the evaluator, the engine
// and the shortcuts alike. A token with a lexer error is neither punctuation
// nor an operator: its punct is 0 and its op -1, so no test here matches it.
#pragma once

#include <cstdint>

#include "script/ScriptErrors.h"
#include "script/ScriptLexer.h"

inline bool IsPunct(const TSCRIPTTOKEN* t, char c) {
    return t->kind == SCRIPT_TOK_PUNCT && t->punct == c;
}

inline bool IsKeyword(const TSCRIPTTOKEN* t, uint8_t keyword) {
    return t->kind == SCRIPT_TOK_IDENT && t->keyword == keyword;
}

// The operator classes (SCRIPT_OPCLASS_*) of an operator token; 0 for any other.
inline uint32_t OpClass(const TSCRIPTTOKEN* t) {
    return (t->kind == SCRIPT_TOK_OP && t->op >= 0) ? g_ScriptOperators[t->op].opClass : 0;
}

inline bool IsBinary(const TSCRIPTTOKEN* t) { return (OpClass(t) & SCRIPT_OPCLASS_BINARY) != 0; }

inline bool IsLiteral(const TSCRIPTTOKEN* t) {
    return t->kind >= SCRIPT_TOK_STRING && t->kind <= SCRIPT_TOK_BIN;
}

// Reads one token that must be the punctuation c: its lexer error, or 4
// "unexpected token", otherwise.
inline uint32_t ExpectPunct(CONXScriptCursor* cursor, char c) {
    const TSCRIPTTOKEN* t = cursor->Next();
    if (t->error) return t->error;
    return IsPunct(t, c) ? 0 : SCRIPT_ERR_UNEXPECTEDTOKEN;
}
