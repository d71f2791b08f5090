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

// Each token as kind:text; the first lexer error ends the list.
TEST(ScriptLexer, Tokens) {
    const struct {
        const char* text;
        const char* tokens;
        uint32_t error;
    } cases[] = {
        // operators take the longest prefix
        {"x<<=2", "1:x 6:<<= 3:2 ", 0},
        {"a=-1", "1:a 6:= 6:- 3:1 ", 0},
        {"!= =! >>= >> >=", "6:!= 6:= 6:! 6:>>= 6:>> 6:>= ", 0},
        {"=+", "6:= 6:+ ", 0},
        {"&&", "6:& 6:& ", 0},
        {"<", "6:< ", 0},  // the end of the text right after an operator
        // comments and whitespace; other control characters are not whitespace
        {"a#x\nb", "1:a 1:b ", 0},
        {"a # no line end", "1:a ", 0},
        {" \t\r\n a \r\n\t b", "1:a 1:b ", 0},
        {"\va", "0:\v 1:a ", 0},
        {"\"a#b\" c", "2:a#b 1:c ", 0},  // "#" inside a string is text
        // numbers, suffixes checked later by the conversion
        {"0x1Fg", "4:1F 1:g ", 0},
        {"0b101 0XaB:uh 12:LS 1a", "5:101 4:aB:uh 3:12:LS 3:1 1:a ", 0},
        {"12:", "3:12: ", 0},
        {"12:U:", "3:12:U 0:: ", 0},
        {"0x ", "", SCRIPT_ERR_SYNTAX},
        {"0x1F:", "", SCRIPT_ERR_SYNTAX},
        {"0x1F:Q", "", SCRIPT_ERR_SYNTAX},
        {"0b2", "", SCRIPT_ERR_SYNTAX},
        // identifiers, punctuation, strings
        {"_a1 $ . ; {", "1:_a1 0:$ 0:. 0:; 0:{ ", 0},
        {"\xE4x", "0:\xE4 1:x ", 0},
        {"\"A\\(66)\\n\" x", "2:AB\n 1:x ", 0},
        {"\"open", "", SCRIPT_ERR_STRING},  // stops at the end of the text
        {"\"line\nbreak\"", "", SCRIPT_ERR_STRING},
        {"\"bad \\q\"", "", SCRIPT_ERR_STRING},
    };
    for (const auto& c : cases) {
        uint32_t error = 0;
        EXPECT_EQ(Kinds(Lex(c.text, &error)), c.tokens) << c.text;
        EXPECT_EQ(error, c.error) << c.text;
    }
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

struct TLit {
    const char* text;
    uint32_t kind;
    uint32_t error;
    uint32_t type;
    uint64_t value;
};

TEST(ScriptLexer, LiteralConversion) {
    const TLit cases[] = {
        {"5", 3, 0, 3, 5},
        {"5:H", 3, 0, 3, 5},  // H does not widen a small decimal
        {"2147483647", 3, 0, 3, 2147483647},
        {"2147483648", 3, 0, 5, 2147483648ull},
        {"4294967296", 3, 0, 5, 4294967296ull},
        {"4294967296:L", 3, SCRIPT_ERR_SYNTAX, 0, 0},
        {"4294967295:U", 3, 0, 1, 4294967295ull},
        {"4294967296:U", 3, 0, 4, 4294967296ull},
        {"7:US", 3, 0, 3, 7},
        {"7:SU", 3, 0, 1, 7},
        {"12:", 3, SCRIPT_ERR_SYNTAX, 0, 0},
        {"12:X", 3, SCRIPT_ERR_SYNTAX, 0, 0},
        {"FFFFFFFF", 4, 0, 3, 0xFFFFFFFFull},
        {"FFFFFFFF:U", 4, 0, 1, 0xFFFFFFFFull},
        {"1:H", 4, 0, 5, 1},
        {"1:HL", 4, 0, 3, 1},
        {"100000000:L", 4, SCRIPT_ERR_SYNTAX, 0, 0},
        {"100000000", 4, 0, 5, 0x100000000ull},
        {"101", 5, 0, 3, 5},
        {"101:U", 5, 0, 1, 5},
        {"1111111111111111111111111111111111111111111111111111111111111111", 5, 0, 5, ~0ull},
        {"11111111111111111111111111111111111111111111111111111111111111111", 5, SCRIPT_ERR_TYPE, 0, 0},
    };
    for (const TLit& c : cases) {
        CONXScriptVariable v;
        uint32_t err = v.SetFromLiteral(c.text, c.kind);
        EXPECT_EQ(err, c.error) << c.text;
        if (err || c.error) continue;
        EXPECT_EQ(v.GetType(), c.type) << c.text;
        uint64_t expected = c.value;
        if (c.type == 3) expected = (uint64_t)(int64_t)(int32_t)(uint32_t)c.value;
        EXPECT_EQ(v.GetNumber(), expected) << c.text;
    }
    CONXScriptVariable s;
    EXPECT_EQ(s.SetFromLiteral(std::string("a\0b", 3), SCRIPT_TOK_STRING), 0u);
    EXPECT_EQ(s.GetText(), std::string("a\0b", 3));
    CONXScriptVariable bad;
    EXPECT_EQ(bad.SetFromLiteral("x", SCRIPT_TOK_IDENT), SCRIPT_ERR_TYPE);
}

}  // namespace
