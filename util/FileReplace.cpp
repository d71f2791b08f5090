// Replacing a file's whole content: a swap where it keeps the file, a plain
// write where it cannot be done.
#include "util/FileReplace.h"

#include <atomic>
#include <cstdint>
#include <string>

#include "os/Platform.h"
#include "util/FileReplaceSeam.h"

namespace {

std::atomic<int64_t> g_failAfter{-1};  // test seam: bytes left before writes fail; <0 = off
std::atomic<unsigned> g_tempCounter{0};

bool FileExists(const std::string& path) {
    FILE* f = OsOpenFile(path.c_str(), "rb");
    if (!f) return false;
    fclose(f);
    return true;
}

// Bytes that never reached the file (a failed flush or close) do not count.
size_t WriteAndClose(FILE* f, const char* data, size_t size) {
    size_t written = size ? ondutil::WriteFileBytes(f, data, size) : 0;
    if (fflush(f) != 0 || ferror(f)) written = 0;
    if (fclose(f) != 0) written = 0;
    return written;
}

// A new file beside path, open for writing; null when the folder takes none.
FILE* MakeTemporary(const std::string& path, std::string* tempPath) {
    const unsigned stamp = static_cast<unsigned>(OsTickCount());
    for (int attempt = 0; attempt < 100; ++attempt) {
        char suffix[40];
        snprintf(suffix, sizeof suffix, ".%08x%04x.tmp", stamp, g_tempCounter.fetch_add(1) & 0xFFFFu);
        std::string candidate = path + suffix;
        if (FileExists(candidate)) continue;
        FILE* f = OsOpenFile(candidate.c_str(), "wb");
        if (f) tempPath->swap(candidate);
        return f;
    }
    return nullptr;
}

}  // namespace

namespace ondutil {

void FileWritesFailAfter(int64_t bytesBeforeFailure) {
    g_failAfter.store(bytesBeforeFailure < 0 ? -1 : bytesBeforeFailure);
}

size_t WriteFileBytes(FILE* f, const char* data, size_t size) {
    int64_t left = g_failAfter.load();
    if (left >= 0) {
        if (static_cast<uint64_t>(left) < size) {
            size_t done = left > 0 ? fwrite(data, 1, static_cast<size_t>(left), f) : 0;
            g_failAfter.store(0);
            return done;
        }
        g_failAfter.store(left - static_cast<int64_t>(size));
    }
    return fwrite(data, 1, size, f);
}

size_t ReplaceFileContent(const char* path, const char* data, size_t size, bool* complete) {
    *complete = false;
    const std::string target = path;
    if (FileExists(target)) {
        FILE* probe = OsOpenFile(path, "r+b");
        if (!probe) return 0;
        fclose(probe);
    }
    std::string tempPath;
    if (FILE* f = MakeTemporary(target, &tempPath)) {
        size_t written = WriteAndClose(f, data, size);
        if (written != size) {
            // The old file stays whole; writing it in place would fail alike.
            OsRemoveFile(tempPath.c_str());
            return 0;
        }
        if (OsReplaceFile(tempPath.c_str(), path)) {
            *complete = true;
            return written;
        }
        OsRemoveFile(tempPath.c_str());
    }
    FILE* f = OsOpenFile(path, "wb");
    if (!f) return 0;
    size_t written = WriteAndClose(f, data, size);
    *complete = written == size;
    return written;
}

}  // namespace ondutil
