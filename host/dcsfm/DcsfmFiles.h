// The local files dcsfm is given, as the File Manager's local list holds them.
#pragma once

#include <string>

#include "filemanager/FMRows.h"
#include "host/dcsfm/DcsfmOptions.h"

// path as the window's file selection gives it: full, in the module's
// backslash form (on POSIX below "Z:\", as under Wine); path itself when it
// cannot be made full.
std::string DcsfmFullPath(const std::string& path);

// The row the window's list gets for a new file (ondfm::DefaultRow of the
// full path: ID 0, type 1, mode program for ".rbf", else normal), with the
// properties given on the command line written over its columns.
TFMROW DcsfmRow(const TDCSFMFILE& file);
