// Token reading operations of CONXScriptObject.
#include "script/ScriptObject.h"

#include "script/ScriptErrors.h"

void CONXScriptObject::SkipWhitespace(CONXScriptCursor* cursor) {
    uint64_t p = cursor->position;
    const char* t = cursor->text;
    while (p < cursor->length && (t[p] == ' ' || t[p] == '\t' || t[p] == '\r' || t[p] == '\n')) p++;
    cursor->position = p;
}

uint32_t CONXScriptObject::GetToken(CONXScriptCursor* cursor, std::string* text, uint32_t* kind) {
    TSCRIPTTOKEN* t = cursor->Next();
    if (t->error) {
        if (text) text->clear();
        if (kind) *kind = SCRIPT_TOK_PUNCT;
        return t->error;
    }
    if (text) *text = t->text;
    if (kind) *kind = t->kind;
    return 0;
}

uint32_t CONXScriptObject::ExpectTokenKind(CONXScriptCursor* cursor, std::string* text,
                                           uint32_t kind) {
    uint32_t got = 0;
    uint32_t err = GetToken(cursor, text, &got);
    if (err) return err;
    return got == kind ? 0 : SCRIPT_ERR_UNEXPECTEDTOKEN;
}

uint32_t CONXScriptObject::ExpectToken(CONXScriptCursor* cursor, std::string text, uint32_t kind) {
    std::string expected;
    expected.swap(text);  // the given text is consumed
    std::string got;
    uint32_t gotKind = 0;
    uint32_t err = GetToken(cursor, &got, &gotKind);
    if (err) return err;
    return (gotKind == kind && got == expected) ? 0 : SCRIPT_ERR_UNEXPECTEDTOKEN;
}
