// ASCII case folding: script names, mode words, answers and file extensions
// compare with A-Z folded only, whatever the C library's locale says.
#pragma once

namespace ondutil {

inline char AsciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// The C strings a and b equal with A-Z folded.
inline bool EqualsIgnoringCase(const char* a, const char* b) {
    for (; AsciiLower(*a) == AsciiLower(*b); ++a, ++b)
        if (!*a) return true;
    return false;
}

}  // namespace ondutil
