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

const size_t kOwnSize = SIZE_MAX - 1;  // the input's own size as the length
const size_t kNoLimit = SIZE_MAX;      // the lexer's way: up to the text's NUL

// The text is copied into a buffer of exactly its size plus the NUL that
// ParseString may read, so a sanitizer build sees any read beyond it.
TParsed Parse(const std::string& text, char terminator, size_t length = kOwnSize) {
    std::vector<char> buffer(text.begin(), text.end());
    buffer.push_back('\0');
    TParsed r{"junk", 777, "junk", 7};
    if (length == kOwnSize) length = text.size();
    r.out = ondutil::ParseString(buffer.data(), length, terminator, &r.end, &r.error, &r.ok);
    return r;
}

void ExpectParsed(const TParsed& r, const std::string& out, const std::string& error, size_t end) {
    EXPECT_EQ(r.ok, error.empty() ? 1 : 0);
    EXPECT_EQ(r.error, error);
    EXPECT_EQ(r.out, error.empty() ? out : "");
    EXPECT_EQ(r.end, end);
}

const std::string kNotTerminated = "String not terminated.";
const std::string kLineBreak = "Unallowed line break inside string.";
const std::string kIncomplete = "Incomplete ESC sequence at end of input.";
const std::string kTooBig = "Number too big in numerical ESC sequence";
std::string InvalidChar(const std::string& c) {
    return "Invalid char in numerical ESC sequence \"" + c + "\".";
}
std::string InvalidEscape(const std::string& c) { return "Invalid ESC sequence \"\\" + c + "\"."; }
const std::string kNul(1, '\0');

struct TCase {
    std::string in;
    char terminator;
    size_t length;
    std::string out;    // on success
    std::string error;  // "" = success
    size_t end;
};

// Inputs as they stand in memory: "\\" is one backslash.
const TCase kCases[] = {
    // numeric escapes, their forms and limits
    {"A\\(65)\\(x41)\\(b1000001)", 0, kOwnSize, "AAAA", "", 24},  // escape at the end: NUL read
    {"\\(255)", 0, kOwnSize, "\xFF", "", 7},
    {"\\(0000255)", 0, kOwnSize, "\xFF", "", 11},
    {"\\(0000000000000000000000001)x", 0, kOwnSize, "\x01x", "", 29},
    {"\\(x).", 0, kOwnSize, kNul + ".", "", 5},  // the prefix counts as a digit
    {"\\(b).", 0, kOwnSize, kNul + ".", "", 5},
    {"\\(X).", 0, kOwnSize, kNul + ".", "", 5},
    {"\\(B).", 0, kOwnSize, kNul + ".", "", 5},
    {"\\(0).", 0, kOwnSize, kNul + ".", "", 5},
    {"\\(xff)\\(XFF)\\(xFf)\\(x0a).", 0, kOwnSize, "\xFF\xFF\xFF\x0A.", "", 25},
    {"\\(b11111111).", 0, kOwnSize, "\xFF.", "", 13},
    {"\\(xb).", 0, kOwnSize, "\x0B.", "", 6},  // 'b' after the prefix is a hex digit
    {"\\0\\(0)\\(x0)\\(b0).", 0, kOwnSize, std::string(4, '\0') + ".", "", 17},
    {"\\(256)", 0, kOwnSize, "", kTooBig, 5},  // at the digit that makes it too big
    {"\\(b100000000)", 0, kOwnSize, "", kTooBig, 12},
    {"\\(x100)", 0, kOwnSize, "", kTooBig, 6},
    {"\\(999)", 0, kOwnSize, "", kTooBig, 5},
    {"\\()", 0, kOwnSize, "", "Invalid number in ESC sequence \"0\".", 3},
    {"\\(12", 0, kOwnSize, "", kIncomplete, 4},
    {"\\(", 0, kOwnSize, "", kIncomplete, 2},
    {"\\(x", 0, kOwnSize, "", kIncomplete, 3},
    {"\\(12)", 0, 4, "", kIncomplete, 4},  // the length limits, not the NUL
    {"\\(1x)", 0, kOwnSize, "", InvalidChar("x"), 4},
    {"\\(b2)", 0, kOwnSize, "", InvalidChar("2"), 4},
    {"\\(x1x)", 0, kOwnSize, "", InvalidChar("x"), 5},
    {"\\(1b)", 0, kOwnSize, "", InvalidChar("b"), 4},
    {"\\(bx)", 0, kOwnSize, "", InvalidChar("x"), 4},
    {"\\(Bx)", 0, kOwnSize, "", InvalidChar("x"), 4},
    {"\\(xx)", 0, kOwnSize, "", InvalidChar("x"), 4},
    {"\\(1a)", 0, kOwnSize, "", InvalidChar("a"), 4},
    {"\\(xg)", 0, kOwnSize, "", InvalidChar("g"), 4},
    {"\\(-1)", 0, kOwnSize, "", InvalidChar("-"), 3},
    {"\\( 1)", 0, kOwnSize, "", InvalidChar(" "), 3},
    {"\\(1\")", '"', kOwnSize, "", InvalidChar("\""), 4},
    {std::string("\\(\0)", 4), 0, kOwnSize, "", InvalidChar(kNul), 3},
    // single escapes
    {"\\q", 0, kOwnSize, "", InvalidEscape("q"), 2},
    {"ab\\qcd", 0, kOwnSize, "", InvalidEscape("q"), 4},
    {std::string("\\\0z", 3), 0, kOwnSize, "", InvalidEscape(kNul), 2},
    {"ab\\", 0, kOwnSize, "", kIncomplete, 3},
    {"ab\\", '"', kOwnSize, "", kIncomplete, 3},
    {"\\", 0, kOwnSize, "", kIncomplete, 1},
    {"x\\n", 0, kOwnSize, "x\n", "", 4},
    {"x\\n", '"', kOwnSize, "", kNotTerminated, 4},
    {"\\(65)", 0, kOwnSize, "A", "", 6},
    {"\\(65)", '"', kOwnSize, "", kNotTerminated, 6},
    {"\\n\"", '"', 2, "\n", "", 3},  // the byte after an escape is read beyond the length
    {"\\(1)\"", '"', 4, "\x01", "", 5},
    // terminators, line breaks, empty input, NUL bytes
    {"abc\"rest", '"', kOwnSize, "abc", "", 4},
    {"a\\\"b\"c", '"', kOwnSize, "a\"b", "", 5},  // only outside escapes
    {"a\\(34)b\"", '"', kOwnSize, "a\"b", "", 8},
    {"\"", '"', kOwnSize, "", "", 1},
    {"abc", '"', kOwnSize, "", kNotTerminated, 3},
    {"a", '"', kOwnSize, "", kNotTerminated, 1},
    {"", 0, kOwnSize, "", "", 0},
    {"", '"', kOwnSize, "", kNotTerminated, 0},
    {"a\nb", 0, kOwnSize, "", kLineBreak, 2},
    {"a\rb", 0, kOwnSize, "", kLineBreak, 2},
    {"a\nb\"", '"', kOwnSize, "", kLineBreak, 2},
    {"ab\n", 0, kOwnSize, "ab\n", "", 3},  // the last byte: the length test comes first
    {"ab\r", 0, kOwnSize, "ab\r", "", 3},
    {"ab\n", '"', kOwnSize, "", kNotTerminated, 3},
    {"ab\ncd", '\n', kOwnSize, "ab", "", 3},  // a line break that is the terminator
    {std::string("a\0b", 3), 0, kOwnSize, "a", "", 2},  // NUL is the terminator 0
    {std::string("a\0b\"", 4), '"', kOwnSize, std::string("a\0b", 3), "", 4},
    // the lexer's unlimited length: never beyond the text's NUL
    {"abc\" + 1;", '"', kNoLimit, "abc", "", 4},
    {"\\\"q\\\"\"", '"', kNoLimit, "\"q\"", "", 6},
    {"ab\ncd\"", '"', kNoLimit, "", kLineBreak, 3},
    {"ab\r\n", '"', kNoLimit, "", kLineBreak, 3},
    {"abc", '"', kNoLimit, "", kNotTerminated, 4},
    {"", '"', kNoLimit, "", kNotTerminated, 1},
    {"x\\n", '"', kNoLimit, "", kNotTerminated, 4},
    {"x\\", '"', kNoLimit, "", kNotTerminated, 3},
    {"\\(12", '"', kNoLimit, "", kNotTerminated, 5},
    {"\\(", '"', kNoLimit, "", kNotTerminated, 3},
    {std::string("ab\0\"", 4), '"', kNoLimit, "", kNotTerminated, 3},  // nothing after the NUL
    {"abc", 0, kNoLimit, "abc", "", 4},
    {"a\\n", 0, kNoLimit, "a\n", "", 4},
};

TEST(UtilParseString, Cases) {
    for (const TCase& c : kCases) {
        SCOPED_TRACE(ondutil::EscapeForDisplay(c.in.data(), c.in.size()));
        ExpectParsed(Parse(c.in, c.terminator, c.length), c.out, c.error, c.end);
    }
}

TEST(UtilParseString, EveryEscapeByte) {
    const struct {
        char e;
        char byte;
    } table[] = {{'"', 0x22}, {'\\', 0x5C}, {'n', 0x0A}, {'t', 0x09}, {'r', 0x0D},
                 {'A', 0x0A}, {'a', 0x0A}, {'B', 0x0B}, {'b', 0x0B}, {'C', 0x0C},
                 {'c', 0x0C}, {'D', 0x0D}, {'d', 0x0D}, {'E', 0x0E}, {'e', 0x0E},
                 {'F', 0x0F}, {'f', 0x0F}};  // \a \b \f are hex digits, not BEL/BS/FF
    for (auto& t : table)
        ExpectParsed(Parse(std::string("<\\") + t.e + ">", 0), std::string("<") + t.byte + ">", "", 4);
    for (char d = '0'; d <= '9'; ++d)
        ExpectParsed(Parse(std::string("\\") + d + ".", 0), std::string(1, char(d - '0')) + ".", "",
                     3);
    const std::string valid = "\"\\ntr0123456789AaBbCcDdEeFf(";  // \N \T \R \x are not
    for (int e = 0; e < 256; ++e) {
        if (valid.find(char(e)) != std::string::npos) continue;
        ExpectParsed(Parse(std::string("\\") + char(e) + "zz", 0), "",
                     InvalidEscape(std::string(1, char(e))), 2);
    }
}

TEST(UtilParseString, NullOutputsAreAllowed) {
    EXPECT_EQ(ondutil::ParseString("ab\\n", 4, '\0', nullptr, nullptr, nullptr), "ab\n");
    EXPECT_EQ(ondutil::ParseString("ab\\q", 4, '\0', nullptr, nullptr, nullptr), "");
    int ok = 5;
    EXPECT_EQ(ondutil::ParseString("x\"", 2, '"', nullptr, nullptr, &ok), "x");
    EXPECT_EQ(ok, 1);
    std::string error;
    ondutil::ParseString("x", 1, '"', nullptr, &error, nullptr);
    EXPECT_EQ(error, kNotTerminated);
}

}  // namespace
