// Number text in the C library's "%u", "%d", "%X" forms and their "I64"
// variants, done here rather than by sscanf/sprintf so that a script reads
// and writes numbers the same way on every platform the module is built for.
#pragma once

#include <cstdint>
#include <string>

// Scans text (a C string: it ends at the first NUL) with one of the formats
// "%u", "%d", "%X", "%I64u", "%I64d", "%I64X" (also "%x", "%I64x"). Rules:
//  - leading white space (space, \t, \n, \v, \f, \r) is skipped;
//  - one optional sign, '+' or '-', directly in front of the digits;
//  - hexadecimal formats accept an optional "0x" or "0X" after the sign, and
//    digits in either case; "0x" followed by no hex digit reads as 0;
//  - at least one digit must follow, else nothing is converted (false);
//  - digits accumulate modulo 2^32 ("%u", "%d", "%X") or 2^64 (the "I64"
//    forms), and a '-' negates modulo the same width: overflow wraps, it is
//    never clamped ("4294967296" as "%u" gives 0, "-1" gives 4294967295);
//  - whatever follows the digits is ignored.
// On success *value holds the result zero-extended from the format's width.
// false for a text without a number and for an unknown format.
bool ScriptScanNumber(const char* text, const char* format, uint64_t* value);

// Formats value with "%u", "%d", "%X" (value taken as 32 bits) or "%I64u",
// "%I64d", "%I64X" (64 bits): decimal, or upper-case hexadecimal without
// prefix or padding. An unknown format gives the empty text.
std::string ScriptFormatNumber(const char* format, uint64_t value);
