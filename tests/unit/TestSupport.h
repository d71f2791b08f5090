// Pieces the unit tests share: a scratch folder, collected output, script
// runs with every built-in, and paths written into script literals.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "os/Platform.h"
#include "script/ScriptRun.h"
#include "scriptrt/SysFuncTable.h"

// A fresh folder below the system's temporary folder, removed with the
// object. Dir() and Path() give it in the module's backslash form ("Z:\..."
// natively, the drive form under Windows), Native() as std::filesystem sees it.
class CTestScratch {
public:
    CTestScratch() {
        static std::atomic<int> serial{0};
        std::random_device random;
        m_native = std::filesystem::temp_directory_path() /
                   ("ond_test_" + std::to_string(random()) + "_" + std::to_string(serial++));
        std::filesystem::create_directories(m_native);
        OsFullPathName(m_native.string().c_str(), &m_dir);
    }
    ~CTestScratch() {
        std::error_code ec;
        std::filesystem::permissions(m_native, std::filesystem::perms::owner_all,
                                     std::filesystem::perm_options::add, ec);
        std::filesystem::remove_all(m_native, ec);
    }
    const std::string& Dir() const { return m_dir; }
    std::string Path(const std::string& name) const { return m_dir + "\\" + name; }
    std::filesystem::path Native(const std::string& name = "") const {
        return name.empty() ? m_native : m_native / name;
    }
    // name may hold backslashes ("sub\\a.bin"): it is opened in the module's form.
    bool Write(const std::string& name, const std::string& bytes) const {
        FILE* f = OsOpenFile(Path(name).c_str(), "wb");
        if (!f) return false;
        bool ok = fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
        return fclose(f) == 0 && ok;
    }
    // The file's bytes, or "<missing>".
    std::string Read(const std::string& name) const { return ReadPath(Path(name)); }
    static std::string ReadPath(const std::string& path) {
        FILE* f = OsOpenFile(path.c_str(), "rb");
        if (!f) return "<missing>";
        std::string out;
        char buffer[4096];
        size_t n;
        while ((n = fread(buffer, 1, sizeof buffer, f)) > 0) out.append(buffer, n);
        fclose(f);
        return out;
    }
    // The names in the folder (or its subfolder), sorted, each followed by a blank.
    std::string Names(const std::string& folder = "") const {
        std::vector<std::string> names;
        for (auto& e : std::filesystem::directory_iterator(Native(folder))) names.push_back(e.path().filename().string());
        std::sort(names.begin(), names.end());
        std::string all;
        for (const std::string& n : names) all += n + " ";
        return all;
    }
    size_t FileCount() const {
        size_t n = 0;
        for (auto& e : std::filesystem::directory_iterator(m_native)) (void)e, ++n;
        return n;
    }

private:
    std::filesystem::path m_native;
    std::string m_dir;
};

// A test fixture with its own scratch folder.
class ScratchTest : public ::testing::Test, public CTestScratch {};

// An output function that appends to the std::string behind context.
inline void TestCollect(void* context, const char* text) {
    static_cast<std::string*>(context)->append(text);
}

struct TTESTRUN {
    uint32_t code = 0;
    std::string output;
};

// Runs text with every built-in (unless context brings its own factories);
// directory is the script's base directory.
inline TTESTRUN TestRun(const std::string& text, const std::string& directory = "Z:\\tmp",
                        CONXScriptRunContext* context = nullptr) {
    CONXScriptRunContext own;
    if (!context) context = &own;
    if (context->m_sysFuncFactories.empty()) context->m_sysFuncFactories.push_back(ScriptRuntimeFactory);
    TTESTRUN run;
    run.code = RunScript(context, text.c_str(), {.scriptDirectory = directory.c_str(),
                         .output = TestCollect, .outputContext = &run.output});
    return run;
}

inline TTESTRUN TestRun(const std::string& text, CONXScriptRunContext* context) {
    return TestRun(text, "Z:\\tmp", context);
}

// The progress steps 0 to last, as a transfer reports them.
inline std::vector<uint32_t> TestUpto(uint32_t last) {
    std::vector<uint32_t> v;
    for (uint32_t i = 0; i <= last; ++i) v.push_back(i);
    return v;
}

// A path written into a script's string literal: backslashes doubled.
inline std::string TestLiteral(const std::string& path) {
    std::string out;
    for (char c : path) {
        if (c == '\\') out += '\\';
        out += c;
    }
    return out;
}
