#include "host/dcsfm/DcsfmFiles.h"

#include "os/Platform.h"
#include "util/FileEntry.h"

std::string DcsfmFullPath(const std::string& path) {
    std::string full;
    return OsFullPathName(path.c_str(), &full) ? full : path;
}

TFMROW DcsfmRow(const TDCSFMFILE& file) {
    TFMROW row = ondfm::DefaultRow(DcsfmFullPath(file.path));
    if (file.fileId >= 0) row.fileId = std::to_string(file.fileId);
    if (file.fileType >= 0) row.fileType = std::to_string(file.fileType);
    if (file.fileMode >= 0) row.fileMode = ondutil::FileModeText(uint32_t(file.fileMode));
    return row;
}
