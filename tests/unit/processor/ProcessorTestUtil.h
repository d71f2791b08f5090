// Shared pieces of the Script Processor tests: a scratch folder, collected
// output, and a built-in that ends the run with a chosen code.
#pragma once

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

#include "host/sim/SimDevice.h"
#include "script/ScriptSysFunc.h"
#include "script/ScriptValue.h"
#include "scriptrt/ScriptProcessor.h"

// A fresh folder below the system's temporary folder, removed with the object.
class CProcessorScratch {
public:
    CProcessorScratch() {
        static std::atomic<int> serial{0};
        std::random_device random;
        m_dir = std::filesystem::temp_directory_path() /
                ("ondproc_" + std::to_string(random()) + "_" + std::to_string(serial++));
        std::filesystem::create_directories(m_dir);
    }
    ~CProcessorScratch() {
        std::error_code ec;
        std::filesystem::remove_all(m_dir, ec);
    }
    const std::filesystem::path& Dir() const { return m_dir; }
    std::string Write(const std::string& name, const std::string& bytes) const {
        std::filesystem::path path = m_dir / name;
        FILE* f = fopen(path.string().c_str(), "wb");
        if (f) {
            fwrite(bytes.data(), 1, bytes.size(), f);
            fclose(f);
        }
        return path.string();
    }

private:
    std::filesystem::path m_dir;
};

inline void ProcessorCollect(void* context, const char* text) {
    static_cast<std::string*>(context)->append(text);
}

// "raise(n)": ends the run with the error code n (as "exit" does with its own).
class CProcessorRaise : public CONXScriptSysFunc {
public:
    explicit CProcessorRaise(const TSCRIPTSYSFUNCENV& env)
        : CONXScriptSysFunc("raise", env.output, env.outputContext) {}
    bool CheckArgumentCount(size_t count) override { return count == 1; }
    uint32_t Execute(CONXScriptRunContext*, CONXScriptFunc*, const TSCRIPTARGS& arguments,
                     CONXScriptVariable*) override {
        return (uint32_t) static_cast<CONXScriptVariable*>(arguments[0])->GetNumber();
    }
};

inline void ProcessorRaiseFactory(const TSCRIPTSYSFUNCENV& env,
                                  std::vector<CONXScriptSysFunc*>* functions) {
    functions->push_back(new CProcessorRaise(env));
}
