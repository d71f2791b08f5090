// libFuzzer harness for the escaped-string parser.
// The bytes are copied into a heap buffer of exactly their size plus the NUL
// the function may read, and parsed in every caller mode: the Terminal's
// (terminator 0, the text's length), with a quote terminator, the lexer's
// unlimited length, and with an arbitrary terminator taken from the first byte;
// and shown with the display escaper, the bytes must parse back to themselves.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "util/EscapedString.h"


namespace {

void Check(bool condition) {
    if (!condition) abort();
}

bool KnownMessage(const std::string& m) {
    if (m == "String not terminated." || m == "Unallowed line break inside string." ||
        m == "Incomplete ESC sequence at end of input." || m == "Number too big in numerical ESC sequence")
        return true;
    auto wraps = [&](const char* head, size_t bodyMin) {
        size_t h = strlen(head);
        return m.size() >= h + bodyMin + 2 && m.compare(0, h, head) == 0 &&
               m.compare(m.size() - 2, 2, "\".") == 0;
    };
    if (wraps("Invalid ESC sequence \"\\", 1)) return m.size() == strlen("Invalid ESC sequence \"\\") + 3;
    if (wraps("Invalid char in numerical ESC sequence \"", 1))
        return m.size() == strlen("Invalid char in numerical ESC sequence \"") + 3;
    if (wraps("Invalid number in ESC sequence \"", 1)) return m == "Invalid number in ESC sequence \"0\".";
    return false;
}

void Run(const char* text, size_t size, size_t length, char terminator) {
    const bool unlimited = length == SIZE_MAX;
    size_t end = SIZE_MAX - 1;
    std::string error = "x";
    int ok = -1;
    std::string out = ondutil::ParseString(text, length, terminator, &end, &error, &ok);
    Check(ok == 0 || ok == 1);
    // Never beyond the NUL that follows the text.
    Check(end <= size + 1);
    if (!unlimited) Check(end <= length + 1);
    if (unlimited && terminator != '\0') {
        // Stops at the first NUL at the latest.
        size_t nul = strnlen(text, size);
        Check(end <= nul + 1);
    }
    // Every output byte costs at least one input byte.
    Check(out.size() <= end);
    if (ok == 0) {
        Check(out.empty());
        Check(KnownMessage(error));
        Check(end >= 1 || length == 0);
    } else {
        Check(error.empty());
        if (terminator != '\0') {
            Check(end >= 1 && text[end - 1] == terminator);
        } else {
            Check(end == length || (end >= 1 && text[end - 1] == '\0'));
        }
    }
    // The same without outputs gives the same bytes.
    std::string again = ondutil::ParseString(text, length, terminator, nullptr, nullptr, nullptr);
    Check(again == out);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    char* text = static_cast<char*>(malloc(size + 1));
    if (!text) return 0;
    if (size) memcpy(text, data, size);
    text[size] = '\0';
    Run(text, size, size, '\0');
    Run(text, size, size, '"');
    Run(text, size, SIZE_MAX, '"');
    if (size >= 1) Run(text + 1, size - 1, size - 1, text[0]);
    if (size >= 1) Run(text + 1, size - 1, SIZE_MAX, text[0]);
    // Any bytes, shown escaped, parse back to themselves.
    std::string bytes(text, size);
    std::string shown = ondutil::EscapeForDisplay(text, size, true, size % 2 == 0) + "\"";
    int ok = 0;
    Check(ondutil::ParseString(shown.c_str(), shown.size(), '"', nullptr, nullptr, &ok) == bytes && ok);
    free(text);
    return 0;
}
