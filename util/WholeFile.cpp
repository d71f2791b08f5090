#include "util/WholeFile.h"

#include <cstdint>
#include <cstdio>

#include "os/Platform.h"

namespace ondutil {

namespace {
struct TFILECLOSER {
    FILE* file;
    ~TFILECLOSER() { fclose(file); }
};
}  // namespace

EWHOLEFILE ReadWholeFile(const char* path, std::string* bytes) {
    FILE* file = OsOpenFile(path, "rb");
    if (!file) return WHOLEFILE_OPEN;
    TFILECLOSER closer = {file};
    uint64_t size = 0;
    if (!OsOpenFileSize(file, &size) || size > SIZE_MAX || !OsSeekFile(file, 0)) return WHOLEFILE_READ;
    size_t had = bytes->size();
    bytes->resize(had + static_cast<size_t>(size));
    if (size > 0 && fread(&(*bytes)[had], 1, static_cast<size_t>(size), file) != static_cast<size_t>(size)) {
        bytes->resize(had);
        return WHOLEFILE_READ;
    }
    return WHOLEFILE_OK;
}

}  // namespace ondutil
