// Job files (".dcj"): reading and writing lists of local files to copy.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "util/JobFile.h"

#include "os/Platform.h"
#include "util/FileReplace.h"
#include "util/PathUtil.h"

namespace {

// A number column: as sscanf("%u") reads it, 0 when no number starts the text.
uint32_t ReadUnsigned(const std::string& text) {
    uint32_t value = 0;
    return ondutil::ScanUnsigned(text.c_str(), &value) ? value : 0;
}

void ResetEntry(TFILEENTRY* entry, uint8_t fileType) {
    entry->path.clear();
    entry->reserved = 0;
    entry->fileId = 0;
    entry->fileType = fileType;
    entry->fileMode = FILEMODE_NORMAL;
}

std::string JobFolder(const char* jobPath) {
    std::string folder;
    ondutil::SplitFileName(jobPath, &folder, nullptr);
    return folder;
}

}  // namespace

void ondutil::FillEntry(size_t column, std::string* text, TFILEENTRY* entry,
                                 std::string& baseFolder) {
    if (!text || !entry) return;
    try {
        switch (column) {
        case 0:
            if (IsAbsolutePath(*text)) {
                entry->path = *text;
            } else {
                std::string joined;
                ConcatenatePathAndFile(baseFolder, *text, &joined);  // 0: joined = the text
                entry->path = std::move(joined);
            }
            break;
        case 1: entry->fileId = static_cast<uint8_t>(ReadUnsigned(*text)); break;
        case 2: entry->fileType = static_cast<uint8_t>(ReadUnsigned(*text)); break;
        case 3: entry->fileMode = FileModeFromText(text->c_str()); break;
        default: break;
        }
    } catch (const std::out_of_range&) {
        // ConcatenatePathAndFile's "." quirk raised: keep the text as given, unjoined.
        try {
            entry->path = *text;
        } catch (...) {
        }
    } catch (...) {
        // Out of memory: the entry keeps what it had.
    }
}

int ondutil::LoadJobFile(const char* jobPath, std::vector<TFILEENTRY>* list) {
    if (!jobPath || !list) return 0;
    FILE* f = OsOpenFile(jobPath, "rb");
    if (!f) return 0;
    try {
        std::string jobFolder = JobFolder(jobPath);
        list->clear();
        TFILEENTRY entry;
        ResetEntry(&entry, 1);  // the first pending entry has type 1, later ones 0
        std::string field;
        size_t column = 0;
        // On the heap: a script that runs job files may have little stack left.
        std::vector<char> buffer(16384);
        size_t got;
        while ((got = fread(buffer.data(), 1, buffer.size(), f)) > 0) {
            for (size_t i = 0; i < got; ++i) {
                const char c = buffer[i];
                if (c == '\t') {
                    FillEntry(column, &field, &entry, jobFolder);
                    field.clear();
                    ++column;
                } else if (c == '\n' || c == '\r') {
                    FillEntry(column, &field, &entry, jobFolder);
                    if (column != 0) {
                        list->push_back(entry);
                        ResetEntry(&entry, 0);
                    }
                    field.clear();
                    column = 0;
                } else {
                    field.push_back(c);
                }
            }
        }
        // End of file (a read error counts as one): the field being read is not filled in.
        if (column != 0) list->push_back(entry);
    } catch (...) {
        fclose(f);
        return 0;
    }
    fclose(f);
    return 1;
}

int ondutil::SaveJobFile(const char* jobPath, std::vector<TFILEENTRY>* list) {
    if (!jobPath || !list) return 0;
    try {
        std::string jobFolder = JobFolder(jobPath);
        std::string relative;
        std::string text;
        for (const TFILEENTRY& entry : *list) {
            MakeRelativePath(jobFolder, entry.path, &relative);
            // "%s\t%u\t%u\t%s\n": the path as a C string (up to a NUL byte).
            text.append(relative.c_str());
            char numbers[32];
            snprintf(numbers, sizeof numbers, "\t%u\t%u\t", static_cast<unsigned>(entry.fileId),
                     static_cast<unsigned>(entry.fileType));
            text += numbers;
            text += FileModeText(entry.fileMode);
            text += '\n';
        }
        bool complete;
        ReplaceFileContent(jobPath, text.data(), text.size(), &complete);
        return complete ? 1 : 0;
    } catch (...) {
        return 0;  // out of memory before anything was written
    }
}
