// The shared utilities as static operations of CONXDeviceClient: the exported
// class carries them for hosts; the work is done by the free functions of util/.
#include "frame/DeviceClient.h"
#include "util/EscapedString.h"
#include "util/JobFile.h"
#include "util/PathUtil.h"

std::string CONXDeviceClient::ParseString(const char* input, size_t length, char terminator,
                                          size_t* endPos, std::string* errorText, int* ok) {
    return ondutil::ParseString(input, length, terminator, endPos, errorText, ok);
}

void CONXDeviceClient::SplitFileName(const std::string& path, std::string* folder,
                                     std::string* file) {
    ondutil::SplitFileName(path, folder, file);
}

int CONXDeviceClient::ConcatenatePathAndFile(const std::string& folder, const std::string& file,
                                             std::string* result) {
    return ondutil::ConcatenatePathAndFile(folder, file, result);
}

int CONXDeviceClient::IsAbsolutePath(const std::string& path) { return ondutil::IsAbsolutePath(path); }

void CONXDeviceClient::MakeRelativePath(const std::string& baseFolder, const std::string& path,
                                        std::string* result) {
    ondutil::MakeRelativePath(baseFolder, path, result);
}

char CONXDeviceClient::toUpperGer(char c) { return ondutil::toUpperGer(c); }

void CONXDeviceClient::FillEntry(size_t column, std::string* text, TFILEENTRY* entry,
                                 std::string& baseFolder) {
    ondutil::FillEntry(column, text, entry, baseFolder);
}

int CONXDeviceClient::LoadJobFile(const char* jobPath, std::vector<TFILEENTRY>* list) {
    return ondutil::LoadJobFile(jobPath, list);
}

int CONXDeviceClient::SaveJobFile(const char* jobPath, std::vector<TFILEENTRY>* list) {
    return ondutil::SaveJobFile(jobPath, list);
}
