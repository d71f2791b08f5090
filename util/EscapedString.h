// The module's escaped-string syntax: "\n", "\(x1B)" and the rest become
// bytes, and bytes shown in it.
#pragma once

#include <cstddef>
#include <string>

namespace ondutil {

// Reads escaped text from input up to terminator (or length bytes; SIZE_MAX:
// up to the text's NUL). *endPos gets the position after the terminator, or
// of the fault; *errorText the fault's message ("" on success); *ok 1 or 0.
// Any of the three may be null.
std::string ParseString(const char* input, size_t length, char terminator, size_t* endPos,
                        std::string* errorText, int* ok);

// The other way: bytes as text that ParseString turns back into the same
// bytes, on one line. Printable ASCII stays as it is, a backslash is "\\",
// LF, CR and TAB are "\n", "\r", "\t", every other byte is "\(N)" in
// decimal. By default a double quote is not escaped: the text is meant for
// display and for the Terminal's input line, where ParseString's terminator
// is 0. quoted: the double quote too ("\""), for text shown between quotes;
// keepHigh: bytes from 0x80 on stay as they are (text in the code page).
std::string EscapeForDisplay(const char* bytes, size_t length, bool quoted = false,
                             bool keepHigh = false);

}  // namespace ondutil
