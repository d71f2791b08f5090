// The File Manager's local list as text: one row per file, four columns
// (path, file ID, file type, file mode). The rows are the only store of a
// file's device properties, so every rule for turning a row into a
// TFILEENTRY and back lives here, for the window, for job files and for
// programs without a window.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "util/FileEntry.h"

struct TFMROW {
    std::string path;      // column 0, the full local path
    std::string fileId;    // column 1, decimal
    std::string fileType;  // column 2, decimal
    std::string fileMode;  // column 3, "normal", "bit reverse" or "program"
};

typedef std::vector<TFMROW> TFMROWLIST;

namespace ondfm {

// A row keeps at most this many characters of its path when read back.
constexpr size_t kRowPathMax = 260;

// A new file's row: ID "0", type "1", mode "program" for a path that ends in
// ".rbf" (any case), else "normal"; a path shorter than four characters gets
// an empty mode column (it reads back as normal).
TFMROW DefaultRow(const std::string& path);

// All four columns from an entry: "%u", "%u" and the mode word.
TFMROW RowFromEntry(const TFILEENTRY& entry);

// A row read back: the path cut to kRowPathMax characters; an ID that does
// not read as a number is 0, a type that does not is 1, both cut to their low
// 8 bits; the mode word compared without regard to case, anything unknown
// (the empty column too) normal.
TFILEENTRY EntryFromRow(const TFMROW& row);

// A number typed into the file properties dialog, read as every number
// column is (ondutil::ScanUnsigned: leading blanks, digits up to the first
// character that is not one, so "12abc" is 12; a sign as sscanf takes it),
// kept as its low 8 bits (300 is 44). false when no number is there ("abc").
bool ReadPropertyNumber(const char* text, uint8_t* value);

// The file ID in the first column of a device-list row; false when the text
// holds no number (delete then skips the row).
bool ReadDeviceFileId(const char* text, uint8_t* fileId);

// Job files seen as rows: the entries of jobPath in file order (false when
// it cannot be read; *rows is then untouched), and rows written as a job file
// (false when it cannot be written).
bool LoadJobRows(const char* jobPath, TFMROWLIST* rows);
bool SaveJobRows(const char* jobPath, const TFMROWLIST& rows);

}  // namespace ondfm
