// Results of the device-client operations (32-bit, 0 = success).
#pragma once

#include <cstdint>

enum EONX_ERR_ERRCODE_ : uint32_t {
    EONX_ERR_NONE = 0,
    EONX_ERR_EMPTYPATH = 6,     // a file operation got an empty path
    EONX_ERR_NOCHANNEL = 7,     // no channel connected
    EONX_ERR_FILEOPEN = 8,      // the file cannot be resolved or opened
    EONX_ERR_FILEREAD = 9,      // the file cannot be read completely
    EONX_ERR_DIALOG = 17,       // the dialog cannot be created or shown, or none is open
    EONX_ERR_OUTOFMEMORY = 18,
    EONX_ERR_ABORTED = 19,      // the user aborted (the File Manager's copy)
    EONX_ERR_LOCKED = 20,       // the channel could not be locked
    EONX_ERR_SCRIPTFAILED = 21, // the script ended with an error
};
static_assert(sizeof(EONX_ERR_ERRCODE_) == 4, "EONX_ERR_ERRCODE_ is 32-bit");
