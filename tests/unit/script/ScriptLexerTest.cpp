// Lexer: token boundaries, kinds, positions, literal conversion.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "script/ScriptErrors.h"
#include "script/ScriptLexer.h"
#include "script/ScriptObject.h"
#include "script/ScriptValue.h"

namespace {

struct TTok {
    uint32_t kind;
    std::string text;
};

// Reads tokens up to the end of text; stops at and reports the first error.
std::vector<TTok> Lex(const char* text, uint32_t* error = nullptr) {
    CONXScriptCursor cursor(text);
    CONXScriptObject reader;
    std::vector<TTok> out;
    if (error) *error = 0;
    for (int guard = 0; guard < 1000; guard++) {
        std::string t;
        uint32_t kind = 0;
        uint32_t err = reader.GetToken(&cursor, &t, &kind);
        if (err) {
            if (error) *error = err;
            break;
        }
        if (kind == SCRIPT_TOK_END) break;
        out.push_back({kind, t});
    }
    return out;
}

std::string Kinds(const std::vector<TTok>& toks) {
    std::string s;
    for (const TTok& t : toks) s += std::to_string(t.kind) + ":" + t.text + " ";
    return s;
}

// Each token as kind:text. Which texts read as what, and the lexer's errors,
// are conformance scripts (lexer/, literals/); here the boundaries they do not show.
TEST(ScriptLexer, Tokens) {
    const struct {
        const char* text;
        const char* tokens;
    } cases[] = {
        // operators take the longest prefix, also at the end of the text
        {"!= =! >>= >> >=", "6:!= 6:= 6:! 6:>>= 6:>> 6:>= "},
        {"=+", "6:= 6:+ "},
        {"<", "6:< "},
        // numbers keep their suffixes for the conversion; a second ":" is a token of its own
        {"0b101 0XaB:uh 12:LS 1a", "5:101 4:aB:uh 3:12:LS 3:1 1:a "},
        {"12:U:", "3:12:U 0:: "},
        // punctuation and bytes above 127 are one-character tokens
        {"_a1 $ . ; {", "1:_a1 0:$ 0:. 0:; 0:{ "},
        {"\xE4x", "0:\xE4 1:x "},
    };
    for (const auto& c : cases) {
        uint32_t error = 0;
        EXPECT_EQ(Kinds(Lex(c.text, &error)), c.tokens) << c.text;
        EXPECT_EQ(error, 0u) << c.text;
    }
    // The parser reads its own way; an error through GetToken ends the list here.
    uint32_t error = 0;
    EXPECT_EQ(Kinds(Lex("a \"open", &error)), "1:a ");
    EXPECT_EQ(error, (uint32_t)SCRIPT_ERR_STRING);
}

TEST(ScriptLexer, TokenStartIsBeforeWhitespaceButAfterComments) {
    CONXScriptCursor cursor("a   b # c\n  d");
    CONXScriptObject r;
    std::string t;
    uint32_t kind;
    ASSERT_EQ(r.GetToken(&cursor, &t, &kind), 0u);
    ASSERT_EQ(r.GetToken(&cursor, &t, &kind), 0u);
    EXPECT_EQ(t, "b");
    EXPECT_EQ(cursor.tokenStart, 1u);  // right after "a"
    EXPECT_EQ(cursor.position, 5u);
    ASSERT_EQ(r.GetToken(&cursor, &t, &kind), 0u);
    EXPECT_EQ(t, "d");
    EXPECT_EQ(cursor.tokenStart, 10u);  // after the comment's line feed
}

TEST(ScriptLexer, ExpectOperations) {
    CONXScriptCursor cursor("( x 5");
    CONXScriptObject r;
    std::string t;
    EXPECT_EQ(r.ExpectToken(&cursor, "(", SCRIPT_TOK_PUNCT), 0u);
    EXPECT_EQ(r.ExpectToken(&cursor, "X", SCRIPT_TOK_IDENT), SCRIPT_ERR_UNEXPECTEDTOKEN);  // case matters
    EXPECT_EQ(r.ExpectTokenKind(&cursor, &t, SCRIPT_TOK_IDENT), SCRIPT_ERR_UNEXPECTEDTOKEN);
    EXPECT_EQ(t, "5");
}

TEST(ScriptLexer, OperatorClassPrefixAndExact) {
    EXPECT_EQ(OperatorClass("<", 1), 4u);  // a prefix answers with the first entry, "<<="
    EXPECT_NE(OperatorClass("<<", 2), 0u);
    EXPECT_EQ(OperatorClass("=", 0x7FFFFFFF), 4u);
    EXPECT_EQ(OperatorClass("-", 0x7FFFFFFF), 3u);
    EXPECT_EQ(OperatorClass("!", 0x7FFFFFFF), 1u);
    EXPECT_EQ(OperatorClass("&&", 0x7FFFFFFF), 0u);
    EXPECT_EQ(OperatorClass("?", 1), 0u);
}

// The literals' values and types are conformance scripts (literals/).
TEST(ScriptLexer, LiteralConversion) {
    CONXScriptVariable v;
    EXPECT_EQ(v.SetFromLiteral("12:X", SCRIPT_TOK_DEC), SCRIPT_ERR_SYNTAX);  // no suffix letter
    CONXScriptVariable s;
    EXPECT_EQ(s.SetFromLiteral(std::string("a\0b", 3), SCRIPT_TOK_STRING), 0u);
    EXPECT_EQ(s.GetText(), std::string("a\0b", 3));
    CONXScriptVariable bad;
    EXPECT_EQ(bad.SetFromLiteral("x", SCRIPT_TOK_IDENT), SCRIPT_ERR_TYPE);
}

}  // namespace
