// Rows of the File Manager's local list and their TFILEENTRY records.
#include "filemanager/FMRows.h"

#include <cstdio>

#include "util/AsciiCase.h"
#include "util/JobFile.h"

namespace {

std::string Decimal(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "%u", static_cast<unsigned>(value));
    return text;
}

bool EndsWithRbf(const std::string& path) {
    return path.size() >= 4 && ondutil::EqualsIgnoringCase(path.c_str() + path.size() - 4, ".rbf");
}

uint8_t ReadColumn(const std::string& text, uint8_t otherwise) {
    uint32_t value = 0;
    return ondutil::ScanUnsigned(text.c_str(), &value) ? static_cast<uint8_t>(value) : otherwise;
}

}  // namespace

TFMROW ondfm::DefaultRow(const std::string& path) {
    TFMROW row;
    row.path = path;
    row.fileId = "0";
    row.fileType = "1";
    // A path too short to hold ".rbf" leaves the mode column empty.
    if (path.size() >= 4) row.fileMode = EndsWithRbf(path) ? "program" : "normal";
    return row;
}

TFMROW ondfm::RowFromEntry(const TFILEENTRY& entry) {
    TFMROW row;
    row.path = entry.path;
    row.fileId = Decimal(entry.fileId);
    row.fileType = Decimal(entry.fileType);
    row.fileMode = ondutil::FileModeText(entry.fileMode);
    return row;
}

TFILEENTRY ondfm::EntryFromRow(const TFMROW& row) {
    TFILEENTRY entry;
    entry.path = row.path.substr(0, kRowPathMax);
    entry.fileId = ReadColumn(row.fileId, 0);
    entry.fileType = ReadColumn(row.fileType, 1);
    entry.fileMode = ondutil::FileModeFromText(row.fileMode.c_str());
    return entry;
}

bool ondfm::ReadPropertyNumber(const char* text, uint8_t* value) {
    uint32_t number = 0;
    if (!ondutil::ScanUnsigned(text, &number)) return false;
    if (value) *value = static_cast<uint8_t>(number);  // above 255 wraps, without a word
    return true;
}

bool ondfm::ReadDeviceFileId(const char* text, uint8_t* fileId) {
    return ReadPropertyNumber(text, fileId);
}

bool ondfm::LoadJobRows(const char* jobPath, TFMROWLIST* rows) {
    if (!rows) return false;
    try {
        TFILEENTRYLIST entries;
        if (!ondutil::LoadJobFile(jobPath, &entries)) return false;
        TFMROWLIST loaded;
        loaded.reserve(entries.size());
        for (const TFILEENTRY& entry : entries) loaded.push_back(RowFromEntry(entry));
        rows->swap(loaded);
        return true;
    } catch (...) {
        return false;  // out of memory: the rows stay as they were
    }
}

bool ondfm::SaveJobRows(const char* jobPath, const TFMROWLIST& rows) {
    try {
        TFILEENTRYLIST entries;
        entries.reserve(rows.size());
        for (const TFMROW& row : rows) entries.push_back(EntryFromRow(row));
        return ondutil::SaveJobFile(jobPath, &entries) != 0;
    } catch (...) {
        return false;
    }
}
