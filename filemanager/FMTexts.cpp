// The File Manager's texts.
#include "filemanager/FMTexts.h"

#include <cinttypes>
#include <cstdio>

namespace ondfm {

const char kCaptionError[] = "Error";
const char kCaptionWarning[] = "Warning";
const char kCaptionFormat[] = "WARNING";

const char kMsgLocked[] = "Communication device is locked";
const char kMsgNoFilesToDelete[] = "No files marked to delete!";
const char kMsgNoFilesMarkedToCopy[] = "No files marked to copy!";
const char kMsgNoFilesPresentToCopy[] = "No files present to copy!";
const char kMsgNoSelectBuffer[] = "Could not allocate temporary memory for file select box!";
const char kMsgCannotOpenList[] = "Could not open list file";
const char kMsgNothingToSave[] = "No files in list that could be saved";
const char kMsgCannotCreateList[] = "Could not create list file";
const char kMsgInvalidFileId[] = "Invalid file ID!";
const char kMsgInvalidFileType[] = "Invalid file type!";
const char kNoteProgramMode[] =
    "NOTE: \"File ID\" and \"File type\" have no effect on files with mode \"program\"!";
const char kCurrentlyCopying[] = "Currently copying ";

}  // namespace ondfm

namespace {

// printf into a std::string, however long the %s arguments are.
template <class... TArgs>
std::string Format(const char* format, TArgs... args) {
    int length = std::snprintf(nullptr, 0, format, args...);
    if (length <= 0) return std::string();
    std::string text(static_cast<size_t>(length) + 1, '\0');
    std::snprintf(&text[0], text.size(), format, args...);
    text.resize(static_cast<size_t>(length));
    return text;
}

}  // namespace

const char* ondfm::PluralEnding(uint64_t count) { return count == 1 ? "" : "s"; }

std::string ondfm::ErrorText(COndDeviceComm_0* channel, int32_t code) {
    const char* text = channel ? channel->GetInfoString(ONDCOMM_INFO_ERRORTEXT, code) : nullptr;
    return text ? text : "";
}

std::string ondfm::DirectorySummary(const TDEVDIRINFO& info) {
    uint64_t freeBytes = static_cast<uint64_t>(info.freeFactorB) * info.freeFactorA;
    return Format("%u bytes in %u files\nrequire %u bytes on disk\n%" PRIu64 " bytes free",
                  static_cast<unsigned>(info.bytesInFiles), static_cast<unsigned>(info.fileCount),
                  static_cast<unsigned>(info.bytesOnDevice), freeBytes);
}

std::string ondfm::DirectoryReadFailed(const std::string& reason) {
    return "Could not read device directory:\n" + reason;
}

std::string ondfm::DeleteQuestion(uint32_t count) {
    return Format("Deleting %u file%s from device, are you sure?", static_cast<unsigned>(count),
                  PluralEnding(count));
}

std::string ondfm::DeleteFailed(uint8_t fileId, const std::string& reason) {
    return Format("Could not delete file with ID %u: ", static_cast<unsigned>(fileId)) + reason;
}

std::string ondfm::FormatQuestion() {
    return std::string("You have selected to format the device.\n") +
           "This will destroy all data stored on the device.\n\n" +
           "Yes: Format all blocks on the device\n" +
           "No: Format only the blocks that are marked as used\n" + "Cancel: Have mercy on me!";
}

std::string ondfm::FormatFailed(const std::string& reason) {
    return "Could not format device: " + reason;
}

std::string ondfm::CopyReport(const TFILEENTRYLIST& files, const std::vector<TCOPYERROR>& errors,
                              COndDeviceComm_0* channel) {
    std::string report;
    for (const TCOPYERROR& error : errors) {
        if (!report.empty()) report += '\n';
        report += "Error during copying ";
        if (error.index < files.size()) report += files[error.index].path.c_str();
        report += ": ";
        report += ErrorText(channel, error.code);
    }
    return report;
}

std::string ondfm::CopiedSoFar(uint32_t done, uint32_t total) {
    return Format("%u file%s of %u copied so far...", static_cast<unsigned>(done),
                  PluralEnding(done), static_cast<unsigned>(total));
}

std::string ondfm::CurrentlyCopyingLine(const std::string& path, int width,
                                        CFMTextMeasure_0* measure) {
    std::string whole = kCurrentlyCopying + path;
    if (!measure || measure->TextWidth(whole) <= width) return whole;
    const std::string shortened = std::string(kCurrentlyCopying) + "...";
    auto withTail = [&](size_t k) { return shortened + path.substr(path.size() - k); };
    // The largest k in [1, length - 1] whose line fits, or 0.
    size_t fits = 0, tooWide = path.size();
    while (tooWide - fits > 1) {
        size_t k = fits + (tooWide - fits) / 2;
        if (measure->TextWidth(withTail(k)) <= width) fits = k;
        else tooWide = k;
    }
    return withTail(fits);
}
