// Test seam of scriptrt/FileFuncs.cpp, kept out of the built-ins' interface:
// makes "writestringtofile" fail after a given number of bytes, so tests can
// check that a failed write leaves the old file untouched.
#pragma once

#include <cstdint>

namespace ondscriptrt {

// From now on, writes of "writestringtofile" fail once bytesBeforeFailure
// bytes have been written in total (the bytes up to that point are written).
// Negative disarms. Process-wide; meant for single-threaded tests only.
void FileFuncsFailWritesAfter(int64_t bytesBeforeFailure);

}  // namespace ondscriptrt
