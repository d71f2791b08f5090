// The scanning and formatting rules behind "strto...", "hexstrto...",
// "...tostr" and "print": the same on every platform, independent of sscanf.
#include <gtest/gtest.h>

#include <string>

#include "scriptrt/NumberScan.h"

TEST(BuiltinNumberScan, Scans) {
    struct {
        const char* text;
        const char* format;
        const char* expected;  // "fail" when nothing is converted
    } cases[] = {
        // Leading blanks are skipped, what follows the number is ignored.
        {"  12abc", "%u", "12"}, {"\t\n\v\f\r 7", "%u", "7"}, {"12 34", "%u", "12"},
        {"", "%u", "fail"}, {"   ", "%u", "fail"}, {"abc", "%u", "fail"}, {"a12", "%d", "fail"},
        // One sign, touching the digits; a minus negates at the format's width.
        {"-5", "%d", "4294967291"}, {"+5", "%d", "5"}, {"-1", "%u", "4294967295"},
        {"-1", "%I64u", "18446744073709551615"}, {"- 5", "%d", "fail"}, {"-", "%d", "fail"},
        {"+-5", "%d", "fail"}, {"  -0", "%d", "0"}, {"-ff", "%X", "4294967041"},
        // Overflow wraps at the width, never clamps.
        {"4294967295", "%u", "4294967295"}, {"4294967296", "%u", "0"}, {"4294967301", "%u", "5"},
        {"2147483648", "%d", "2147483648"}, {"4294967296", "%I64u", "4294967296"},
        {"18446744073709551616", "%I64u", "0"}, {"9223372036854775808", "%I64d", "9223372036854775808"},
        {"1FFFFFFFF", "%X", "4294967295"}, {"1FFFFFFFF", "%I64X", "8589934591"},
        {"10000000000000000F", "%I64X", "15"},
        // Hexadecimal: either case, an optional 0x; "0x" alone is the 0.
        {"fF", "%x", "255"}, {"0x1A", "%X", "26"}, {"0X1a", "%I64X", "26"}, {"0x", "%X", "0"},
        {"0xg", "%X", "0"}, {"x1", "%X", "fail"}, {"g", "%X", "fail"}, {"12g", "%X", "18"},
        // Decimal scans stop at hex letters and at an "x".
        {"0x10", "%u", "0"}, {"1f", "%d", "1"},
        // Unknown formats convert nothing.
        {"1", "%s", "fail"}, {"1", "%I32u", "fail"}, {"1", "%uu", "fail"}, {"1", "u", "fail"}, {"1", "", "fail"},
    };
    for (const auto& c : cases) {
        uint64_t value = 12345;
        std::string got = ScriptScanNumber(c.text, c.format, &value) ? std::to_string(value) : "fail";
        EXPECT_EQ(got, c.expected) << '"' << c.text << "\" " << c.format;
    }
    // The text is a C string: a NUL byte ends it.
    uint64_t value = 0;
    ASSERT_TRUE(ScriptScanNumber(std::string("4\0" "2", 3).c_str(), "%u", &value));
    EXPECT_EQ(value, 4u);
}

TEST(BuiltinNumberScan, Formats) {
    struct {
        const char* format;
        uint64_t value;
        const char* expected;
    } cases[] = {
        {"%u", 4294967295u, "4294967295"}, {"%u", 1ull << 40, "0"},  // 32 bits only
        {"%d", 0xFFFFFFFBull, "-5"}, {"%d", 0xFFFFFFFFFFFFFFFBull, "-5"}, {"%d", 0x80000000ull, "-2147483648"},
        {"%I64u", 1ull << 40, "1099511627776"}, {"%I64u", ~0ull, "18446744073709551615"},
        {"%I64d", 0x8000000000000000ull, "-9223372036854775808"}, {"%I64d", 0, "0"},
        {"%X", 255, "FF"}, {"%X", ~0ull, "FFFFFFFF"}, {"%I64X", 1ull << 32, "100000000"}, {"%I64X", 0, "0"},
        {"%s", 1, ""},
    };
    for (const auto& c : cases) EXPECT_EQ(ScriptFormatNumber(c.format, c.value), c.expected) << c.format << " " << c.value;
}

TEST(BuiltinNumberScan, ScanAndFormatRoundTrip) {
    const uint64_t samples[] = {0, 1, 9, 10, 255, 4294967295ull, 4294967296ull, 0x7FFFFFFFFFFFFFFFull,
                                0x8000000000000000ull, ~0ull, 0x0123456789ABCDEFull};
    for (const char* format : {"%I64u", "%I64X", "%I64d", "%d"}) {
        const bool narrow = format[1] == 'd';
        for (uint64_t v : samples) {
            uint64_t back = 0;
            ASSERT_TRUE(ScriptScanNumber(ScriptFormatNumber(format, v).c_str(), format, &back));
            EXPECT_EQ(back, narrow ? v & 0xFFFFFFFFu : v) << format << " " << v;
        }
    }
}
