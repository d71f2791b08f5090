// One local file to copy to the device, as listed in a job file.
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
