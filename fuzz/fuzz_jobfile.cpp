// libFuzzer harness for job files: the bytes become a job file
// in a per-process folder; it is loaded, the list saved to a second job file
// in the same folder and that loaded again. What must hold:
//  - both loads succeed and the save succeeds;
//  - the second load has as many entries, with the same id, type and mode
//    (all fields are written, so the first-line type 1 or an unread last field
//    cannot differ);
//  - the path is the same when it is resolvable: without NUL bytes (the path is
//    written as a C string) and either absolute and kept as it stands by
//    MakeRelativePath, or inside the job folder (the folder, a backslash, then
//    a relative text in which no "." or ".." step can fire, i.e. no ".\").
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "os/Platform.h"
#include "util/JobFile.h"
#include "util/PathUtil.h"

namespace {

void Check(bool condition) {
    if (!condition) abort();
}

struct TPaths {
    std::string folder, in, out;
};
const TPaths& Paths();

void RemoveScratch() {
    const TPaths& p = Paths();
    OsRemoveFile(p.in.c_str());
    OsRemoveFile(p.out.c_str());
    std::string native = "/tmp/ond_fuzz_jobfile_" + std::to_string(getpid());
    rmdir(native.c_str());
}

const TPaths& Paths() {
    // Never destroyed: RemoveScratch runs at exit, after static destructors may have.
    static const TPaths* paths = [] {
        TPaths* pp = new TPaths;
        TPaths& p = *pp;
        std::string native = "/tmp/ond_fuzz_jobfile_" + std::to_string(getpid());
        std::string command = "mkdir -p " + native;
        if (system(command.c_str()) != 0) abort();
        if (!OsFullPathName(native.c_str(), &p.folder)) abort();
        p.in = p.folder + "\\in.dcj";
        p.out = p.folder + "\\out.dcj";
        atexit(RemoveScratch);
        return pp;
    }();
    return *paths;
}

bool Resolvable(const std::string& folder, const std::string& path) {
    if (path.find('\0') != std::string::npos) return false;
    if (ondutil::IsAbsolutePath(path)) {
        std::string relative;
        ondutil::MakeRelativePath(folder, path, &relative);
        if (relative == path) return true;
    }
    if (!(path.size() > folder.size() && path.compare(0, folder.size(), folder) == 0 &&
          path[folder.size()] == '\\'))
        return false;
    // Saved as the rest after the backslash, which must read back as relative.
    std::string rest = path.substr(folder.size() + 1);
    return !ondutil::IsAbsolutePath(rest) && rest.find(".\\") == std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const TPaths& p = Paths();
    FILE* f = OsOpenFile(p.in.c_str(), "wb");
    if (!f) abort();
    if (size && fwrite(data, 1, size, f) != size) abort();
    fclose(f);

    std::vector<TFILEENTRY> first;
    Check(ondutil::LoadJobFile(p.in.c_str(), &first) == 1);
    Check(ondutil::SaveJobFile(p.out.c_str(), &first) == 1);
    std::vector<TFILEENTRY> second(3);  // must be cleared
    Check(ondutil::LoadJobFile(p.out.c_str(), &second) == 1);

    Check(first.size() == second.size());
    for (size_t i = 0; i < first.size(); ++i) {
        const TFILEENTRY& a = first[i];
        const TFILEENTRY& b = second[i];
        Check(a.fileMode <= 2);
        Check(a.fileId == b.fileId && a.fileType == b.fileType && a.fileMode == b.fileMode);
        Check(a.reserved == 0 && b.reserved == 0);
        if (Resolvable(p.folder, a.path)) Check(a.path == b.path);
    }
    return 0;
}
