// Open-file sizes and positions on Windows (the C runtime's 64-bit calls).
#include "scriptrt/FileAccess.h"

#include <sys/stat.h>
#include <sys/types.h>

bool ScriptOpenFileSize(FILE* f, uint64_t* size) {
    struct _stat64 st;
    if (fflush(f) != 0 || _fstat64(_fileno(f), &st) != 0 || (st.st_mode & _S_IFMT) != _S_IFREG)
        return false;
    *size = (uint64_t)st.st_size;
    return true;
}

bool ScriptSeekFile(FILE* f, uint64_t offset) {
    if (offset > (uint64_t)INT64_MAX) return false;
    return _fseeki64(f, (__int64)offset, SEEK_SET) == 0;
}
