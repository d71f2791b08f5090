// Job files (".dcj"): one local file to copy per line, "%s\t%u\t%u\t%s\n".
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "util/FileEntry.h"

namespace ondutil {

// Sets one field of entry from column column (0 path, 1 id, 2 type, 3 mode)
// of a job-file line; relative paths are taken from baseFolder.
void FillEntry(size_t column, std::string* text, TFILEENTRY* entry, std::string& baseFolder);
// Replaces *list with the entries of the job file; 1 on success, 0 otherwise.
int LoadJobFile(const char* jobPath, std::vector<TFILEENTRY>* list);
// Writes *list as a job file, paths relative to its folder; 1 on success, 0 otherwise.
int SaveJobFile(const char* jobPath, std::vector<TFILEENTRY>* list);

}  // namespace ondutil
