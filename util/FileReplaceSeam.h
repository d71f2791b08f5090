// Test seam of util/FileReplace.cpp, kept out of the writers' interfaces:
// makes file writes ("writestringtofile", job files) fail after a given
// number of bytes, so tests can check what a failed write leaves behind.
#pragma once

#include <cstdint>

namespace ondutil {

// From now on, writes through WriteFileBytes fail once bytesBeforeFailure
// bytes have been written in total (the bytes up to that point are written).
// Negative disarms. Process-wide; meant for single-threaded tests only.
void FileWritesFailAfter(int64_t bytesBeforeFailure);

}  // namespace ondutil
