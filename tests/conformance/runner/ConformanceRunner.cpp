// conformance_runner: runs every .dcs file below a folder and compares what
// it writes with the expectation written beside it:
//   "# expect: TEXT"     one expected output line (TEXT literally, then "\n")
//   "# expect-code: N"   the expected result code (decimal or 0x hex; default 0)
//   NAME.out             if present, the exact expected output instead
// Each script gets every built-in, the simulated device and its
// own folder as base directory.
//
// With --reading-only the engine's shortcuts (numbers-only programs and
// statement plans) are off, so every script also checks the plain reading
// evaluation against the same expectations.
//
// With --program PROGRAM each script is run as "PROGRAM SCRIPT" instead (dcsrun):
// its standard output must be the expected output and its exit status the
// Script Processor's result for the expected code (0, or 21 for a failure).
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "host/sim/SimDevice.h"
#include "script/ScriptExec.h"
#include "script/ScriptRun.h"
#include "scriptrt/SysFuncTable.h"
#include "tests/support/RunProgram.h"
#include "util/EscapedString.h"
#include "util/WholeFile.h"

namespace fs = std::filesystem;

namespace {

bool ReadFile(const fs::path& path, std::string* text) {
    text->clear();
    return ondutil::ReadWholeFile(path.string().c_str(), text) == ondutil::WHOLEFILE_OK;
}

std::string Shown(const std::string& s) { return ondutil::EscapeForDisplay(s.data(), s.size(), true); }

// The expectation written in the script's comment lines.
void ParseExpectations(const std::string& text, std::string* output, uint32_t* code) {
    static const std::string kExpect = "# expect:";
    static const std::string kCode = "# expect-code:";
    size_t pos = 0;
    while (pos < text.size()) {
        size_t end = text.find('\n', pos);
        if (end == std::string::npos) end = text.size();
        std::string line = text.substr(pos, end - pos);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        size_t at = line.find(kCode);
        if (at != std::string::npos) {
            *code = (uint32_t)strtoul(line.c_str() + at + kCode.size(), nullptr, 0);
        } else if ((at = line.find(kExpect)) != std::string::npos) {
            std::string rest = line.substr(at + kExpect.size());
            if (!rest.empty() && rest[0] == ' ') rest.erase(0, 1);
            *output += rest + "\n";
        }
        pos = end + 1;
    }
}

void Collect(void* context, const char* text) { static_cast<std::string*>(context)->append(text); }

}  // namespace

int main(int argc, char** argv) {
    std::string program;
    if (argc == 3 && std::string(argv[1]) == "--reading-only") {
        g_ScriptFastPath = false;
        argv++;
        argc--;
    }
    if (argc == 4 && std::string(argv[1]) == "--program") {
        program = argv[2];
        argv += 2;
        argc -= 2;
    }
    if (argc != 2) {
        fprintf(stderr, "usage: conformance_runner [--reading-only | --program PROGRAM] FOLDER\n");
        return 2;
    }
    std::vector<fs::path> scripts;
    std::error_code ec;
    for (fs::recursive_directory_iterator it(argv[1], ec), end; !ec && it != end; it.increment(ec))
        if (it->is_regular_file() && it->path().extension() == ".dcs") scripts.push_back(it->path());
    if (ec) {
        fprintf(stderr, "conformance_runner: cannot read %s\n", argv[1]);
        return 2;
    }
    std::sort(scripts.begin(), scripts.end());
    int passed = 0, failed = 0;
    for (const fs::path& script : scripts) {
        std::string text;
        if (!ReadFile(script, &text)) {
            printf("FAIL %s: cannot read\n", script.string().c_str());
            failed++;
            continue;
        }
        std::string expected;
        uint32_t expectedCode = 0;
        ParseExpectations(text, &expected, &expectedCode);
        fs::path out = script;
        out.replace_extension(".out");
        if (fs::exists(out)) ReadFile(out, &expected);

        std::string actual;
        if (!program.empty()) {
            int status = 0;
            int expectedStatus = (expectedCode & 0x0FFFFFFF) ? 21 : 0;
            if (!RunProgram(program, {script.string()}, false, &actual, &status)) {
                printf("FAIL %s: cannot run %s\n", script.string().c_str(), program.c_str());
                failed++;
            } else if (status == expectedStatus && actual == expected) {
                passed++;
            } else {
                failed++;
                printf("FAIL %s\n", script.string().c_str());
                printf("  expected status %d, output \"%s\"\n", expectedStatus, Shown(expected).c_str());
                printf("  actual   status %d, output \"%s\"\n", status, Shown(actual).c_str());
            }
            continue;
        }
        CSimDevice device;
        CONXScriptRunContext context;
        context.m_sysFuncFactories.push_back(ScriptRuntimeFactory);
        // The module's path form: on POSIX "Z:\..." maps back to the root.
        std::string directory = fs::absolute(script).parent_path().string();
        uint32_t code = RunScript(&context, text.c_str(), {.channel = &device,
                                  .scriptDirectory = directory.c_str(), .output = Collect,
                                  .outputContext = &actual});
        if (code == expectedCode && actual == expected) {
            passed++;
            continue;
        }
        failed++;
        printf("FAIL %s\n", script.string().c_str());
        printf("  expected code 0x%08X, output \"%s\"\n", expectedCode, Shown(expected).c_str());
        printf("  actual   code 0x%08X, output \"%s\"\n", code, Shown(actual).c_str());
    }
    printf("%d passed, %d failed\n", passed, failed);
    return failed ? 1 : 0;
}
