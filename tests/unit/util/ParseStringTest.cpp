// The escaped-string parser.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "util/EscapedString.h"


namespace {

struct TParsed {
    std::string out;
    size_t end;
    std::string error;
    int ok;
};

// The text is copied into a buffer of exactly its size plus the NUL that
// ParseString may read, so a sanitizer build sees any read beyond it.
TParsed Parse(const std::string& text, char terminator, size_t length) {
    std::vector<char> buffer(text.begin(), text.end());
    buffer.push_back('\0');
    TParsed r{"junk", 777, "junk", 7};
    r.out = ondutil::ParseString(buffer.data(), length, terminator, &r.end, &r.error, &r.ok);
    return r;
}
TParsed Parse(const std::string& text, char terminator = '\0') {
    return Parse(text, terminator, text.size());
}
TParsed ParseUnlimited(const std::string& text, char terminator = '"') {
    return Parse(text, terminator, SIZE_MAX);
}

void ExpectOk(const TParsed& r, const std::string& out, size_t end) {
    EXPECT_EQ(r.ok, 1);
    EXPECT_EQ(r.error, "");
    EXPECT_EQ(r.out, out);
    EXPECT_EQ(r.end, end);
}
void ExpectFail(const TParsed& r, const std::string& error, size_t end) {
    EXPECT_EQ(r.ok, 0);
    EXPECT_EQ(r.error, error);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.end, end);
}

const std::string kNotTerminated = "String not terminated.";
const std::string kLineBreak = "Unallowed line break inside string.";
const std::string kIncomplete = "Incomplete ESC sequence at end of input.";
const std::string kTooBig = "Number too big in numerical ESC sequence";

}  // namespace

// --- documented cases -------------------------------------------------------

TEST(UtilParseString, NumericEscapesInAllBases) {
    const std::string in = "A\\(65)\\(x41)\\(b1000001)";
    // The input ends with an escape sequence: the NUL after it is read and ends it.
    ExpectOk(Parse(in), "AAAA", in.size() + 1);
}

TEST(UtilParseString, StopsAtTerminatorAndCountsIt) {
    ExpectOk(Parse("abc\"rest", '"'), "abc", 4);
}

TEST(UtilParseString, NumberTooBigAndLimits) {
    ExpectFail(Parse("\\(256)"), kTooBig, 5);  // fails at the digit that makes it too big
    ExpectOk(Parse("\\(255)"), "\xFF", 7);
    ExpectOk(Parse("\\(0000255)"), "\xFF", 11);
    ExpectOk(Parse("\\(0000000000000000000000001)x"), "\x01x", 29);
}

TEST(UtilParseString, NumericEscapeCutOffByLength) {
    ExpectFail(Parse("\\(12"), kIncomplete, 4);
    ExpectFail(Parse("\\("), kIncomplete, 2);
    ExpectFail(Parse("\\(x"), kIncomplete, 3);
    // The length limits, not the NUL: the ")" beyond it is not taken.
    ExpectFail(Parse("\\(12)", '\0', 4), kIncomplete, 4);
}

TEST(UtilParseString, InvalidCharInNumericEscapeIsNamed) {
    ExpectFail(Parse("\\(1x)"), "Invalid char in numerical ESC sequence \"x\".", 4);
    ExpectFail(Parse("\\(b2)"), "Invalid char in numerical ESC sequence \"2\".", 4);
    ExpectFail(Parse("\\(x1x)"), "Invalid char in numerical ESC sequence \"x\".", 5);
    ExpectFail(Parse("\\(1b)"), "Invalid char in numerical ESC sequence \"b\".", 4);
    ExpectFail(Parse("\\(bx)"), "Invalid char in numerical ESC sequence \"x\".", 4);
    ExpectFail(Parse("\\(1a)"), "Invalid char in numerical ESC sequence \"a\".", 4);
    ExpectFail(Parse("\\(xg)"), "Invalid char in numerical ESC sequence \"g\".", 4);
    ExpectFail(Parse("\\(-1)"), "Invalid char in numerical ESC sequence \"-\".", 3);
    ExpectFail(Parse("\\( 1)"), "Invalid char in numerical ESC sequence \" \".", 3);
    ExpectFail(Parse("\\(1\")", '"'), "Invalid char in numerical ESC sequence \"\"\".", 4);
}

TEST(UtilParseString, BackslashAsLastByte) {
    ExpectFail(Parse("ab\\"), kIncomplete, 3);
    ExpectFail(Parse("ab\\", '"'), kIncomplete, 3);
    ExpectFail(Parse("\\"), kIncomplete, 1);
}

TEST(UtilParseString, LineBreaks) {
    ExpectFail(Parse("a\nb"), kLineBreak, 2);
    ExpectFail(Parse("a\rb"), kLineBreak, 2);
    ExpectFail(Parse("a\nb\"", '"'), kLineBreak, 2);
    // As the last byte with terminator 0 it is kept (the length test comes first).
    ExpectOk(Parse("ab\n"), "ab\n", 3);
    ExpectOk(Parse("ab\r"), "ab\r", 3);
    // With a terminator the last byte fails as unterminated, not as a line break.
    ExpectFail(Parse("ab\n", '"'), kNotTerminated, 3);
    // A line break that is the terminator ends the string.
    ExpectOk(Parse("ab\ncd", '\n'), "ab", 3);
}

TEST(UtilParseString, UnknownEscapeIsNamed) {
    ExpectFail(Parse("\\q"), "Invalid ESC sequence \"\\q\".", 2);
    ExpectFail(Parse("ab\\qcd"), "Invalid ESC sequence \"\\q\".", 4);
}

TEST(UtilParseString, EscapeAtEndReadsTheNul) {
    ExpectOk(Parse("x\\n"), "x\n", 4);
    ExpectFail(Parse("x\\n", '"'), kNotTerminated, 4);
    ExpectOk(Parse("\\(65)"), "A", 6);
    ExpectFail(Parse("\\(65)", '"'), kNotTerminated, 6);
    // The byte after an escape is read even beyond the length: here a quote.
    ExpectOk(Parse("\\n\"", '"', 2), "\n", 3);
    ExpectOk(Parse("\\(1)\"", '"', 4), "\x01", 5);
}

// --- escapes ---------------------------------------------------------------

TEST(UtilParseString, EveryValidSingleEscape) {
    struct {
        char e;
        char byte;
    } table[] = {{'"', 0x22}, {'\\', 0x5C}, {'n', 0x0A}, {'t', 0x09}, {'r', 0x0D},
                 {'A', 0x0A}, {'a', 0x0A}, {'B', 0x0B}, {'b', 0x0B}, {'C', 0x0C},
                 {'c', 0x0C}, {'D', 0x0D}, {'d', 0x0D}, {'E', 0x0E}, {'e', 0x0E},
                 {'F', 0x0F}, {'f', 0x0F}};
    for (auto& t : table) {
        SCOPED_TRACE(t.e);
        ExpectOk(Parse(std::string("<\\") + t.e + ">"), std::string("<") + t.byte + ">", 4);
    }
    for (char d = '0'; d <= '9'; ++d) {
        SCOPED_TRACE(d);
        ExpectOk(Parse(std::string("\\") + d + "."), std::string(1, char(d - '0')) + ".", 3);
    }
}

TEST(UtilParseString, EveryOtherEscapeByteIsInvalid) {
    const std::string valid = "\"\\ntr0123456789AaBbCcDdEeFf(";
    for (int e = 0; e < 256; ++e) {
        if (valid.find(char(e)) != std::string::npos) continue;
        SCOPED_TRACE(e);
        std::string in = std::string("\\") + char(e) + "zz";
        std::string message = std::string("Invalid ESC sequence \"\\") + char(e) + "\".";
        ExpectFail(Parse(in), message, 2);
    }
}

TEST(UtilParseString, CEscapesThatAreNotTheCOnes) {
    ExpectOk(Parse("\\a\\b\\f"), "\x0A\x0B\x0F", 7);  // hex digits, not BEL/BS/FF
    ExpectFail(Parse("\\N"), "Invalid ESC sequence \"\\N\".", 2);
    ExpectFail(Parse("\\T"), "Invalid ESC sequence \"\\T\".", 2);
    ExpectFail(Parse("\\R"), "Invalid ESC sequence \"\\R\".", 2);
    ExpectFail(Parse("\\x41"), "Invalid ESC sequence \"\\x\".", 2);
}

TEST(UtilParseString, NumericEscapeForms) {
    ExpectOk(Parse("\\(x)."), std::string(1, '\0') + ".", 5);  // the prefix counts as a digit
    ExpectOk(Parse("\\(b)."), std::string(1, '\0') + ".", 5);
    ExpectOk(Parse("\\(X)."), std::string(1, '\0') + ".", 5);
    ExpectOk(Parse("\\(B)."), std::string(1, '\0') + ".", 5);
    ExpectFail(Parse("\\()"), "Invalid number in ESC sequence \"0\".", 3);
    ExpectOk(Parse("\\(xff)\\(XFF)\\(xFf)\\(x0a)."), "\xFF\xFF\xFF\x0A.", 25);
    ExpectOk(Parse("\\(b11111111)."), "\xFF.", 13);
    ExpectFail(Parse("\\(b100000000)"), kTooBig, 12);
    ExpectFail(Parse("\\(x100)"), kTooBig, 6);
    ExpectFail(Parse("\\(999)"), kTooBig, 5);
    ExpectOk(Parse("\\(0)."), std::string(1, '\0') + ".", 5);
    ExpectOk(Parse("\\(xb)."), "\x0B.", 6);  // 'b' after the prefix is a hex digit
    ExpectFail(Parse("\\(Bx)"), "Invalid char in numerical ESC sequence \"x\".", 4);
    ExpectFail(Parse("\\(xx)"), "Invalid char in numerical ESC sequence \"x\".", 4);
}

// --- empty input, NUL bytes, outputs ---------------------------------------

TEST(UtilParseString, EmptyInput) {
    ExpectOk(Parse("", '\0'), "", 0);
    ExpectFail(Parse("", '"'), kNotTerminated, 0);
}

TEST(UtilParseString, UnterminatedWithTerminator) {
    ExpectFail(Parse("abc", '"'), kNotTerminated, 3);
    ExpectFail(Parse("a", '"'), kNotTerminated, 1);
    ExpectOk(Parse("\"", '"'), "", 1);
}

TEST(UtilParseString, EmbeddedNulBytes) {
    // With terminator 0 a NUL byte is the terminator.
    ExpectOk(Parse(std::string("a\0b", 3)), "a", 2);
    // With another terminator it is an ordinary byte and survives.
    ExpectOk(Parse(std::string("a\0b\"", 4), '"'), std::string("a\0b", 3), 4);
    // Escapes that produce NUL bytes.
    ExpectOk(Parse("\\0\\(0)\\(x0)\\(b0)."), std::string(4, '\0') + ".", 17);
    // An escape byte that is a NUL is named in the message, NUL included.
    const std::string nul(1, '\0');
    ExpectFail(Parse(std::string("\\\0z", 3)), "Invalid ESC sequence \"\\" + nul + "\".", 2);
    ExpectFail(Parse(std::string("\\(\0)", 4)),
               "Invalid char in numerical ESC sequence \"" + nul + "\".", 3);
}

TEST(UtilParseString, HighBytesPassThrough) {
    std::string in;
    for (int b = 0x80; b < 0x100; ++b) in.push_back(char(b));
    ExpectOk(Parse(in), in, in.size());
}

TEST(UtilParseString, NullOutputsAreAllowed) {
    std::string out = ondutil::ParseString("ab\\n", 4, '\0', nullptr, nullptr, nullptr);
    EXPECT_EQ(out, "ab\n");
    out = ondutil::ParseString("ab\\q", 4, '\0', nullptr, nullptr, nullptr);
    EXPECT_EQ(out, "");
    int ok = 5;
    out = ondutil::ParseString("x\"", 2, '"', nullptr, nullptr, &ok);
    EXPECT_EQ(out, "x");
    EXPECT_EQ(ok, 1);
    std::string error;
    out = ondutil::ParseString("x", 1, '"', nullptr, &error, nullptr);
    EXPECT_EQ(error, kNotTerminated);
}

TEST(UtilParseString, ErrorTextClearedOnSuccess) {
    std::string error = "old";
    int ok = 0;
    size_t end = 0;
    ondutil::ParseString("x", 1, '\0', &end, &error, &ok);
    EXPECT_EQ(error, "");
    EXPECT_EQ(ok, 1);
    EXPECT_EQ(end, 1u);
}

TEST(UtilParseString, TerminatorIsSearchedOnlyOutsideEscapes) {
    ExpectOk(Parse("a\\\"b\"c", '"'), "a\"b", 5);
    ExpectOk(Parse("a\\(34)b\"", '"'), "a\"b", 8);
}

TEST(UtilParseString, LongInputSinglePass) {
    std::string in(1 << 20, 'x');
    in += "\\(x41)\"tail";
    TParsed r = Parse(in, '"');
    EXPECT_EQ(r.ok, 1);
    EXPECT_EQ(r.out.size(), (size_t(1) << 20) + 1);
    EXPECT_EQ(r.out.back(), 'A');
    EXPECT_EQ(r.end, (size_t(1) << 20) + 7);
}

// --- the lexer's unlimited length ------------------------------------------

TEST(UtilParseString, UnlimitedLengthEndsAtClosingQuote) {
    ExpectOk(ParseUnlimited("abc\" + 1;"), "abc", 4);
    ExpectOk(ParseUnlimited("\\\"q\\\"\""), "\"q\"", 6);
    ExpectFail(ParseUnlimited("ab\ncd\""), kLineBreak, 3);
    ExpectFail(ParseUnlimited("ab\r\n"), kLineBreak, 3);
}

TEST(UtilParseString, UnlimitedLengthStopsAtTheTextsNul) {
    // Never beyond the NUL: the fail position is just after it.
    ExpectFail(ParseUnlimited("abc"), kNotTerminated, 4);
    ExpectFail(ParseUnlimited(""), kNotTerminated, 1);
    ExpectFail(ParseUnlimited("x\\n"), kNotTerminated, 4);   // escape at the end
    ExpectFail(ParseUnlimited("x\\"), kNotTerminated, 3);    // backslash at the end
    ExpectFail(ParseUnlimited("\\(12"), kNotTerminated, 5);  // open numeric escape
    ExpectFail(ParseUnlimited("\\("), kNotTerminated, 3);
    // Bytes after the NUL in the same buffer are never looked at.
    std::string withTail("ab\0\"", 4);
    std::vector<char> buffer(withTail.begin(), withTail.end());
    buffer.push_back('\0');
    size_t end = 0;
    int ok = 1;
    std::string out = ondutil::ParseString(buffer.data(), SIZE_MAX, '"', &end, nullptr, &ok);
    EXPECT_EQ(ok, 0);
    EXPECT_EQ(end, 3u);
    EXPECT_EQ(out, "");
}

TEST(UtilParseString, UnlimitedLengthWithTerminatorZero) {
    ExpectOk(ParseUnlimited("abc", '\0'), "abc", 4);
    ExpectOk(ParseUnlimited("a\\n", '\0'), "a\n", 4);
}
