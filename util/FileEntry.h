// One local file to copy to the device, as listed in a job file, and the two
// text rules every list of them shares (job files, the File Manager's rows):
// the mode words and the reading of a decimal column.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

enum : uint32_t {
    FILEMODE_NORMAL = 0,
    FILEMODE_BITREVERSE = 1,
    FILEMODE_PROGRAM = 2,
};

struct TFILEENTRY {
    std::string path;        // full local path once loaded
    uintptr_t reserved = 0;  // never read or written by job files; keeps the host-visible layout
    uint8_t fileId = 0;
    uint8_t fileType = 0;
    uint32_t fileMode = FILEMODE_NORMAL;
};

typedef std::vector<TFILEENTRY> TFILEENTRYLIST;

namespace ondutil {

// "bit reverse" for 1, "program" for 2, "normal" for every other value.
const char* FileModeText(uint32_t fileMode);
// The mode a word names, compared without regard to ASCII case: "bit reverse"
// 1, "program" 2, anything else (the empty text, "Program " with a blank) 0.
// text is taken as a C string: it ends at its first NUL.
uint32_t FileModeFromText(const char* text);

// A decimal column read as sscanf("%u") reads it: leading white space, one
// optional sign, digits; the value wraps modulo 2^32 (a '-' negates in the
// same width) and whatever follows the digits is ignored. false, with *value
// untouched, when no digit follows. "12abc" gives 12, "abc" and "" fail.
bool ScanUnsigned(const char* text, uint32_t* value);

}  // namespace ondutil
