// What the askers of the operator questions (the Windows dialog, the console)
// share with the built-ins: checking a typed number and showing one.
#pragma once

#include <cstdint>
#include <string>

enum EUSERINPUTCHECK : uint32_t {
    USERINPUT_CHECK_OK = 0,
    USERINPUT_CHECK_NOT_A_NUMBER = 1,  // ask again, showing the current value
    USERINPUT_CHECK_TOO_SMALL = 2,     // message: "Value must be >= ..."
    USERINPUT_CHECK_TOO_LARGE = 3,     // message: "Value must be <= ..."
};

// Reads a typed text as the C scanner does with the type's decimal format
// (leading blanks skipped, trailing text ignored) and checks it against the
// limits. *value gets the number when one was read; *message the text to show
// for TOO_SMALL and TOO_LARGE.
EUSERINPUTCHECK UserInputCheckNumber(const char* text, uint32_t type, uint64_t minimum,
                                     uint64_t maximum, uint64_t* value, std::string* message);

// A number in the type's decimal format ("%u", "%d", and their 64-bit forms).
std::string UserInputFormatNumber(uint32_t type, uint64_t value);
