// The scanning and formatting rules behind "strto...", "hexstrto...",
// "...tostr" and "print": the same on every platform, independent of sscanf.
#include <gtest/gtest.h>

#include <string>

#include "scriptrt/NumberScan.h"

namespace {

// "fail" when nothing was converted, else the value in decimal.
std::string Scan(const char* text, const char* format) {
    uint64_t value = 12345;
    if (!ScriptScanNumber(text, format, &value)) return "fail";
    return std::to_string(value);
}

}  // namespace

TEST(BuiltinNumberScan, LeadingBlanksAndTrailingText) {
    EXPECT_EQ(Scan("  12abc", "%u"), "12");
    EXPECT_EQ(Scan("\t\n\v\f\r 7", "%u"), "7");
    EXPECT_EQ(Scan("12 34", "%u"), "12");
    EXPECT_EQ(Scan("", "%u"), "fail");
    EXPECT_EQ(Scan("   ", "%u"), "fail");
    EXPECT_EQ(Scan("abc", "%u"), "fail");
    EXPECT_EQ(Scan("a12", "%d"), "fail");
    // The text is a C string: a NUL byte ends it.
    EXPECT_EQ(Scan(std::string("4\0" "2", 3).c_str(), "%u"), "4");
}

TEST(BuiltinNumberScan, Signs) {
    EXPECT_EQ(Scan("-5", "%d"), std::to_string(0xFFFFFFFBull));
    EXPECT_EQ(Scan("+5", "%d"), "5");
    EXPECT_EQ(Scan("-1", "%u"), "4294967295");  // unsigned scans negate modulo 2^32
    EXPECT_EQ(Scan("-1", "%I64u"), "18446744073709551615");
    EXPECT_EQ(Scan("- 5", "%d"), "fail");       // the sign must touch the digits
    EXPECT_EQ(Scan("-", "%d"), "fail");
    EXPECT_EQ(Scan("+-5", "%d"), "fail");
    EXPECT_EQ(Scan("  -0", "%d"), "0");
    EXPECT_EQ(Scan("-ff", "%X"), std::to_string(0xFFFFFF01ull));
}

TEST(BuiltinNumberScan, OverflowWrapsAtTheFormatsWidth) {
    EXPECT_EQ(Scan("4294967295", "%u"), "4294967295");
    EXPECT_EQ(Scan("4294967296", "%u"), "0");
    EXPECT_EQ(Scan("4294967301", "%u"), "5");
    EXPECT_EQ(Scan("2147483648", "%d"), "2147483648");  // the int32 bit pattern of -2147483648
    EXPECT_EQ(Scan("4294967296", "%I64u"), "4294967296");
    EXPECT_EQ(Scan("18446744073709551615", "%I64u"), "18446744073709551615");
    EXPECT_EQ(Scan("18446744073709551616", "%I64u"), "0");
    EXPECT_EQ(Scan("9223372036854775808", "%I64d"), "9223372036854775808");
    EXPECT_EQ(Scan("1FFFFFFFF", "%X"), "4294967295");
    EXPECT_EQ(Scan("1FFFFFFFF", "%I64X"), "8589934591");
    EXPECT_EQ(Scan("10000000000000000F", "%I64X"), "15");
}

TEST(BuiltinNumberScan, Hexadecimal) {
    EXPECT_EQ(Scan("ff", "%X"), "255");
    EXPECT_EQ(Scan("FF", "%X"), "255");
    EXPECT_EQ(Scan("fF", "%x"), "255");
    EXPECT_EQ(Scan("0x1A", "%X"), "26");
    EXPECT_EQ(Scan("0X1a", "%I64X"), "26");
    EXPECT_EQ(Scan("0x", "%X"), "0");   // the "0" alone
    EXPECT_EQ(Scan("0xg", "%X"), "0");
    EXPECT_EQ(Scan("x1", "%X"), "fail");
    EXPECT_EQ(Scan("g", "%X"), "fail");
    EXPECT_EQ(Scan("12g", "%X"), "18");
    // Decimal scans stop at hex letters and at an "x".
    EXPECT_EQ(Scan("0x10", "%u"), "0");
    EXPECT_EQ(Scan("1f", "%d"), "1");
}

TEST(BuiltinNumberScan, UnknownFormatsConvertNothing) {
    EXPECT_EQ(Scan("1", "%s"), "fail");
    EXPECT_EQ(Scan("1", "%I32u"), "fail");
    EXPECT_EQ(Scan("1", "%uu"), "fail");
    EXPECT_EQ(Scan("1", "u"), "fail");
    EXPECT_EQ(Scan("1", ""), "fail");
    EXPECT_EQ(ScriptFormatNumber("%s", 1), "");
}

TEST(BuiltinNumberScan, FormatsByWidthAndSign) {
    EXPECT_EQ(ScriptFormatNumber("%u", 4294967295u), "4294967295");
    EXPECT_EQ(ScriptFormatNumber("%u", 1ull << 40), "0");  // 32 bits only
    EXPECT_EQ(ScriptFormatNumber("%d", 0xFFFFFFFBull), "-5");
    EXPECT_EQ(ScriptFormatNumber("%d", 0xFFFFFFFFFFFFFFFBull), "-5");
    EXPECT_EQ(ScriptFormatNumber("%d", 0x80000000ull), "-2147483648");
    EXPECT_EQ(ScriptFormatNumber("%I64u", 1ull << 40), "1099511627776");
    EXPECT_EQ(ScriptFormatNumber("%I64u", ~0ull), "18446744073709551615");
    EXPECT_EQ(ScriptFormatNumber("%I64d", 0x8000000000000000ull), "-9223372036854775808");
    EXPECT_EQ(ScriptFormatNumber("%I64d", 0), "0");
    EXPECT_EQ(ScriptFormatNumber("%X", 255), "FF");
    EXPECT_EQ(ScriptFormatNumber("%X", 0xFFFFFFFFFFFFFFFFull), "FFFFFFFF");
    EXPECT_EQ(ScriptFormatNumber("%I64X", 1ull << 32), "100000000");
    EXPECT_EQ(ScriptFormatNumber("%I64X", 0), "0");
}

TEST(BuiltinNumberScan, ScanAndFormatRoundTrip) {
    const uint64_t samples[] = {0, 1, 9, 10, 255, 4294967295ull, 4294967296ull, 0x7FFFFFFFFFFFFFFFull,
                                0x8000000000000000ull, ~0ull, 0x0123456789ABCDEFull};
    for (uint64_t v : samples) {
        uint64_t back = 0;
        ASSERT_TRUE(ScriptScanNumber(ScriptFormatNumber("%I64u", v).c_str(), "%I64u", &back));
        EXPECT_EQ(back, v);
        ASSERT_TRUE(ScriptScanNumber(ScriptFormatNumber("%I64X", v).c_str(), "%I64X", &back));
        EXPECT_EQ(back, v);
        ASSERT_TRUE(ScriptScanNumber(ScriptFormatNumber("%I64d", v).c_str(), "%I64d", &back));
        EXPECT_EQ(back, v);
        ASSERT_TRUE(ScriptScanNumber(ScriptFormatNumber("%d", v).c_str(), "%d", &back));
        EXPECT_EQ(back, v & 0xFFFFFFFFu);
    }
}
