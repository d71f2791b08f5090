// dcsrun's command line.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/device/HostDevice.h"

struct TDCSOPTIONS {
    bool check = false;                // --check: parse only
    std::vector<std::string> scripts;  // every script named (several only with --check)
    THOSTDEVICEOPTIONS device;
    std::vector<std::string> sets;  // NAME=TYPE:VALUE, as given
    std::vector<std::string> gets;  // NAME
    bool batch = false;
    bool help = false;
};

// false with *error set (one line, no "dcsrun:" prefix) for a bad command line.
bool ParseDcsOptions(int argc, const char* const* argv, TDCSOPTIONS* options, std::string* error);

// The --help text.
const char* DcsUsage();

// Exit status for a bad command line (not one of the Script Processor's results).
const int DCSRUN_EXIT_USAGE = 2;
