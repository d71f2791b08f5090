// The module's escaped-string syntax.
#include <cstdint>
#include <cstdio>
#include <string>

#include "util/EscapedString.h"

namespace {

const char kNotTerminated[] = "String not terminated.";
const char kLineBreak[] = "Unallowed line break inside string.";
const char kIncomplete[] = "Incomplete ESC sequence at end of input.";
const char kTooBig[] = "Number too big in numerical ESC sequence";

// The byte for a single-byte escape "\e", or -1 when e is not one.
int SingleEscape(unsigned char e) {
    switch (e) {
    case '"': return 0x22;
    case '\\': return 0x5C;
    case 'n': return 0x0A;
    case 't': return 0x09;
    case 'r': return 0x0D;
    case 'A': case 'a': return 0x0A;
    case 'B': case 'b': return 0x0B;
    case 'C': case 'c': return 0x0C;
    case 'D': case 'd': return 0x0D;
    case 'E': case 'e': return 0x0E;
    case 'F': case 'f': return 0x0F;
    default:
        if (e >= '0' && e <= '9') return e - '0';
        return -1;
    }
}

}  // namespace

std::string ondutil::ParseString(const char* input, size_t length, char terminator,
                                          size_t* endPos, std::string* errorText, int* ok) {
    // The lexer passes the largest size value: no length limit. Then the text's
    // terminating NUL is the end of the text: with a non-zero terminator reading
    // it fails with "String not terminated." (position just after the NUL), in
    // whatever state the scan is, and nothing beyond it is ever read.
    const bool unlimited = length == SIZE_MAX;
    const bool stopAtNul = unlimited && terminator != '\0';

    std::string result;
    std::string message;
    size_t pos = 0;

    auto fail = [&](std::string text) -> std::string {
        if (endPos) *endPos = pos;
        if (errorText) *errorText = std::move(text);
        if (ok) *ok = 0;
        return std::string();
    };
    auto succeed = [&]() -> std::string {
        if (endPos) *endPos = pos;
        if (errorText) errorText->clear();
        if (ok) *ok = 1;
        return std::move(result);
    };

    if (length == 0) {
        if (terminator == '\0') return succeed();
        return fail(kNotTerminated);
    }

    for (;;) {
        const char c = input[pos++];
        if (c != '\\') {
            if (c == terminator) return succeed();
            if (pos >= length || (stopAtNul && c == '\0')) {
                if (terminator != '\0') return fail(kNotTerminated);
                result.push_back(c);
                return succeed();
            }
            if (c == '\r' || c == '\n') return fail(kLineBreak);
            result.push_back(c);
            continue;
        }

        // Backslash.
        if (pos >= length) return fail(kIncomplete);
        const unsigned char e = static_cast<unsigned char>(input[pos++]);
        if (stopAtNul && e == 0) return fail(kNotTerminated);
        if (e != '(') {
            const int byte = SingleEscape(e);
            if (byte < 0) {
                message = "Invalid ESC sequence \"\\";
                message.push_back(static_cast<char>(e));
                message += "\".";
                return fail(std::move(message));
            }
            result.push_back(static_cast<char>(byte));
            continue;  // deliberately no length test: the next byte is always read
        }

        // Numeric escape "\(number)".
        unsigned value = 0;
        unsigned digits = 0;
        unsigned base = 10;
        for (;;) {
            if (pos >= length) return fail(kIncomplete);
            const unsigned char d = static_cast<unsigned char>(input[pos++]);
            if (stopAtNul && d == 0) return fail(kNotTerminated);
            if (d == ')') {
                if (digits == 0) {
                    char number[16];
                    snprintf(number, sizeof number, "%u", value);
                    message = "Invalid number in ESC sequence \"";
                    message += number;
                    message += "\".";
                    return fail(std::move(message));
                }
                result.push_back(static_cast<char>(value));
                break;  // continue at step 2, again without a length test
            }
            int digit = -1;
            if (digits == 0 && (d == 'x' || d == 'X')) {
                base = 16;
                ++digits;
                continue;
            }
            if (digits == 0 && (d == 'b' || d == 'B')) {
                base = 2;
                ++digits;
                continue;
            }
            if (base == 2) {
                if (d == '0' || d == '1') digit = d - '0';
            } else {
                if (d >= '0' && d <= '9')
                    digit = d - '0';
                else if (base == 16 && d >= 'A' && d <= 'F')
                    digit = d - 'A' + 10;
                else if (base == 16 && d >= 'a' && d <= 'f')
                    digit = d - 'a' + 10;
            }
            if (digit < 0) {
                message = "Invalid char in numerical ESC sequence \"";
                message.push_back(static_cast<char>(d));
                message += "\".";
                return fail(std::move(message));
            }
            value = value * base + static_cast<unsigned>(digit);
            ++digits;
            if (value > 255) return fail(kTooBig);
        }
    }
}
