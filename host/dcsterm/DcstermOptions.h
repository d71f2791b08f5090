// dcsterm's command line.
#pragma once

#include <cstdint>
#include <string>

#include "host/device/HostDevice.h"

struct TDCSTERMOPTIONS {
    THOSTDEVICEOPTIONS device;
    bool appendCR = true;
    bool timestamps = false;
    std::string logFile;  // empty: no log
    bool hex = false;
    uint32_t idleMs = 500;
    bool help = false;
};

// false with *error set (one line, no "dcsterm:" prefix) for a bad command line.
bool ParseDcstermOptions(int argc, const char* const* argv, TDCSTERMOPTIONS* options,
                         std::string* error);

// The --help text.
const char* DcstermUsage();

// Exit statuses.
const int DCSTERM_EXIT_OK = 0;
const int DCSTERM_EXIT_NOTSENT = 1;  // a line was not sent, or the device failed
const int DCSTERM_EXIT_USAGE = 2;    // bad command line, log file or preload file
const int DCSTERM_EXIT_NODEVICE = 7; // the serial port cannot be opened (as dcsrun)
