// The record through which a host hands named values to the Script Processor
// and reads them back (Call commands 0x1002 and 0x1003). The host's element
// spans 144 bytes; the module touches only the first four fields.
//
// The two directions use the fields differently, deliberately:
// - setting: value points to a 64-bit number (types 1, 3, 4, 5) or to the
//   string's bytes (type 2); only the low 32 bits of length are read.
// - reading back: the number itself is written into value (4 bytes for type 1,
//   8 bytes for types 3, 4, 5); for type 2 value receives a pointer to the
//   text and length all 64 bits of its byte count.
#pragma once

#include <cstddef>
#include <cstdint>

struct TONX_SCRIPTVARIABLE {
    const char* name;       // NUL-terminated
    uint32_t type;          // 1 dword, 2 string, 3 int32, 4 uint64, 5 int64
    uint32_t reserved0;     // alignment; untouched
    uint64_t value;
    uint64_t length;
    uint8_t hostData[112];  // the host's own; untouched
};
static_assert(sizeof(void*) != 8 || sizeof(TONX_SCRIPTVARIABLE) == 144, "exchange record layout");
static_assert(sizeof(void*) != 8 || offsetof(TONX_SCRIPTVARIABLE, type) == 8, "exchange record layout");
static_assert(offsetof(TONX_SCRIPTVARIABLE, value) == 16, "exchange record layout");
static_assert(offsetof(TONX_SCRIPTVARIABLE, length) == 24, "exchange record layout");
