// dcsfm's command line: the device options, one command and its arguments.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/device/HostDevice.h"

enum EDCSFMCOMMAND {
    DCSFM_NONE,
    DCSFM_LS,
    DCSFM_PUT,
    DCSFM_RM,
    DCSFM_FORMAT,
    DCSFM_JOBRUN,
    DCSFM_JOBMAKE,
};

// A local file named for put or job make, with the properties the command
// line gave it (-1: the File Manager's default for a new file).
struct TDCSFMFILE {
    std::string path;  // as given
    int fileId = -1;
    int fileType = -1;
    int fileMode = -1;  // FILEMODE_...
};

struct TDCSFMOPTIONS {
    THOSTDEVICEOPTIONS device;
    EDCSFMCOMMAND command = DCSFM_NONE;
    bool help = false;
    bool json = false;         // ls
    bool stopOnError = false;  // put, job run
    bool yes = false;          // rm, format
    bool usedOnly = false;     // format
    std::vector<TDCSFMFILE> files;  // put, job make
    std::vector<uint8_t> fileIds;   // rm
    std::string jobFile;            // job run, job make
};

// false with *error set (one line, no "dcsfm:" prefix) for a bad command line.
bool ParseDcsfmOptions(int argc, const char* const* argv, TDCSFMOPTIONS* options,
                       std::string* error);

// The --help text.
const char* DcsfmUsage();

// Exit statuses.
const int DCSFM_EXIT_OK = 0;
const int DCSFM_EXIT_FAILED = 1;    // an action failed: what the window shows in an error box
const int DCSFM_EXIT_USAGE = 2;     // bad command line, or a file or folder it names
const int DCSFM_EXIT_NODEVICE = 7;  // the serial port cannot be opened (as dcsrun, dcsterm)
const int DCSFM_EXIT_ABORTED = 19;  // Ctrl+C, or a question answered No or Cancel
