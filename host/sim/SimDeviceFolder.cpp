// The simulated device's storage as a folder's files.
#include "host/sim/SimDeviceFolder.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <vector>

#include "host/sim/SimDevice.h"
#include "util/AsciiCase.h"
#include "util/WholeFile.h"

namespace fs = std::filesystem;

namespace {

const char kProgramName[] = "program.bin";

// The decimal digits at text[*at], 0 to 255; false when there is none or
// the value is larger.
bool ReadByte(const std::string& text, size_t* at, uint8_t* value) {
    size_t start = *at;
    unsigned number = 0;
    while (*at < text.size() && text[*at] >= '0' && text[*at] <= '9') {
        number = number * 10 + unsigned(text[*at] - '0');
        if (number > 255) return false;
        ++*at;
    }
    *value = uint8_t(number);
    return *at > start;
}

bool IsProgramName(const std::string& name) {
    const size_t length = 7;  // "program"
    return name.size() >= length && ondutil::EqualsIgnoringCase(name.substr(0, length).c_str(), "program") &&
           (name.size() == length || name[length] == '.');
}

bool WriteFile(const fs::path& path, const std::string& data) {
    FILE* file = std::fopen(path.string().c_str(), "wb");
    if (!file) return false;
    bool ok = std::fwrite(data.data(), 1, data.size(), file) == data.size();
    return std::fclose(file) == 0 && ok;
}

// The regular files of folder whose names do not begin with ".", by name.
bool ListFiles(const std::string& folder, std::vector<fs::path>* files, std::string* error) {
    std::error_code ec;
    fs::directory_iterator it(folder, ec), end;
    for (; !ec && it != end; it.increment(ec)) {
        std::string name = it->path().filename().string();
        if (name.empty() || name[0] == '.') continue;
        std::error_code typeError;
        if (it->is_regular_file(typeError)) files->push_back(it->path());
    }
    if (ec) {
        *error = "cannot read the folder " + folder;
        return false;
    }
    std::sort(files->begin(), files->end());
    return true;
}

}  // namespace

bool ParseSimFileName(const std::string& name, TSIMFILENAME* parsed) {
    TSIMFILENAME result;
    if (IsProgramName(name)) {
        result.program = true;
    } else {
        size_t at = 0;
        if (!ReadByte(name, &at, &result.fileId) || at >= name.size() || name[at] != '-')
            return false;
        ++at;
        // What follows the type is not a digit: ReadByte took them all.
        if (!ReadByte(name, &at, &result.fileType)) return false;
    }
    if (parsed) *parsed = result;
    return true;
}

std::string SimFileName(uint8_t fileId, uint8_t fileType) {
    char name[32];
    std::snprintf(name, sizeof name, "%03u-%u.bin", unsigned(fileId), unsigned(fileType));
    return name;
}

bool LoadSimFolder(CSimDevice* sim, const std::string& folder, std::string* error) {
    std::vector<fs::path> files;
    if (!ListFiles(folder, &files, error)) return false;
    std::string owners[256];  // the file name that holds each ID
    std::string program;
    for (const fs::path& path : files) {
        std::string name = path.filename().string();
        TSIMFILENAME parsed;
        if (!ParseSimFileName(name, &parsed)) {
            *error = folder + ": " + name +
                     " is not named as a device file (ID-TYPE, e.g. 3-1.bin, or program.bin)";
            return false;
        }
        std::string& owner = parsed.program ? program : owners[parsed.fileId];
        if (!owner.empty()) {
            *error = folder + ": " + owner + " and " + name + " are both " +
                     (parsed.program ? std::string("the program")
                                     : "file ID " + std::to_string(parsed.fileId));
            return false;
        }
        owner = name;
        std::string data;
        if (ondutil::ReadWholeFile(path.string().c_str(), &data) != ondutil::WHOLEFILE_OK) {
            *error = "cannot read " + path.string();
            return false;
        }
        uint32_t mode = parsed.program ? SIMDEV_MODE_PROGRAM : SIMDEV_MODE_NORMAL;
        int32_t code = sim->TransmitFileFromMemory(data.data(), data.size(), parsed.fileId,
                                                   parsed.fileType, mode, nullptr, nullptr,
                                                   ONDCOMM_TRANSFER_FLAG, 1);
        if (code != 0) {
            const char* text = sim->GetInfoString(ONDCOMM_INFO_ERRORTEXT, code);
            *error = folder + ": " + name + ": " + (text ? text : "");
            return false;
        }
    }
    return true;
}

bool SaveSimFolder(CSimDevice* sim, const std::string& folder, std::string* error) {
    std::error_code ec;
    fs::create_directories(folder, ec);
    std::vector<fs::path> old;
    if (!ListFiles(folder, &old, error)) return false;
    // Written first, removed after: a save that fails on the way leaves the
    // earlier one's files in place.
    std::vector<fs::path> written;
    auto write = [&](const std::string& name, const std::string& data) {
        fs::path path = fs::path(folder) / name;
        written.push_back(path);
        if (WriteFile(path, data)) return true;
        *error = "cannot write " + path.string();
        return false;
    };
    for (unsigned id = 0; id < 256; ++id) {
        CSimDevice::TStoredFile file;
        if (sim->GetStoredFile(uint8_t(id), &file) &&
            !write(SimFileName(uint8_t(id), file.fileType), file.data))
            return false;
    }
    if (sim->HasProgram() && !write(kProgramName, sim->ProgramImage())) return false;
    // The same file may be named in another case than it was just written
    // under (Windows): sameness is asked of the file system, not of the names.
    auto isWritten = [&](const fs::path& path) {
        for (const fs::path& done : written)
            if (fs::equivalent(path, done, ec)) return true;
        return false;
    };
    for (const fs::path& path : old) {
        if (!ParseSimFileName(path.filename().string(), nullptr) || isWritten(path)) continue;
        if (!fs::remove(path, ec) || ec) {
            *error = "cannot remove " + path.string();
            return false;
        }
    }
    return true;
}
