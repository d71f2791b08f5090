// Script error codes, their texts, and where an error stands in the source.
#pragma once

#include <cstdint>
#include <string>

// Bits 28..31 are the class (0 language/run time, 1 user), bits 0..27 the code.
constexpr uint32_t SCRIPT_ERR_NONE = 0;
constexpr uint32_t SCRIPT_ERR_OUTOFMEMORY = 1;
constexpr uint32_t SCRIPT_ERR_SYNTAX = 2;
constexpr uint32_t SCRIPT_ERR_STRING = 3;
constexpr uint32_t SCRIPT_ERR_UNEXPECTEDTOKEN = 4;
constexpr uint32_t SCRIPT_ERR_UNKNOWNTYPE = 5;
constexpr uint32_t SCRIPT_ERR_UNKNOWNOBJECT = 6;
constexpr uint32_t SCRIPT_ERR_UNKNOWNIDENT = 7;
constexpr uint32_t SCRIPT_ERR_PARAMCOUNT = 8;
constexpr uint32_t SCRIPT_ERR_ILLEGALPARAM = 9;
constexpr uint32_t SCRIPT_ERR_TYPE = 10;
constexpr uint32_t SCRIPT_ERR_DIVZERO = 11;
constexpr uint32_t SCRIPT_ERR_SYSFUNC = 12;
constexpr uint32_t SCRIPT_ERR_ABORTED = 13;
constexpr uint32_t SCRIPT_ERR_CLASS_USER = 0x10000000;
constexpr uint32_t SCRIPT_ERR_EXIT = 0x10000000;  // what exit() returns: ends the run, never reported
constexpr uint32_t SCRIPT_ERR_CLASSMASK = 0xF0000000;
constexpr uint32_t SCRIPT_ERR_CODEMASK = 0x0FFFFFFF;

// The constant text of a code; never null.
const char* ErrorText(uint32_t code);

// Zero-based line and column of offset in text (a NUL ends the count early).
void LineAndColumn(const char* text, uint64_t offset, uint64_t* line, uint64_t* column);

// The one diagnostic line of a failed run. phase is "parsing" or "executing".
std::string FormatDiagnostic(uint32_t code, const char* text, uint64_t tokenStart,
                             const char* phase);
