// Shared pieces of the Script Processor tests: a connected processor, script
// files in a scratch folder and a built-in that ends the run with a chosen code.
#pragma once

#include <string>

#include "host/sim/SimDevice.h"
#include "script/ScriptSysFunc.h"
#include "script/ScriptValue.h"
#include "scriptrt/ScriptProcessor.h"
#include "tests/unit/TestSupport.h"

// Writes name into the scratch folder; gives its path as the host's own file API writes it.
inline std::string ProcessorWrite(const CTestScratch& scratch, const std::string& name, const std::string& bytes) {
    scratch.Write(name, bytes);
    return scratch.Native(name).string();
}

// A Script Processor connected to a simulated device; Run collects the output.
class ProcessorTest : public ::testing::Test {
protected:
    void SetUp() override { processor.Connect(&device); }
    EONX_ERR_ERRCODE_ Run(const std::string& text) {
        output.clear();
        return processor.ExecuteScript(text.c_str(), nullptr, TestCollect, &output);
    }
    EONX_ERR_ERRCODE_ RunFile(const char* path) {
        output.clear();
        return processor.ExecuteScriptFile(path, TestCollect, &output);
    }
    EONX_ERR_ERRCODE_ RunFile(const std::string& path) { return RunFile(path.c_str()); }
    CSimDevice device;
    CONXScriptProcessor processor;
    CTestScratch scratch;
    std::string output;
};

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
