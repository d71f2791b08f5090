// Sizes and positions of open files beyond 2 GiB, where the C library's
// long-based fseek/ftell fall short on Windows.
#pragma once

#include <cstdint>
#include <cstdio>

// The size of an open regular file; false for anything else (a folder, a
// device) or when it cannot be told. Leaves the position undefined.
bool ScriptOpenFileSize(FILE* f, uint64_t* size);

// Moves to offset from the start; beyond the end a following write grows the file.
bool ScriptSeekFile(FILE* f, uint64_t offset);
