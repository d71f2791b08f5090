// Every text the File Manager shows: the fixed messages and captions, and the
// ones built from numbers with their plural rules. Kept apart from the
// windows so that programs without a window say exactly the same.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "filemanager/FMCopyLoop.h"
#include "frame/OndDeviceComm.h"
#include "util/FileEntry.h"

// Measures a text as the progress window's name line would draw it (pixels).
class CFMTextMeasure_0 {
public:
    virtual ~CFMTextMeasure_0() = default;
    virtual int TextWidth(const std::string& text) = 0;
};

namespace ondfm {

// Captions.
extern const char kCaptionError[];    // "Error": failures, exclamation icon
extern const char kCaptionWarning[];  // "Warning": the delete question (Yes/No)
extern const char kCaptionFormat[];   // "WARNING": the format question (Yes/No/Cancel)

// Fixed messages.
extern const char kMsgLocked[];
extern const char kMsgNoFilesToDelete[];
extern const char kMsgNoFilesMarkedToCopy[];
extern const char kMsgNoFilesPresentToCopy[];
extern const char kMsgNoSelectBuffer[];
extern const char kMsgCannotOpenList[];
extern const char kMsgNothingToSave[];
extern const char kMsgCannotCreateList[];
extern const char kMsgInvalidFileId[];
extern const char kMsgInvalidFileType[];
extern const char kNoteProgramMode[];  // the properties dialog's note for "program"
extern const char kCurrentlyCopying[];  // "Currently copying "

// "" for exactly one, "s" for any other count.
const char* PluralEnding(uint64_t count);

// GetInfoString(2, code) of the channel, "" when it has none to give.
std::string ErrorText(COndDeviceComm_0* channel, int32_t code);

// "%u bytes in %u files\nrequire %u bytes on disk\n%I64u bytes free", the
// free bytes being the 64-bit product of the two factors.
std::string DirectorySummary(const TDEVDIRINFO& info);
// "Could not read device directory:\n%s".
std::string DirectoryReadFailed(const std::string& reason);

// "Deleting %u file%s from device, are you sure?".
std::string DeleteQuestion(uint32_t count);
// "Could not delete file with ID %u: %s".
std::string DeleteFailed(uint8_t fileId, const std::string& reason);

// The five lines of the format question.
std::string FormatQuestion();
// "Could not format device: %s".
std::string FormatFailed(const std::string& reason);

// One "Error during copying %s: %s" line per error, in order, joined by line
// feeds (none after the last); "" without errors.
std::string CopyReport(const TFILEENTRYLIST& files, const std::vector<TCOPYERROR>& errors,
                       COndDeviceComm_0* channel);

// The progress window's status line: "%u file%s of %u copied so far...".
std::string CopiedSoFar(uint32_t done, uint32_t total);

// The name line: "Currently copying " and the path when that fits into
// width; otherwise "Currently copying ..." and the last k characters of the
// path, k the largest value below the path's length that fits (0 when none
// does). The width only grows with k, so k is found by halving, with a
// handful of measurements even for a path of thousands of characters.
std::string CurrentlyCopyingLine(const std::string& path, int width, CFMTextMeasure_0* measure);

}  // namespace ondfm
