// Local file built-ins.
#include <cstdio>
#include <string>

#include "os/Platform.h"
#include "scriptrt/FileNames.h"
#include "scriptrt/SysFuncs.h"
#include "util/FileReplace.h"

namespace {

const uint32_t kAllOnes = 0xFFFFFFFFu;

// With an offset the file is changed in place (and made if missing).
uint32_t WriteInPlace(const std::string& path, uint32_t offset, const char* data, size_t size) {
    FILE* f = OsOpenFile(path.c_str(), "r+b");
    if (!f) f = OsOpenFile(path.c_str(), "wb");
    if (!f) return 0;
    size_t written = 0;
    if (OsSeekFile(f, offset) && size) written = ondutil::WriteFileBytes(f, data, size);
    // Bytes that never reached the file do not count.
    if (fflush(f) != 0) written = 0;
    if (fclose(f) != 0) written = 0;
    return static_cast<uint32_t>(written);
}

}  // namespace

namespace ondbuiltin {

uint32_t WriteStringToFile(const TSCRIPTSYSCALL& call) {
    const std::string& text = call.Text(1);
    const uint32_t offset = static_cast<uint32_t>(call.NumberOr(2, kAllOnes));
    const uint32_t start = static_cast<uint32_t>(call.NumberOr(3, 0));
    const uint32_t count = static_cast<uint32_t>(call.NumberOr(4, kAllOnes));
    size_t size = 0;
    if (start < text.size()) {
        size_t rest = text.size() - start;
        size = count < rest ? count : rest;
    }
    const char* data = text.data() + (size ? start : 0);
    uint32_t written = 0;
    std::string path;
    const uint64_t maxBytes = call.run ? call.run->m_limits.maxFileBytes : 0;
    const uint64_t end = (offset == kAllOnes ? 0 : offset) + static_cast<uint64_t>(size);
    if (ScriptLocalFilePath(call.run, call.Text(0), &path) && (maxBytes == 0 || end <= maxBytes)) {
        bool complete;
        // Without an offset the file is replaced as a whole (a failed write
        // leaves the old one where that can be done).
        written = offset == kAllOnes
                      ? static_cast<uint32_t>(ondutil::ReplaceFileContent(path.c_str(), data, size, &complete))
                      : WriteInPlace(path, offset, data, size);
    }
    if (!call.result) return 0;
    return call.result->SetNumber(written, SCRIPT_TYPE_UINT32);
}

uint32_t ReadStringFromFile(const TSCRIPTSYSCALL& call) {
    if (!call.result) return 0;
    const uint32_t offset = static_cast<uint32_t>(call.NumberOr(1, 0));
    const uint32_t length = static_cast<uint32_t>(call.NumberOr(2, kAllOnes));
    std::string bytes, path;
    FILE* f = nullptr;
    if (ScriptLocalFilePath(call.run, call.Text(0), &path)) f = OsOpenFile(path.c_str(), "rb");
    if (!f) return call.result->SetText(bytes);
    uint64_t size64 = 0;
    const uint32_t size = OsOpenFileSize(f, &size64) ? static_cast<uint32_t>(size64) : 0;
    if (offset < size && length != 0 && OsSeekFile(f, offset)) {
        const uint32_t want = length < size - offset ? length : size - offset;
        const TSCRIPTSTRINGBUDGET* budget = ScriptStringBudget();
        if (budget && want > budget->maxStringBytes) {
            fclose(f);
            return SCRIPT_ERR_OUTOFMEMORY;
        }
        try {
            bytes.resize(want);
        } catch (...) {
            fclose(f);
            throw;
        }
        bytes.resize(fread(&bytes[0], 1, want, f));
    }
    fclose(f);
    return call.result->SetText(bytes);
}

uint32_t GetFileSize(const TSCRIPTSYSCALL& call) {
    if (!call.result) return 0;
    uint64_t size = 0;
    std::string path;
    FILE* f = nullptr;
    if (ScriptLocalFilePath(call.run, call.Text(0), &path)) f = OsOpenFile(path.c_str(), "rb");
    if (f) {
        if (!OsOpenFileSize(f, &size)) size = 0;
        fclose(f);
    }
    return call.result->SetNumber(size, SCRIPT_TYPE_UINT32);  // a 32-bit size, deliberately
}

uint32_t GetBasePath(const TSCRIPTSYSCALL& call) {
    if (!call.result) return 0;
    std::string base = call.run ? call.run->GetBaseDirectory() : std::string();
    if (!base.empty() && base.back() == '\\') base.pop_back();  // "C:\" at a drive's root
    return call.result->SetText(base);
}

}  // namespace ondbuiltin
