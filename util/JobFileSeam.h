// Test seam of util/JobFile.cpp, kept out of CONXDeviceClient's interface:
// makes SaveJobFile's writes fail after a given number of bytes, so tests can
// check that a failed save leaves the old job file untouched.
#pragma once

#include <cstdint>

namespace ondutil {

// From now on, writes of job files fail once bytesBeforeFailure bytes have
// been written in total (the bytes up to that point are written). Negative
// disarms. Process-wide; meant for single-threaded tests only.
void JobFileFailWritesAfter(int64_t bytesBeforeFailure);

}  // namespace ondutil
