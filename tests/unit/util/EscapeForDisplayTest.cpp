// Bytes shown as escaped text: one line, readable, and parsed back unchanged.
#include <gtest/gtest.h>

#include <string>

#include "util/EscapedString.h"

namespace {

std::string Shown(const std::string& bytes) { return ondutil::EscapeForDisplay(bytes.data(), bytes.size()); }

std::string ParsedBack(const std::string& text) {
    int ok = 0;
    std::string error;
    std::string bytes = ondutil::ParseString(text.c_str(), text.size(), '\0', nullptr, &error, &ok);
    EXPECT_EQ(ok, 1) << error;
    return bytes;
}

TEST(EscapeForDisplay, ShowsControlBytesAndBackslashesAsEscapes) {
    EXPECT_EQ(Shown("ver 1.0"), "ver 1.0");
    EXPECT_EQ(Shown("a\r\n\tb"), "a\\r\\n\\tb");
    EXPECT_EQ(Shown("C:\\dir \"x\""), "C:\\\\dir \"x\"");
    EXPECT_EQ(Shown(std::string("\0\x1b\x7f\xff", 4)), "\\(0)\\(27)\\(127)\\(255)");
    EXPECT_EQ(Shown(""), "");
}

TEST(EscapeForDisplay, EveryByteComesBackThroughTheParser) {
    std::string all;
    for (int c = 0; c < 256; ++c) all += static_cast<char>(c);
    std::string shown = Shown(all);
    EXPECT_EQ(shown.find_first_of("\r\n"), std::string::npos);
    EXPECT_EQ(ParsedBack(shown), all);
    // Digits after an escape stay digits: "\(1)2" is not "\(12)".
    EXPECT_EQ(ParsedBack(Shown(std::string("\x01" "2\x1b" "3", 4))), std::string("\x01" "2\x1b" "3", 4));
}

// Between quotes (the console's prompts, the conformance runner's reports):
// the quote is escaped, and code-page text may stay as it is; what is shown
// is read back by a parse that stops at the closing quote.
TEST(EscapeForDisplay, QuotedAndCodePageText) {
    EXPECT_EQ(ondutil::EscapeForDisplay("a\"\xE4", 3, true, true), "a\\\"\xE4");
    std::string all;
    for (int c = 0; c < 256; ++c) all += static_cast<char>(c);
    for (bool keepHigh : {false, true}) {
        std::string shown = ondutil::EscapeForDisplay(all.data(), all.size(), true, keepHigh) + "\"";
        size_t end = 0;
        int ok = 0;
        EXPECT_EQ(ondutil::ParseString(shown.c_str(), shown.size(), '"', &end, nullptr, &ok), all);
        EXPECT_EQ(end, shown.size());
    }
}

}  // namespace
