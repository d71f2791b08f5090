// Open-file sizes and positions on POSIX.
#include "scriptrt/FileAccess.h"

#include <sys/stat.h>
#include <sys/types.h>

bool ScriptOpenFileSize(FILE* f, uint64_t* size) {
    struct stat st;
    if (fflush(f) != 0 || fstat(fileno(f), &st) != 0 || !S_ISREG(st.st_mode)) return false;
    *size = (uint64_t)st.st_size;
    return true;
}

bool ScriptSeekFile(FILE* f, uint64_t offset) {
    if (offset > (uint64_t)INT64_MAX) return false;
    return fseeko(f, (off_t)offset, SEEK_SET) == 0;
}
