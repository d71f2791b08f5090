// Reading a whole file into memory, as raw bytes (no line-end or encoding
// conversion), with the module's path rules.
#pragma once

#include <cstdint>
#include <string>

namespace ondutil {

enum EWHOLEFILE : uint32_t {
    WHOLEFILE_OK = 0,
    WHOLEFILE_OPEN = 1,  // the file cannot be opened for reading
    WHOLEFILE_READ = 2,  // it has no size (a pipe), or fewer bytes came than its size
};

// Appends the file's bytes, up to the size it has when opened, to *bytes (left
// as it was on a failure). No stack buffer: a script's thread may have little
// stack left. A failed allocation throws, for the caller's out-of-memory wall.
EWHOLEFILE ReadWholeFile(const char* path, std::string* bytes);

}  // namespace ondutil
