// Running scripts with the full table of built-ins from the unit tests, and a
// scratch folder for the file built-ins.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>

#include "os/Platform.h"
#include "script/ScriptRun.h"
#include "scriptrt/SysFuncTable.h"

struct TBUILTINRUN {
    uint32_t code = 0;
    std::string output;
};

inline void BuiltinCollect(void* context, const char* text) {
    static_cast<std::string*>(context)->append(text);
}

// Runs text with every built-in; directory is the script's base directory.
inline TBUILTINRUN BuiltinRun(const std::string& text, const std::string& directory = "Z:\\tmp",
                              CONXScriptRunContext* context = nullptr) {
    CONXScriptRunContext own;
    if (!context) context = &own;
    if (context->m_sysFuncFactories.empty()) context->m_sysFuncFactories.push_back(ScriptRuntimeFactory);
    TBUILTINRUN run;
    run.code = RunScript(context, text.c_str(), {.scriptDirectory = directory.c_str(),
                         .output = BuiltinCollect, .outputContext = &run.output});
    return run;
}

// A fresh folder under the current directory, addressed in the module's path
// form ("Z:\..." natively, the drive form under Windows), removed afterwards.
class BuiltinScratch : public ::testing::Test {
protected:
    void SetUp() override {
        static int counter = 0;
        auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
        m_native = "ond_builtins_" + std::to_string(stamp) + "_" + std::to_string(++counter);
        ASSERT_TRUE(std::filesystem::create_directory(m_native));
        ASSERT_TRUE(OsFullPathName(m_native.c_str(), &m_dir));
    }
    void TearDown() override {
        std::error_code ec;
        std::filesystem::remove_all(m_native, ec);
    }
    std::string Path(const std::string& name) const { return m_dir + "\\" + name; }
    void Write(const std::string& name, const std::string& bytes) {
        FILE* f = OsOpenFile(Path(name).c_str(), "wb");
        ASSERT_NE(f, nullptr) << name;
        ASSERT_EQ(fwrite(bytes.data(), 1, bytes.size(), f), bytes.size());
        fclose(f);
    }
    std::string Read(const std::string& name) const {
        FILE* f = OsOpenFile(Path(name).c_str(), "rb");
        if (!f) return "<missing>";
        std::string out;
        char buffer[4096];
        size_t n;
        while ((n = fread(buffer, 1, sizeof buffer, f)) > 0) out.append(buffer, n);
        fclose(f);
        return out;
    }
    size_t FileCount() const {
        size_t n = 0;
        for (auto& e : std::filesystem::directory_iterator(m_native)) (void)e, ++n;
        return n;
    }
    TBUILTINRUN Run(const std::string& text, CONXScriptRunContext* context = nullptr) {
        return BuiltinRun(text, m_dir, context);
    }

    std::string m_native;  // relative, for std::filesystem
    std::string m_dir;     // module form, the scripts' base directory
};
