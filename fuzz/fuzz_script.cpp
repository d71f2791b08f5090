// Fuzzes the script language: arbitrary text through lexing, parsing and
// running, with every built-in (files confined to a scratch folder emptied
// before each run, the simulated device as channel, no waiting), a step budget
// so endless loops end, and small string limits. Each input runs twice, with
// and without the numbers-only shortcut; code and output must agree.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <unistd.h>

#include "host/sim/SimDevice.h"
#include "os/Platform.h"
#include "script/ScriptExec.h"
#include "script/ScriptRun.h"
#include "scriptrt/SysFuncTable.h"

namespace {

// The file built-ins' folder, emptied before each run; one per process, so
// parallel fuzzing jobs keep apart. Returned in the module's path form.
const std::string& FreshScratch() {
    static const std::filesystem::path native =
        std::filesystem::temp_directory_path() / ("ond_fuzz_script_" + std::to_string(getpid()));
    static std::string root;
    std::error_code ec;
    std::filesystem::remove_all(native, ec);
    std::filesystem::create_directories(native, ec);
    if (root.empty()) OsFullPathName(native.string().c_str(), &root);
    return root;
}

void Collect(void* context, const char* text) {
    std::string* out = static_cast<std::string*>(context);
    if (out->size() < (1u << 16)) out->append(text);
}

uint32_t Run(const std::string& text, bool fast, std::string* out) {
    g_ScriptFastPath = fast;
    CONXScriptRunContext context;
    context.m_limits.maxSteps = 20000;
    context.m_limits.maxStringBytes = 1 << 16;
    context.m_limits.maxTotalStringBytes = 1 << 20;
    context.m_limits.maxDelayMs = 0;
    context.m_limits.fileRoot = FreshScratch();
    context.m_limits.maxFileBytes = 1 << 16;
    context.m_sysFuncFactories.push_back(ScriptRuntimeFactory);
    CSimDevice device;
    return RunScript(&context, text.c_str(),
                     {.channel = &device, .scriptDirectory = context.m_limits.fileRoot.c_str(),
                      .output = Collect, .outputContext = out});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);  // ends at its first NUL
    std::string fastOut, slowOut;
    uint32_t fastCode = Run(text, true, &fastOut);
    uint32_t slowCode = Run(text, false, &slowOut);
    // Out of stack depends on frame sizes, which the two paths do not share.
    if (fastCode == 1 || slowCode == 1) return 0;
    if (text.find("getsys") != std::string::npos) return 0;  // the clock may tick between the runs
    if (fastCode != slowCode || fastOut != slowOut) {
        fprintf(stderr, "fast and ordinary evaluation differ: %08X \"%s\" / %08X \"%s\"\n", fastCode,
                fastOut.c_str(), slowCode, slowOut.c_str());
        abort();
    }
    return 0;
}
