// The module's escaped-string syntax: "\n", "\(0x1B)" and the rest become bytes.
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

}  // namespace ondutil
