#include "util/WholeFile.h"

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
    if (fseek(file, 0, SEEK_END) != 0) return WHOLEFILE_READ;
    long size = ftell(file);
    if (size < 0 || fseek(file, 0, SEEK_SET) != 0) return WHOLEFILE_READ;
    size_t had = bytes->size();
    bytes->resize(had + static_cast<size_t>(size));
    if (size > 0 && fread(&(*bytes)[had], 1, static_cast<size_t>(size), file) != static_cast<size_t>(size)) {
        bytes->resize(had);
        return WHOLEFILE_READ;
    }
    return WHOLEFILE_OK;
}

}  // namespace ondutil
